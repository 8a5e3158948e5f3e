#pragma once

#include "engine/history/TakeBack.h"
#include "shell/commands/ShellServices.h"

#include <memory>
#include <string>

namespace tavrin {

class ConfirmationFlow;
class PreviewControl;

/// Undo and redo of whole runs in the window: says what is next, shows what would be done, and does it when
/// the user agrees. Main thread.
class TakeBackCommands {
  public:
    struct Units {
        PreviewControl& preview;
        ConfirmationFlow& confirmation;
    };
    TakeBackCommands(ShellServices& shared, Units otherUnits) : services(shared), units(otherUnits) {}

    /// What undo or redo would take up, in the words of a menu; empty where there is nothing.
    [[nodiscard]] std::string description(RunKind what) const;
    /// Without the name of a run the one whose turn it is. Does nothing while it asks about one already.
    void takeBack(RunKind what, const std::string& run = {});
    /// Tells of a run that was cut off, if there is one, and offers to see to it.
    void tellInterruptedRun();

  private:
    void preview(const ChosenRun& chosen, const std::shared_ptr<void>& question);
    void ask(const ChosenRun& chosen, const TakeBackResult& preview, const std::shared_ptr<void>& question);
    void perform(const ChosenRun& chosen);
    void tell(const std::string& title, const std::string& text);
    void tellOf(const PastRun& run);

    ShellServices& services;
    Units units;
    /// Lives from the command to the answer, or until what was to lead to one is dropped. The answer lets go
    /// of it, since a worker may hold its part for a moment longer.
    std::weak_ptr<void> questionInHand;
};

} // namespace tavrin
