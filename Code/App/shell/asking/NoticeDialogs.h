#pragma once

#include "shell/asking/FrontEnd.h"
#include "shell/commands/ShellServices.h"

#include <functional>

namespace tavrin {

/// The explaining dialogs, most of which the user can switch off for good. `then` gets the choice, at once
/// where the dialog is switched off; not at all when the window goes without an answer. Main thread.
class NoticeDialogs {
  public:
    using Then = std::function<void(int choice)>;

    explicit NoticeDialogs(ShellServices& shared) : services(shared) {}

    void showNoFilesSelectedDialog(Then then);
    void showInconsistentSettingsDialog(Then then);
    /// The choice is ok where it is switched off.
    void showDropletInformation(Then then);
    void showDropletEditModeInfo(Then then);
    /// Explains a simple list of names that was saved without an order of its own.
    void showSimpleTemplateInformation();
    /// Says that files lack values of the tags in a pattern. Shown in normal operation only; `then` is called
    /// when it is gone, also where it is not shown, and dropped when the window goes without an answer.
    void showTagNotPresentDialog(std::function<void()> then);

  private:
    void showWithMemory(NoticeDialog dialog, Then then);

    ShellServices& services;
};

} // namespace tavrin
