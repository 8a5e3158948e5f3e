#include "actions/moving/InsertionStrategies.h"

#include "actions/RenameActionHelper.h"
#include "actions/moving/ContentBasedAction.h"
#include "support/text/Text.h"

namespace tavrin {

void AddAtFrontInsertionStrategy::insert(std::u16string_view text, std::u16string_view into,
                                         const StrategyContext&, std::u16string& result) {
    result.append(text).append(into);
}

void AddToEndInsertionStrategy::insert(std::u16string_view text, std::u16string_view into,
                                       const StrategyContext&, std::u16string& result) {
    result.append(into).append(text);
}

void PositionInsertionStrategy::addParametersTo(ContentBasedAction& action) {
    action.addParameter(numberParameter("position", "At", 0, 0).between(0, 9999).in(PanelSection::placement),
                        position);
    action.addParameter(choiceParameter("mode", "Counted", positionModeChoices(), 0, 0).beside("position"),
                        mode);
}

void PositionInsertionStrategy::insert(std::u16string_view text, std::u16string_view into,
                                       const StrategyContext&, std::u16string& result) {
    RenameActionHelper::insertAtPosition(text, into, position, mode, result);
}

void InFrontOfExistingTextInsertionStrategy::addParametersTo(ContentBasedAction& action) {
    action.addParameter(textParameter("searchTerm", "Text to find").in(PanelSection::placement), searchTerm);
    action.addParameter(
        choiceParameter("mode", "Which one", occurrenceChoices(), 0, 0).in(PanelSection::placement), mode);
    action.addParameter(checkboxParameter(ignoreCaseKey, "Ignore case", 1, 0).in(PanelSection::placement),
                        ignoreCase);
}

void InFrontOfExistingTextInsertionStrategy::prepareParameters() {
    search = TextSearch(text::precomposed(searchTerm), RenameActionHelper::sensitivity(ignoreCase));
}

void InFrontOfExistingTextInsertionStrategy::insert(std::u16string_view text, std::u16string_view into,
                                                    const StrategyContext&, std::u16string& result) {
    RenameActionHelper::insertInFrontOfExistingText(text, into, search, mode, result);
}

void AfterExistingTextInsertionStrategy::insert(std::u16string_view text, std::u16string_view into,
                                                const StrategyContext&, std::u16string& result) {
    RenameActionHelper::insertAfterExistingText(text, into, search, mode, result);
}

TranspositionInsertionStrategyAdapter::TranspositionInsertionStrategyAdapter(
    std::unique_ptr<InsertionStrategy> inner)
    : insertionStrategy(std::move(inner)) {}

void TranspositionInsertionStrategyAdapter::addParametersTo(ContentBasedAction& action) {
    insertionStrategy->addParametersTo(action);
}

void TranspositionInsertionStrategyAdapter::prepareParameters() { insertionStrategy->prepareParameters(); }

void TranspositionInsertionStrategyAdapter::insert(std::u16string_view, std::u16string_view,
                                                   const StrategyContext& context, std::u16string& result) {
    insertionStrategy->insert(context.textAsFound, context.nameMinusText, context, result);
}

} // namespace tavrin
