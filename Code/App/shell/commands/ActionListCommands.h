#pragma once

#include "shell/commands/ShellServices.h"

#include <cstdint>

namespace tavrin {

/// The commands on the list of steps, and the panel of the current step. Main thread.
class ActionListCommands {
  public:
    explicit ActionListCommands(ShellServices& shared) : services(shared) {}

    /// Brings the panel of the current step up.
    void switchAction() { activateView(); }
    void activateView();
    /// Whether any step takes part in a run; says so to the user when none does.
    bool validateActionList();
    /// Validates what is being typed.
    void updateAll();

    /// A copy of the current step behind it, which becomes the current one.
    void addAction();
    /// Nothing while there is only one step, as the list is never empty.
    void removeAction();
    /// Keeps the current step alone.
    void clearActions();
    void nudgeActionUp();
    void nudgeActionDown();
    /// Moves a step to another place, counted without it, and makes it the current one.
    void moveAction(std::int32_t from, std::int32_t to);
    /// Puts another action of the menu in the place of the current step.
    void chooseAction(std::int32_t menuIndex);
    void resetToDefaults();
    /// Kept for interfaces that ask for it; whether files can be removed is asked elsewhere.
    [[nodiscard]] bool canRemoveAction() const { return false; }

  private:
    ShellServices& services;
};

} // namespace tavrin
