#include "actions/text/ReplaceTextAction.h"

#include "actions/ActionFamilies.h"
#include "actions/PrecomposedText.h"
#include "actions/RenameActionHelper.h"
#include "support/text/Text.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 13> replacementModes{{
    {0, "All"},
    {1, "First"},
    {2, "Second"},
    {3, "Third"},
    {4, "Fourth"},
    {5, "Fifth"},
    {6, "Sixth"},
    {7, "Last"},
    {8, "Second to last"},
    {9, "Third to last"},
    {10, "Fourth to last"},
    {11, "Fifth to last"},
    {12, "Sixth to last"},
}};

constexpr std::array<const char*, 13> occurencePhrases{
    "all occurences of ",
    "only the first occurence of ",
    "only the second occurence of ",
    "only the third occurence of ",
    "only the fourth occurence of ",
    "only the fifth occurence of ",
    "only the sixth occurence of ",
    "only the last occurence of ",
    "only the second to last occurence of ",
    "only the third to last occurence of ",
    "only the forth to last occurence of ",
    "only the fifth to last occurence of ",
    "only the sixth to last occurence of ",
};

} // namespace

ReplaceTextAction::ReplaceTextAction() {
    addParameter(textParameter("searchTerm", "Find"), paramSearchTerm);
    addParameter(textParameter("replacementTerm", "Replace with"), paramReplacementTerm);
    addParameter(choiceParameter("replacementMode", "Occurrences", replacementModes, 0, 0),
                 paramReplacementMode);
    addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 1), paramIgnoreCase);
}

std::vector<ActionExample> ReplaceTextAction::examples() const {
    return {
        {{{"searchTerm", u"IMG_"}, {"replacementTerm", u"Lofoten "}}, u"IMG_4021.JPG", u"Lofoten 4021.JPG"},
        {{{"searchTerm", u"a"}, {"replacementTerm", u"o"}, {"replacementMode", 8}},
         u"banana.txt",
         u"banona.txt"}};
}

std::string ReplaceTextAction::userDescriptionOccurence() const {
    const auto mode = getParamInt("replacementMode", 0);
    const bool isKnown = mode >= 0 && mode < static_cast<std::int32_t>(occurencePhrases.size());
    return isKnown ? occurencePhrases[static_cast<std::size_t>(mode)] : "";
}

std::string ReplaceTextAction::userDescriptionIgnore() const {
    return getParamInt("ignoreCase", 1) == 1 ? " while ignoring case." : ".";
}

std::u16string ReplaceTextAction::sentence(std::u16string_view verb) const {
    const std::u16string term = getParamString("searchTerm");
    if (term.empty())
        return {};
    return std::u16string(verb) + text::fromUtf8(userDescriptionOccurence()) + u'\u201C' + term + u'\u201D' +
           text::fromUtf8(userDescriptionIgnore());
}

void ReplaceTextAction::prepareParameters() {
    BaseRenameAction::prepareParameters();
    search = TextSearch(text::precomposed(paramSearchTerm), RenameActionHelper::sensitivity(paramIgnoreCase));
}

bool ReplaceTextAction::shouldReplaceCurrentOccurence(std::int64_t index, std::int64_t outOf) const {
    const std::int64_t mode = paramReplacementMode;
    if (mode == 0)
        return true;
    return mode <= 6 ? index == mode - 1 : index == outOf + 6 - mode;
}

void ReplaceTextAction::collectMatches(std::u16string_view text) {
    matches.clear();
    std::size_t start = 0;
    while (start < text.size()) {
        const auto match = search.first(text, {start, text.size() - start});
        if (!match)
            break;
        matches.push_back(*match);
        start = match->end();
    }
}

void ReplaceTextAction::processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                                    std::u16string& result) {
    const PrecomposedText composed(fragment);
    const auto text = composed.view();
    collectMatches(text);
    const auto count = static_cast<std::int64_t>(matches.size());
    std::size_t done = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto& match = matches[static_cast<std::size_t>(i)];
        if (!shouldReplaceCurrentOccurence(i, count))
            continue;
        result.append(text, done, match.location - done).append(paramReplacementTerm);
        done = match.end();
    }
    result.append(text, done);
}

namespace {

class RemoveTextAction final : public ReplaceTextAction {
  public:
    static constexpr const char* name = "Remove text";

    RemoveTextAction() {
        setDefault("replacementTerm", u"");
        hideParameter("replacementTerm");
    }
    [[nodiscard]] std::u16string explanation() const override { return sentence(u"Remove "); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u" copy"}}, u"letter copy.txt", u"letter.txt"}};
    }
};

constexpr ActionEntry entries[]{entryFor<ReplaceTextAction>(), entryFor<RemoveTextAction>()};

} // namespace

std::span<const ActionEntry> replaceTextActions() { return entries; }

} // namespace tavrin
