#include "actions/moving/ContentBasedAction.h"

namespace tavrin {

void RenameActionStrategy::addParametersTo(ContentBasedAction&) {}

ContentBasedAction::ContentBasedAction(std::unique_ptr<ContentStrategy> content,
                                       std::unique_ptr<InsertionStrategy> insertion)
    : contentStrategy(std::move(content)), insertionStrategy(std::move(insertion)) {
    contentStrategy->addParametersTo(*this);
    insertionStrategy->addParametersTo(*this);
}

void ContentBasedAction::prepareParameters() {
    BaseRenameAction::prepareParameters();
    contentStrategy->prepareParameters();
    insertionStrategy->prepareParameters();
}

void ContentBasedAction::processName(std::u16string_view fragment, const InputContext& input,
                                     OutputContext& output, std::u16string& result) {
    StrategyContext context{input, output, {}, {}};
    if (const auto text = contentStrategy->processName(fragment, context))
        insertionStrategy->insert(*text, fragment, context, result);
    else
        result += fragment;
}

} // namespace tavrin
