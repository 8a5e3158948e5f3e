#pragma once

#include "platform/desktop/UpdateFeedReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Chooses from a feed of updates what to offer. Neither loads nor runs anything.
class SoftwareUpdater {
  public:
    /// Of the running program, and of the system.
    explicit SoftwareUpdater(std::string runningVersion, std::string ofSystem = systemVersionString())
        : version(std::move(runningVersion)), systemVersion(std::move(ofSystem)) {}

    /// The newest of the items that this system can run, or null. Of two final releases with the same first
    /// two numbers the later one in the feed. Valid as long as the list.
    [[nodiscard]] const UpdateFeedItem*
    bestValidUpdateInAppcast(const std::vector<UpdateFeedItem>& items) const;
    /// Whether the system is recent enough; an item that asks for nothing fits.
    [[nodiscard]] bool hostSupportsItem(const UpdateFeedItem& item) const;
    /// Whether the item is to be offered to who runs this version. The running version is the first one in
    /// the comparison: a final release is never older than one with the same first two numbers, so nobody is
    /// told of what he has.
    [[nodiscard]] bool isNewer(const UpdateFeedItem& item) const;

    /// The kernel's version as "x.y.z", else that of the distribution.
    [[nodiscard]] static std::string systemVersionString();

  private:
    std::string version;
    std::string systemVersion;
};

} // namespace tavrin
