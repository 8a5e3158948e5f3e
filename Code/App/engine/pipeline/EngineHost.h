#pragma once

#include "engine/asking/RunQuestion.h"
#include "engine/naming/NamePins.h"
#include "store/queries/Predicate.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class CompositeRenameAction;
class ItemStore;
class ProgressInfo;
class RunLoop;
class StoreContext;
class TVRNGlobalPreferencesPseudoAction;
struct RowFolders;

/// What the engine needs of the application that runs it. The first group may be called from any thread, the
/// second is called on the main thread only.
class EngineHost {
  public:
    virtual ~EngineHost() = default;

    /// The store, made on first demand; null when there is none to be had.
    virtual ItemStore* persistentStoreCoordinator() = 0;
    /// The main context, made on first demand; hold its mutex while using it.
    virtual StoreContext& managedObjectContext() = 0;
    /// Any thread reads `values` alone.
    virtual TVRNGlobalPreferencesPseudoAction& globalSettings() = 0;
    virtual CompositeRenameAction& compositeAction() = 0;
    virtual ProgressInfo& progressInfo() = 0;
    virtual RunLoop& runLoop() = 0;
    virtual bool isSilentDroplet() = 0;
    /// Asks for a new preview; after a switch of store, from the worker.
    virtual void updatePreview() = 0;

    /// Puts a question of a run to the user and returns at once; the worker waits for the answer.
    virtual void ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer) = 0;
    /// Tells the user something that is neither a failure nor a question.
    virtual void presentNotice(const std::string& text) = 0;
    virtual void startProgressWindow() = 0;
    virtual void stopProgressWindow() = 0;
    /// The rows that the next refresh will show, in their order; nothing where no list is on show.
    virtual std::optional<FetchRequest> shownList() { return std::nullopt; }
    /// The folders that these rows lie in; comes before the refresh that shows them.
    virtual void setListFolders(const RowFolders&) {}
    /// Those rows of the list that show first have their new names, all others still their own; the whole
    /// follows in the same run.
    virtual void showFirstRows() {}
    virtual void refreshPreview() = 0;
    virtual void showStats() = 0;
    /// So many items of the list have left it, since they were not there any more when it was read anew.
    virtual void tellGone(std::size_t) {}
    /// What a run means for what is settled by hand: items have moved, got their names, or are gone.
    /// Many are told in bunches.
    virtual void changePins(std::vector<NamePins::Change>) {}
    virtual void showCompletionDialog() = 0;
    virtual void showFileListSavingCompletionDialog(int format) = 0;
    /// The list could not be written; what was at the path stays. `reason` is the system's.
    virtual void showFileListNotSaved(const std::string& path, const std::string& reason) = 0;
    virtual void reloadPreview() = 0;
    virtual void clearList() = 0;
    virtual void terminate() = 0;
    /// Shows a written report to the user in the file browser.
    virtual void revealReport(const std::string& path) = 0;
};

} // namespace tavrin
