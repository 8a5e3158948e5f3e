#pragma once

#include "tags/TagNotice.h"

#include <functional>
#include <memory>

namespace tavrin {

class RunLoop;

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
