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
    /// Makes the numbers or letters of the current step as wide as the last of them needs, which a chain has
    /// by itself only where it says so. Where an earlier use of the action may count and has told, it does.
    void fitWidth(bool mayBeRemembered = true);
    /// Kept for interfaces that ask for it; whether files can be removed is asked elsewhere.
    [[nodiscard]] static bool canRemoveAction() { return false; }

    // The list of steps at the left: whether it shows, and how wide. Widths are in points.
    static constexpr double minimumWidth = 150;
    /// At the start: hidden, or as wide as it was last.
    void restoreMultistepDrawer();
    /// Hides the list if it shows, and the reverse.
    void showMultistepDrawer();
    /// Hiding the list is offered only while there is a single step.
    [[nodiscard]] bool canCollapse() const;
    /// The user has moved the divider (or the front end tells of a move that came from here: that is
    /// ignored).
    void splitViewDidResizeSubviews(bool isCollapsed, double width);

  private:
    void moveDivider(double position);
    [[nodiscard]] double storedPosition() const;

    ShellServices& services;
    bool flagSuspendSplitViewPositionSaving = false;
};

} // namespace tavrin
