#include "shell/preview/PreviewControl.h"

#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/FrontEnd.h"
#include "shell/commands/ActionListCommands.h"
#include "shell/start/StoreOwner.h"
#include "store/queries/FilterManager.h"
#include "support/application/DebugLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds previewDelay(300);

/// What a change of a value asks for.
enum class Reaction { preview, reread, newOrder, showStep, automaticSorting, nothing };

struct ReactionRow {
    std::string_view keyPath;
    Reaction reaction;
};

constexpr std::array reactions{
    ReactionRow{"sortingMode", Reaction::newOrder},
    ReactionRow{"sortingMode2", Reaction::newOrder},
    ReactionRow{"sortEachFolderSeparately", Reaction::newOrder},
    ReactionRow{"currentActionIndex", Reaction::showStep},
    ReactionRow{"transientActionIndex", Reaction::showStep},
    ReactionRow{settingKey::accurateFolderSize, Reaction::reread}, // sizes are read with the items
    ReactionRow{settingKey::lastAddDirectory, Reaction::nothing},
    ReactionRow{settingKey::automaticSorting, Reaction::automaticSorting},
};

Reaction reactionTo(std::string_view keyPath) {
    const auto row = std::find_if(reactions.begin(), reactions.end(),
                                  [&](const ReactionRow& each) { return each.keyPath == keyPath; });
    return row == reactions.end() ? Reaction::preview : row->reaction;
}

const std::string manualSortingText =
    "You have activated manual sorting. You can now re-arrange the order of the files and folders in the "
    "preview list by using drag & drop.\n\nYou can switch back to automatic sorting by clicking on the "
    "\"Auto\" button at the bottom right of the preview list.";
const std::string manualSortingActionText =
    "\n\nThe sorting mode for the current action will automatically be set to use the manual ordering.";

constexpr std::array regexColumns{PreviewColumn::regex1, PreviewColumn::regex2, PreviewColumn::regex3,
                                  PreviewColumn::regex4, PreviewColumn::regex5, PreviewColumn::regex6};

constexpr std::int32_t byNameAscending = SortBasedAction::smartNameSorting;
constexpr std::int32_t byNameDescending = 11;

NodeKey keyOf(PreviewColumn column) {
    switch (column) {
    case PreviewColumn::newName:
        return NodeKey::finalName;
    case PreviewColumn::path:
        return NodeKey::folder;
    case PreviewColumn::problem:
        return NodeKey::problem;
    default:
        return NodeKey::smartName;
    }
}

/// The one action that reports what its pattern captured.
constexpr std::string_view capturingAction = "Reg Ex Substitution";

} // namespace

PreviewControl::PreviewControl(ShellServices& shared, StoreOwner& storeOwner,
                               ActionListCommands& listCommands)
    : services(shared), store(storeOwner), commands(listCommands), list(storeOwner) {}

// ---- the delay

void PreviewControl::initiateDelayedPreviewUpdate() {
    if (!followsChanges)
        return;
    previewTimer = services.runLoop.startTimer(previewDelay, false, [this] { delayedPreviewUpdate(); });
    services.frontEnd.previewRequested();
}

void PreviewControl::firePendingPreview() {
    if (isPreviewPending())
        previewTimer->fire();
}

void PreviewControl::delayedPreviewUpdate() {
    // The timer is the caller: it goes when it has run to its end, or when the next one takes its place.
    if (!services.engine.isBusy())
        store.releaseRetired();
    showPreview();
}

void PreviewControl::showPreview() {
    services.frontEnd.previewRequested();
    services.engine.processPreviewPipeline(services.progress);
    showOrHideColumns();
    debugLog("--- previewTable sizetofit");
    services.frontEnd.sizeColumnsToFit();
}

void PreviewControl::showOrHideColumns() {
    FrontEnd& frontEnd = services.frontEnd;
    showOrHideFolders();
    frontEnd.setColumnHidden(PreviewColumn::currentName,
                             services.settings.values().shouldShowCurrentName == 0);
    const bool captures = services.composite.getCurrentAction().actionName() == capturingAction;
    for (const PreviewColumn column : regexColumns)
        frontEnd.setColumnHidden(column, !captures);
}

void PreviewControl::checkUpOnLongProcessingTimer() {
    longProcessingCheckTimer = services.runLoop.startTimer(std::chrono::seconds(1), false,
                                                           [this] { checkUpOnLongProcessingTimer(); });
    if (services.progress.isLong())
        services.frontEnd.selectPreviewTab(PreviewTab::progressBar);
}

// ---- the list

void PreviewControl::showFirstRows() {
    if (isOrderOnItsWay)
        return;
    isFirstRowsOnly = true;
    prepareList();
    list.fetch();
    services.frontEnd.previewListChanged();
}

void PreviewControl::refreshPreview() {
    debugLog("automatic sorting: {:d}", services.settings.values().automaticSorting);
    debugLog("--------------------------------------------------------");
    isRefreshDue = false;
    services.frontEnd.selectPreviewTab(PreviewTab::status);
    if (!isOrderOnItsWay)
        list.release();
    prepareList();
    lastCurrentStep = &services.composite.getCurrentAction();
    list.fetch();
    services.frontEnd.previewListChanged();
}

void PreviewControl::refreshPreviewSoon() {
    constexpr std::size_t manyRows = 20000;
    if (list.count() < manyRows) {
        refreshPreview();
        return;
    }
    isRefreshDue = true;
    services.engine.processListRefresh();
}

void PreviewControl::finishRefresh() {
    if (isRefreshDue)
        refreshPreview();
}

std::optional<FetchRequest> PreviewControl::shownList() {
    prepareList();
    return list.isLookedAt() ? std::optional(list.request()) : std::nullopt;
}

/// Gives the list the rows and the order that it is to show.
void PreviewControl::prepareList() {
    list.setFetchPredicate(FilterManager::currentFilterPredicate(services.settings.values().itemFilter()));
    const BaseRenameAction& current = services.composite.getCurrentAction();
    forgetPreviewedActionIfGone();
    setSortOrder(current);
    const bool isSortBased = dynamic_cast<const SortBasedAction*>(&current) != nullptr;
    lastActionThatWasPreviewed = PreviewedAction{&current, isSortBased};
}

void PreviewControl::setSortOrder(const BaseRenameAction& current) {
    if (!lastActionThatWasPreviewed || lastActionThatWasPreviewed->identity != &current)
        view.reset();
    setOwnOrder(current);
    std::vector<SortDescriptor> order = ownOrder;
    if (view)
        order.insert(order.begin(), {keyOf(view->column), view->isAscending});
    list.setSortDescriptors(std::move(order));
}

void PreviewControl::setOwnOrder(const BaseRenameAction& current) {
    const std::optional<PreviewedAction>& last = lastActionThatWasPreviewed;
    if (!services.settings.values().automaticSorting) {
        ownOrder = {{NodeKey::manualOrder, true}};
    } else if (last && last->identity == &current) {
        return;
    } else if (const auto* sortBased = dynamic_cast<const SortBasedAction*>(&current)) {
        ownOrder = RenameEngineUtilities::sortDescriptorsOf(*sortBased);
    } else if (!last || last->isSortBased) {
        ownOrder = {{NodeKey::smartName, true}};
    }
}

void PreviewControl::sortBy(PreviewColumn column) {
    prepareList(); // another step may have become the current one since
    const bool isByName = column == PreviewColumn::currentName;
    auto* step = dynamic_cast<SortBasedAction*>(&services.composite.getCurrentAction());
    if (isByName && step && services.settings.values().automaticSorting && !view) {
        sortStepByCurrentName(*step);
        return;
    }
    const bool isInThatOrder =
        isByName && ownOrder == std::vector<SortDescriptor>{{NodeKey::smartName, true}};
    if (!view || view->column != column)
        view = Sorting{column, !isInThatOrder, true};
    else if (view->isAscending)
        view->isAscending = false;
    else
        view.reset();
    refreshPreviewSoon();
}

void PreviewControl::sortStepByCurrentName(SortBasedAction& step) {
    const std::int32_t mode = step.getSortingMode();
    std::int32_t next = byNameAscending;
    if (mode == byNameAscending) {
        next = byNameDescending;
    } else if (mode != byNameDescending) {
        modeBeforeClicks = {&step, mode};
    } else if (modeBeforeClicks.first == &step) {
        next = modeBeforeClicks.second;
        modeBeforeClicks = {};
    }
    step.setValue(next, "sortingMode");
}

void PreviewControl::endSorting() {
    view.reset();
    refreshPreviewSoon();
}

std::optional<PreviewControl::Sorting> PreviewControl::sorting() const {
    if (view)
        return view;
    const auto* step = dynamic_cast<const SortBasedAction*>(&services.composite.getCurrentAction());
    if (!step || !services.settings.values().automaticSorting)
        return std::nullopt;
    const std::int32_t mode = step->getSortingMode();
    if (mode != byNameAscending && mode != byNameDescending)
        return std::nullopt;
    return Sorting{PreviewColumn::currentName, mode == byNameAscending, false};
}

void PreviewControl::holdOrder(std::vector<RowId> rows) {
    isOrderOnItsWay = true;
    view.reset();
    list.hold(std::move(rows));
    services.frontEnd.previewListChanged();
}

void PreviewControl::releaseOrder() {
    isOrderOnItsWay = false;
    refreshPreviewSoon();
}

// ---- the folders

void PreviewControl::setListFolders(const RowFolders& found) {
    folders = found;
    if (folders.count == 0)
        hiddenFolders.reset();
    showOrHideFolders();
}

bool PreviewControl::isFolderColumnShown() const {
    return services.settings.values().shouldShowPath != 0 ||
           (folders.count > 1 && hiddenFolders != store.generation());
}

void PreviewControl::showFolderColumn(bool isShown) {
    hiddenFolders = isShown ? std::nullopt : std::optional(store.generation());
    if (isShown != isFolderColumnShown())
        services.settings.setValue(isShown ? 1 : 0, "showPath");
    showOrHideFolders();
    services.frontEnd.sizeColumnsToFit();
}

void PreviewControl::showOrHideFolders() {
    services.frontEnd.setColumnHidden(PreviewColumn::path, !isFolderColumnShown());
}

void PreviewControl::forgetPreviewedActionIfGone() {
    if (!lastActionThatWasPreviewed)
        return;
    const auto& steps = services.composite.getActionDictionaryList();
    const bool isThere = std::any_of(steps.begin(), steps.end(), [this](const auto& step) {
        return step.get() == lastActionThatWasPreviewed->identity;
    });
    if (!isThere)
        lastActionThatWasPreviewed->identity = nullptr;
}

// ---- the status line

void PreviewControl::showStats() {
    isFirstRowsOnly = false;
    try {
        const std::string failures = failureText();
        services.progress.updateStageText(statusText() + (failures.empty() ? "" : " " + failures));
        // Of a droplet no status line is seen.
        if (!failures.empty() && services.mode == OperationMode::dropletRun && !services.isSilentDroplet())
            services.frontEnd.presentError(failures);
    } catch (const std::exception& failure) {
        debugLog("no counts to show: {}", failure.what());
    }
    services.frontEnd.previewFinished();
    if (const auto action = std::exchange(whenFinished, nullptr))
        action();
}

std::string PreviewControl::statusText() {
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    if (context.sourceItemCount() == 0)
        return services.mode == OperationMode::dropletEdit
                   ? "Drag file you want to preview into the preview table above."
                   : "Please add files to be renamed to preview table above.";
    const EngineControl& control = context.engineControl();
    if (control.totalNumberOfFiles == 0)
        return "No files selected.";
    return fmt::format("{} out of {} items need{} renaming.", control.numberOfFilesThatNeedRenaming,
                       control.totalNumberOfFiles, control.numberOfFilesThatNeedRenaming == 1 ? "s" : "");
}

std::string PreviewControl::failureText() {
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const std::vector<ProcessingError> errors = context.processingErrors();
    if (errors.empty())
        return {};
    const ProcessingError& first = errors.front();
    return fmt::format("{}: {}{}{}{}", first.title, first.message, first.path.empty() ? "" : ": ", first.path,
                       errors.size() == 1 ? "" : fmt::format(" (and {} more)", errors.size() - 1));
}

// ---- the funnel

void PreviewControl::observeValueForKeyPath(const std::string& keyPath, const BaseAction* object,
                                            const std::optional<PropertyValue>& oldValue,
                                            const std::optional<PropertyValue>& newValue) {
    services.actionList.setAutomaticSorting(services.settings.values().automaticSorting);
    forgetPreviewedActionIfGone();
    if (object == &services.composite && keyPath == "fragmentSelection") {
        compositeFragmentChanged();
        return;
    }
    switch (reactionTo(keyPath)) {
    case Reaction::reread:
        services.engine.rereadAtNextPreview();
        initiateDelayedPreviewUpdate();
        break;
    case Reaction::preview:
        if (object == &services.composite)
            services.frontEnd.actionListChanged();
        initiateDelayedPreviewUpdate();
        break;
    case Reaction::newOrder:
        lastActionThatWasPreviewed.reset();
        initiateDelayedPreviewUpdate();
        break;
    case Reaction::showStep:
        services.frontEnd.actionListChanged();
        commands.switchAction();
        break;
    case Reaction::automaticSorting:
        automaticSortingChanged(oldValue && boolValue(*oldValue), newValue && boolValue(*newValue));
        break;
    case Reaction::nothing:
        break;
    }
}

/// The composite answers for its current step, so the value also counts as changed when the user merely
/// moves to another step, and that asks for no preview.
void PreviewControl::compositeFragmentChanged() {
    const BaseRenameAction* current = &services.composite.getCurrentAction();
    if (current == lastCurrentStep)
        initiateDelayedPreviewUpdate();
    lastCurrentStep = current;
}

void PreviewControl::automaticSortingChanged(bool before, bool now) {
    auto* sortBased = dynamic_cast<SortBasedAction*>(&services.composite.getCurrentAction());
    if (before && !now) {
        askAboutManualSorting(sortBased != nullptr);
        if (sortBased)
            sortBased->activateManualSorting();
    } else if (!before && now && sortBased) {
        sortBased->deactivateManualSortingIfNecessary();
    }
    lastActionThatWasPreviewed.reset();
    initiateDelayedPreviewUpdate();
}

void PreviewControl::askAboutManualSorting(bool isSortBased) {
    const std::string key = isSortBased ? "showManualSortingSortBasedActionAlert" : "showManualSortingAlert";
    if (!services.defaults.boolForKey(key))
        return;
    const Alert alert{.kind = AlertKind::manualSorting,
                      .style = AlertStyle::informational,
                      .title = "Manual sorting activated.",
                      .text = manualSortingText + (isSortBased ? manualSortingActionText : ""),
                      .buttons = {"OK"},
                      .hasSuppressionBox = true};
    services.frontEnd.showAlert(alert, [&defaults = services.defaults, key](AlertAnswer answer) {
        if (answer.suppress)
            defaults.setObject(key, false);
    });
}

} // namespace tavrin
