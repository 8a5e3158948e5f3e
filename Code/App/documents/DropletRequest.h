#pragma once

#include "documents/DropletBundle.h"
#include "support/values/PropertyValue.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// What a droplet's launcher asks of the program: the droplet, and the files that were dropped on it.
struct DropletRequest {
    std::string bundlePath;         ///< absolute, in bytes; empty where it was not told
    std::string launcherPath;       ///< the same
    std::vector<std::string> files; ///< absolute, in bytes

    /// The start that such a request leads to.
    struct Start {
        PropertyDictionary record; ///< to be put under DropletHandOver::recordKey, for this process alone
        bool isSilent = false;     ///< nothing is to be shown
        std::vector<std::string> missingFiles;
    };
    struct Failure {
        std::string message;   ///< a whole text for the user
        bool isSilent = false; ///< nothing is to be shown
    };

    /// The droplet by its path, else the one beside its launcher.
    [[nodiscard]] std::optional<DropletBundle> bundle() const;
    /// Reads and checks the droplet. Files that are gone, or whose names were changed on their way here, are
    /// sorted out; where none is left, that is a failure too.
    [[nodiscard]] std::variant<Start, Failure> start() const;
    /// What to tell of files that are not there.
    [[nodiscard]] static std::string missingText(const std::vector<std::string>& missing);
};

} // namespace tavrin
