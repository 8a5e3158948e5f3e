#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

namespace tavrin {

/// `tvrn presets`: lists the saved presets on standard output.
ExitStatus runPresetsCommand(const PresetsOptions& options);

} // namespace tavrin
