#pragma once

#include "documents/DropletHandOver.h"

#include <optional>

namespace tavrin {

/// The command line of a droplet's launcher: "--droplet BUNDLE", "--launcher=FILE" or both, then files. All
/// that follows are files, whatever they are called.
struct DropletArguments {
    /// Absent where the program was not started by a droplet.
    [[nodiscard]] static std::optional<DropletRequest> of(int count, char** arguments);
};

} // namespace tavrin
