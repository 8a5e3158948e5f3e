#pragma once

#include "documents/DropletBundle.h"

#include <optional>
#include <string>

namespace tavrin {

/// The desktop entry beside a droplet's bundle: what files are dropped on, since file managers would move
/// what is dropped on the bundle into it.
class DropletLauncher {
  public:
    /// `program` is the one that the launcher starts, an absolute path in bytes.
    DropletLauncher(DropletBundle droplet, std::string program);

    [[nodiscard]] std::string text() const;
    /// Whether the launcher's place is free, or holds a launcher of a droplet.
    [[nodiscard]] bool mayBeWritten() const;
    /// Writes it executable; the reason where that failed, or where something foreign is in its place.
    [[nodiscard]] std::optional<std::string> write() const;
    /// Tells the desktops that the launcher may be run and how the bundle looks. Each asks for this in its
    /// own way; failures are ignored. Runs other programs and waits for them, a few seconds at most.
    void setTrustMarks() const;

    /// Whether this file is a launcher of a droplet.
    [[nodiscard]] static bool isLauncher(const std::string& path);
    /// The bundle of a launcher: the one that it names, else the one beside it that has its name. Absent
    /// where neither is there, or the file is no launcher.
    [[nodiscard]] static std::optional<DropletBundle> bundleOf(const std::string& path);
    /// The bundle beside a launcher, by its name, whether or not it is there.
    [[nodiscard]] static DropletBundle bundleBeside(const std::string& path);

  private:
    DropletBundle bundle;
    std::string program;
};

} // namespace tavrin
