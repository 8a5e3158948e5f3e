#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn rename`: renames, and says how many names it changed. Throws UsageError.
ExitStatus runRenameCommand(const RenameOptions& options);

} // namespace tavrin
