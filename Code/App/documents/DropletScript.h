#pragma once

#include "documents/DropletBundle.h"

#include <string>

namespace tavrin {

/// A droplet's entry in the scripts menu of the file manager Nautilus, which takes no drops on launchers. The
/// entries lie in the user's data folder, and only those that bear our mark are ever touched. Failures are
/// ignored: a droplet works without its entry.
class DropletScript {
  public:
    /// `program` is the one that the script starts, an absolute path in bytes.
    DropletScript(DropletBundle droplet, std::string program);

    [[nodiscard]] std::string text() const;
    /// Writes the script under the droplet's name, or that name with a number where it belongs to something
    /// else. Nothing where the user has no such file manager.
    void write() const;
    /// Removes the scripts of droplets that are gone. One on a medium that is not there counts as there.
    static void removeOrphans();

    /// Where the scripts lie.
    [[nodiscard]] static std::string folder();

  private:
    DropletBundle bundle;
    std::string program;
};

} // namespace tavrin
