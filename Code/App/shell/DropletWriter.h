#pragma once

#include <optional>
#include <string>

namespace tavrin {

/// Writes the chain and the settings of the moment back into a droplet.
class DropletWriter {
  public:
    virtual ~DropletWriter() = default;
    /// `path` of the droplet's settings file, in bytes. The error for the user on failure.
    virtual std::optional<std::string> saveDropletSettings(const std::string& path) = 0;
};

} // namespace tavrin
