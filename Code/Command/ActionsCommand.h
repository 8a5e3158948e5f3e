#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn actions`: tells the catalogue, or one action of it, on standard output. Throws UsageError for a name
/// that is not in it.
ExitStatus runActionsCommand(const ActionsOptions& options);

} // namespace tavrin
