#pragma once

#include "Catalogue.h"
#include "CommandLine.h"
#include "InterruptHandler.h"
#include "ProgressLine.h"
#include "RenamePrinter.h"
#include "Terminal.h"
#include "TerminalFrontEnd.h"
#include "engine/history/TakeBack.h"
#include "engine/naming/GiveNamesStage.h"
#include "platform/desktop/SystemLog.h"
#include "platform/processes/QueueRunLoop.h"
#include "store/queries/Predicate.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tavrin {

class MainController;
class RenameEngine;
class StoreContext;

/// The application for the length of one command: the recipe and the settings of the command line on top of
/// the defaults, and the paths in its list. Nothing of the user's stored settings is read or written.
class Session {
  public:
    /// Throws UsageError for whatever is wrong with the options; nothing has been touched then.
    explicit Session(const RunOptions& options);
    /// No path was given, but a list that holds none.
    [[nodiscard]] bool hasNoItems();
    /// Without a recipe and paths: for what goes by the history.
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] Terminal& terminal() { return connectedTerminal; }

    /// Asks before each step of a rename if the settings say so; throws UsageError where there is nobody to
    /// ask.
    void beInteractiveIfSet();
    /// The same whatever they say.
    void beInteractive();
    /// Prints each item as soon as it is renamed.
    void printRenames(bool endsWithNull);
    /// What a rename will be refused is of no interest before it, where it decides nothing.
    void showNoProblems();
    /// Nothing is renamed while any name has a problem, and none is made distinct.
    void stopAtProblems();
    /// The names of the next preview, and of the rename behind it, instead of those of the recipe.
    void giveNames(GivenNames names);
    [[nodiscard]] InterruptHandler& interruptHandler() { return interrupts; }
    void showNoProgress() { showsProgress = false; }
    /// Whether the run leaves a record by which it can be taken back.
    void keepHistory(bool keep);
    /// It is refused if it can't leave one.
    void requireHistory();

    /// Reads the items and computes their names; tells what failed.
    void preview();
    /// The context that holds the items, and which of them count. Hold the context's mutex while using it.
    [[nodiscard]] StoreContext& context();
    [[nodiscard]] Predicate filter();

    /// Renames the previewed items, and comes back when it is done.
    void rename();
    /// Takes a run back or finishes it, or finds out what that would do, and comes back when it is done. What
    /// can't be done is told.
    TakeBackResult takeBack(TakeBackRequest request);
    /// Where past runs are.
    [[nodiscard]] RunHistory history() const;
    /// The checks in front of it let the rename begin.
    [[nodiscard]] bool hasRun() const { return runHasStarted; }
    /// How many names the rename changed.
    [[nodiscard]] std::int32_t renamedCount();

    [[nodiscard]] bool wasInterrupted() const { return interrupts.wasInterrupted(); }
    /// What the command has found out counts as a failure of an item.
    void noteFailure() { hasFailed = true; }
    /// How the command has ended, from all that happened.
    [[nodiscard]] ExitStatus status();
    /// Writes what is left of the output, and ends the process at once if an interrupt has left a preview
    /// running. Nothing is lost with it.
    ExitStatus finish();

  private:
    explicit Session(bool storeInFile);

    void tellInterruptedRun();
    void setDefaults(bool storeInFile);
    void load(const RunOptions& options);
    void refuseStepsThatCannotWork();
    void openStore(bool storeInFile);
    /// A recipe or a list may come from there, one of them.
    void reserveStandardInput(const RunOptions& options);
    void takeSelection(const SelectionOptions& options);
    void addPaths(const std::vector<std::string>& given);
    void addListedPaths(const SelectionOptions& options);
    void tellFailuresOfPreview();
    void tellWhatIsPosted();
    void setToStop(RenameEngine* engine);
    void wasToldToStop();

    Terminal connectedTerminal;
    bool showsProgress = true;
    bool hasUnfinishedPreview = false;
    bool runHasStarted = false;
    bool hasFailed = false;
    std::int32_t takenBack = 0;

    std::mutex stopping;            ///< guards what follows
    RenameEngine* toStop = nullptr; ///< while a rename may be under way

    QueueRunLoop loop;
    InterruptHandler interrupts; ///< before anything that starts a thread, behind all that it uses
    SystemLog systemLog;
    Catalogue catalogue;
    TerminalFrontEnd frontEnd;
    RenamePrinter renamePrinter;
    std::unique_ptr<MainController> controller;
};

} // namespace tavrin
