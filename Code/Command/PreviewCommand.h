#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn preview`: prints what a rename would do, and touches nothing. Throws UsageError.
ExitStatus runPreviewCommand(const PreviewOptions& options);

} // namespace tavrin
