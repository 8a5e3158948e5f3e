#pragma once

#include "documents/DropletHandOver.h"

#include <optional>

namespace tavrin {

/// The command line of a droplet's launcher: "--droplet BUNDLE", "--launcher=FILE" or both, then files. All
/// that follows are files, whatever they are called. Absent where the program was not started by a droplet.
[[nodiscard]] std::optional<DropletRequest> dropletRequestOf(int count, char** arguments);

/// The program as a droplet: a process of its own, which neither looks for the window that is open nor can be
/// found as one, and leaves what the user has stored alone. Runs or edits the droplet to its end. Gives the
/// exit status: 2 where the droplet is no good, or none of the files is there.
[[nodiscard]] int runDroplet(const DropletRequest& request, char* programName);

} // namespace tavrin
