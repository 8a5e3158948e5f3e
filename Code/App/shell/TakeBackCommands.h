#pragma once

#include "engine/TakeBack.h"
#include "shell/ShellServices.h"

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
    /// Without the name of a run the one whose turn it is.
    void takeBack(RunKind what, const std::string& run = {});
    /// Tells of a run that was cut off, if there is one, and offers to see to it.
    void tellInterruptedRun();

  private:
    void ask(const ChosenRun& chosen, const TakeBackResult& preview);
    void perform(const ChosenRun& chosen);
    void tell(const std::string& title, const std::string& text);
    [[nodiscard]] RunHistory history() const;

    ShellServices& services;
    Units units;
};

} // namespace tavrin
