#pragma once

#include "documents/DropletBundle.h"
#include "support/values/PropertyValue.h"

#include <optional>
#include <string>

namespace tavrin {

/// Writes droplets. What stands in a droplet's place is replaced only if it is a droplet with nothing else in
/// it, and stays whole when writing fails. Errors are sentences that begin with the path.
class DropletBundleWriter {
  public:
    /// `program` is the one that the droplets start, an absolute path in bytes. Without trust marks no other
    /// program is run.
    explicit DropletBundleWriter(std::string program, bool setsTrustMarks = true);

    /// The bundle at `path` and its launcher, with what makes file managers take both.
    [[nodiscard]] std::optional<std::string> writeDropletWithDictionary(const PropertyDictionary& settings,
                                                                        const std::string& path) const;
    /// Brings a droplet of an older form to the present one, with these settings.
    [[nodiscard]] std::optional<std::string> upgrade(const PropertyDictionary& settings,
                                                     const DropletBundle& droplet) const;
    /// Writes a droplet's settings file, atomically.
    [[nodiscard]] static std::optional<std::string> saveDropletSettings(const PropertyDictionary& settings,
                                                                        const std::string& toPath);

  private:
    [[nodiscard]] std::optional<std::string> writeBundle(const PropertyDictionary& settings,
                                                         const DropletBundle& bundle) const;
    [[nodiscard]] std::optional<std::string> writeLauncher(const DropletBundle& bundle) const;

    std::string program;
    bool setsTrustMarks;
};

} // namespace tavrin
