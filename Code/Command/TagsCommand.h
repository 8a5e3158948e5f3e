#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn tags`: tells all tags of the tag library with their values for each file on standard output. Throws
/// UsageError, with nothing told, when there is a file that cannot be read.
ExitStatus runTagsCommand(const TagsOptions& options);

} // namespace tavrin
