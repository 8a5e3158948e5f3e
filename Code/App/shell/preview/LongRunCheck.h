#pragma once

#include "platform/processes/RunLoop.h"
#include "shell/commands/ShellServices.h"

#include <memory>

namespace tavrin {

/// Looks once a second whether a run counts as long, and then brings the progress bar up. Main thread.
class LongRunCheck {
  public:
    explicit LongRunCheck(ShellServices& shared) : services(shared) {}

    /// The first call starts the check; it then renews itself.
    void checkUpOnLongProcessingTimer();

  private:
    ShellServices& services;
    std::unique_ptr<Timer> longProcessingCheckTimer;
};

} // namespace tavrin
