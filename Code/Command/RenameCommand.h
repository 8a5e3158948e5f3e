#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

#include <cstdint>
#include <string>

namespace tavrin {

/// How many names were changed, as a line.
[[nodiscard]] std::string summaryOf(std::int32_t count);

/// `tvrn rename`: renames, and says how many names it changed. Throws UsageError.
ExitStatus runRenameCommand(const RenameOptions& options);

} // namespace tavrin
