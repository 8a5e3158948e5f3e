#pragma once

#include "engine/history/TakeBack.h"
#include "shell/commands/ShellServices.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

class ConfirmationFlow;
class PreviewControl;

/// Undo and redo of whole runs in the window: tells what is next, finds out whether all of it can be done,
/// asks if not, and has it done. Main thread.
class UndoCommands {
  public:
    struct Units {
        PreviewControl& preview;
        ConfirmationFlow& confirmation;
    };
    UndoCommands(ShellServices& shared, Units otherUnits) : services(shared), units(otherUnits) {}

    /// What undo or redo would take up, for a menu.
    struct Next {
        bool finishes = false;       ///< it does what a run has left undone, instead of undoing it again
        bool isOfUndo = false;       ///< and that run is itself an undo
        std::int64_t count = 0;      ///< of names; 0: not known
        std::string folder = {};     ///< the one that holds all of them; empty: not known
        std::size_t folderCount = 0; ///< those that hold one of them
    };
    /// Nothing where there is none. What long records hold is read by a worker the first time: `known` is
    /// called when there is more to tell.
    [[nodiscard]] std::optional<Next> next(RunKind what, std::function<void()> known);

    /// Without the name of a run the one whose turn it is. Begins at once if everything can be done and this
    /// program has made the run since its start; else asks. Does nothing while it asks already, or during
    /// a run.
    void undoRun(const std::string& run = {}) { takeUp(RunKind::undo, run); }
    /// Redoes what was undone; of a run that was cut off or stopped, does what it has left undone.
    void redoRun(const std::string& run = {}) { takeUp(RunKind::redo, run); }
    /// Tells of a run that was cut off, if there is one, and offers to see to it.
    void tellInterruptedRun();

  private:
    struct Folders {
        std::string common;
        std::size_t count = 0;
    };

    void takeUp(RunKind what, const std::string& run);
    void begin(const ChosenRun& chosen, const std::shared_ptr<void>& question);
    void looked(const ChosenRun& chosen, const TakeBackResult& found, const std::shared_ptr<void>& question);
    void perform(const ChosenRun& chosen);
    void ended(const TakeBackResult& result);
    void tell(const std::string& title, const std::string& text);
    [[nodiscard]] static Folders foldersOf(const PastRun& run);

    ShellServices& services;
    Units units;
    std::map<std::string, Folders> knownFolders; ///< by run; empty while they are looked for
    /// Lives from the command to the answer, or until what was to lead to one is dropped. The answer lets go
    /// of it, since a worker may hold its part for a moment longer.
    std::weak_ptr<void> questionInHand;
};

} // namespace tavrin
