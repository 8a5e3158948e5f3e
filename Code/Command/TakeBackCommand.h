#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn undo` and `tvrn redo`. Throws UsageError.
ExitStatus runTakeBackCommand(const TakeBackOptions& options);

} // namespace tavrin
