#pragma once

#include "shell/asking/FrontEnd.h"
#include "shell/commands/ShellServices.h"
#include "tags/TagNotice.h"

#include <functional>
#include <memory>

namespace tavrin {

class RunLoop;

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

/// Has the main thread tell the user that files lack values of a pattern, while the worker that found it out
/// waits: no longer than the dialog, the run loop and the service of this object last.
class MissingTagNotice final : public TagNotice {
  public:
    /// Called on the main thread; `gone` is to be called, or dropped, when the dialog is gone.
    using Show = std::function<void(std::function<void()> gone)>;

    MissingTagNotice(RunLoop& mainLoop, Show showDialog);
    ~MissingTagNotice() override;

    void tellThatTagIsNotPresent() override;
    /// Ends the service: frees who waits, and shows nothing any more. Main thread.
    void end();

  private:
    class Dialogs;

    RunLoop& loop;
    Show show;
    std::shared_ptr<Dialogs> dialogs; ///< shared with what is posted, which may outlive this
};

} // namespace tavrin
