#pragma once

#include "documents/DropletHandOver.h"

namespace tavrin {

/// The program as a droplet: a process of its own, which neither looks for the window that is open nor can be
/// found as one, and leaves what the user has stored alone.
struct DropletStart {
    /// Runs or edits the droplet to its end. Gives the exit status: 2 where the droplet is no good, or none
    /// of the files is there.
    [[nodiscard]] static int run(const DropletRequest& request, char* programName);
};

} // namespace tavrin
