#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn history`: lists past runs or the items of one, or forgets some. Throws UsageError.
ExitStatus runHistoryCommand(const HistoryOptions& options);

} // namespace tavrin
