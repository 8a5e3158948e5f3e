#pragma once

#include "platform/processes/RunLoop.h"
#include "shell/commands/ShellServices.h"
#include "shell/preview/PreviewList.h"
#include "support/values/PropertyValue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class ActionListCommands;
class BaseAction;
class BaseRenameAction;
class SortBasedAction;
class StoreOwner;
enum class PreviewColumn;

/// The machine behind the preview: every change leads, after a short delay, to one request; at the end of the
/// run the list is refetched in its order and the status line is written. Main thread.
class PreviewControl {
  public:
    PreviewControl(ShellServices& shared, StoreOwner& store, ActionListCommands& commands);

    /// Looks once a second whether a run counts as long, and then brings the progress bar up. The first call
    /// starts the check.
    void checkUpOnLongProcessingTimer();

    /// A preview 0.3 seconds after the last of a series of calls.
    void initiateDelayedPreviewUpdate();
    /// Starts a preview that is waiting for its moment at once.
    void firePendingPreview();
    [[nodiscard]] bool isPreviewPending() const { return previewTimer && previewTimer->isPending(); }
    /// Off: changes ask for no preview, whoever runs the application asks by showPreview.
    void setFollowsChanges(bool follows) { followsChanges = follows; }
    /// Runs the action at the end of the next preview.
    void afterNextPreview(std::function<void()> action) { whenFinished = std::move(action); }

    /// Asks the engine for a preview and sets the columns.
    void updatePreview() { showPreview(); }
    void showPreview();
    /// The rows and the order that the next refresh will show; nothing where nobody looks at the list.
    [[nodiscard]] std::optional<FetchRequest> shownList();
    /// Refetches the list, of which only the first rows have their new names yet.
    void showFirstRows();
    /// Whether all rows on show have got their new names once.
    [[nodiscard]] bool isWhole() const { return !isFirstRowsOnly; }
    /// Refetches the list.
    void refreshPreview();
    /// The same; a long list is sorted on another thread first, and refetched then.
    void refreshPreviewSoon();
    /// Does at once what refreshPreviewSoon has left for later.
    void finishRefresh();
    /// Writes the status line.
    void showStats();
    /// Orders the list by a column: ascending, descending, and back to the order of numbering. Current names
    /// become the order of an action that works in one; all else is a view, which holds until another action
    /// or order is chosen. A long list stays as it is until its new order is there.
    void sortBy(PreviewColumn column);
    /// Ends such a view.
    void endSorting();
    struct Sorting {
        PreviewColumn column;
        bool isAscending;
        bool isView; ///< the numbers go by another order
        bool operator==(const Sorting&) const = default;
    };
    /// The column that the list is sorted by, if a click on it would turn the order round.
    [[nodiscard]] std::optional<Sorting> sorting() const;

    /// Shows rows in an order that is on its way into the store, and ends that.
    void holdOrder(std::vector<RowId> rows);
    void releaseOrder();

    /// The column of folders shows while the rows lie in several; it can be hidden until the list is empty,
    /// and "showPath" has it always.
    void setListFolders(const RowFolders& folders);
    [[nodiscard]] const RowFolders& listFolders() const { return folders; }
    [[nodiscard]] bool isFolderColumnShown() const;
    void showFolderColumn(bool isShown);

    /// What the change of an observed value leads to. `object` is null for what is no parameter of an action.
    void observeValueForKeyPath(const std::string& keyPath, const BaseAction* object,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue);

    [[nodiscard]] PreviewList& nodeController() { return list; }
    [[nodiscard]] bool isPreviewEmpty() { return list.isEmpty(); }

  private:
    /// The action of the last refetch. It may be gone, then no action is the same.
    struct PreviewedAction {
        const BaseRenameAction* identity;
        bool isSortBased;
    };

    void delayedPreviewUpdate();
    void automaticSortingChanged(bool before, bool now);
    void askAboutManualSorting(bool isSortBased);
    void compositeFragmentChanged();
    void forgetPreviewedActionIfGone();
    void prepareList();
    void setSortOrder(const BaseRenameAction& current);
    void setOwnOrder(const BaseRenameAction& current);
    void sortStepByCurrentName(SortBasedAction& step);
    void showOrHideFolders();
    [[nodiscard]] std::string statusText();
    /// What the preview could not do, with its first reason; empty where all went well.
    [[nodiscard]] std::string failureText();
    void showOrHideColumns();

    ShellServices& services;
    StoreOwner& store;
    ActionListCommands& commands;
    PreviewList list;
    std::function<void()> whenFinished;
    bool followsChanges = true;
    bool isRefreshDue = false;
    bool isFirstRowsOnly = false;
    std::vector<SortDescriptor> ownOrder; ///< of the list where no column is clicked
    std::optional<Sorting> view;
    bool isOrderOnItsWay = false;
    /// What clicks have taken from a step, compared only.
    std::pair<const BaseRenameAction*, std::int32_t> modeBeforeClicks{nullptr, 0};
    RowFolders folders;
    /// The list whose folders have been hidden by hand, by the store's generation.
    std::optional<std::uint64_t> hiddenFolders;
    std::unique_ptr<Timer> previewTimer;
    std::unique_ptr<Timer> longProcessingCheckTimer;
    std::optional<PreviewedAction> lastActionThatWasPreviewed;
    const BaseRenameAction* lastCurrentStep = nullptr; ///< compared only, never followed
};

} // namespace tavrin
