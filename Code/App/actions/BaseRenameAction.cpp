#include "actions/BaseRenameAction.h"

#include "store/rows/FileMO.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 4> fragmentChoices{{
    {1, "Name without extension", "name"},
    {0, "Whole name", "whole"},
    {2, "Extension without dot", "ext"},
    {3, "Extension with dot", ".ext"},
}};

} // namespace

std::string InputContext::inputPath() const { return fileMo ? fileMo->fullPath() : path; }

BaseRenameAction::BaseRenameAction() {
    // It has a selector of its own.
    addParameter(
        choiceParameter("fragmentSelection", "Apply to", fragmentChoices, 1).hidden().as(RecipeForm::part),
        paramFragmentSelectionMode);
}

void BaseRenameAction::introduce(std::string_view name, std::u16string_view explanation) {
    setActionName(name);
    ownExplanation = explanation;
}

bool BaseRenameAction::hasUseFor(const ParameterDescription& row) const {
    return !row.isUnused && row.kind != ParameterKind::status &&
           (row.key != "fragmentSelection" || isFragmentSelectionSupported());
}

void BaseRenameAction::processName(std::u16string_view, std::u16string& result) {
    result += u"not yet implemented.";
}

void BaseRenameAction::executeWithInputContext(InputContext& input, OutputContext& output) {
    prepare();
    itemInHand = &input;
    answerInHand = &output;
    const std::u16string_view name = input.currentName;
    auto& result = output.newName;
    std::size_t begin = 0;
    std::size_t end = name.size();

    const auto mode = static_cast<FragmentSelection>(paramFragmentSelectionMode);
    const bool wantsExtension =
        mode == FragmentSelection::extensionWithoutDot || mode == FragmentSelection::extensionWithDot;
    if (wantsExtension || mode == FragmentSelection::withoutExtension) {
        const auto dot = name.rfind(u'.');
        if (dot == name.npos && wantsExtension) {
            result.assign(name);
            return;
        }
        if (wantsExtension)
            begin = mode == FragmentSelection::extensionWithDot ? dot : dot + 1;
        else if (dot != name.npos)
            end = dot;
    }

    // Most often there is nothing in front, and the time of this counts for each name.
    result.clear();
    if (begin != 0)
        result.append(name, 0, begin);
    processName(name.substr(begin, end - begin), result);
    if (end != name.size())
        result.append(name, end);
}

} // namespace tavrin
