#pragma once

#include "platform/files/FileSystem.h"

#include <map>

namespace tavrin {

/// What file systems have told of themselves, asked once for each device. One thread at a time.
class KnownVolumes {
  public:
    /// Of the one that the folder lies on, which has this identity; all zeros where it can't be asked.
    [[nodiscard]] const VolumeFacts& of(OpenFolder& folder, const FileIdentity& identity) {
        const auto known = volumes.find(identity.device);
        if (known != volumes.end() && identity.isKnown())
            return known->second;
        unknown = {};
        if (folder.volume(unknown) != 0)
            return unknown = {};
        return identity.isKnown() ? volumes[identity.device] = unknown : unknown;
    }

  private:
    std::map<std::uint32_t, VolumeFacts> volumes; ///< by device
    VolumeFacts unknown;
};

} // namespace tavrin
