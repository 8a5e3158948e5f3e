#pragma once

#include "shell/commands/ShellServices.h"

namespace tavrin {

/// The pane at the left with the list of steps: whether it shows, and how wide. Widths are in points.
class MultistepPane {
  public:
    static constexpr double minimumWidth = 150;
    static constexpr double maximumWidth = 300;

    explicit MultistepPane(ShellServices& shared) : services(shared) {}

    /// At the start: hidden, or as wide as it was last.
    void restore();
    /// Hides the pane if it shows, and the reverse.
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
