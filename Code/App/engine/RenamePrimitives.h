#pragma once

#include "engine/RenameRoutes.h"
#include "engine/SourceItemChanges.h"
#include "engine/StageProgress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The single rename of one item: refuses links, tries the route of the mode and then the others, counts,
/// and leaves the reason of a failure. Worker thread only.
class RenamePrimitives {
  public:
    RenamePrimitives(FileSystem& disk, StageProgress progress, SourceItemChanges& sourceItems);

    /// The settings for the attempts that follow.
    void takeSettings(int renameMode, bool shouldCopyFileComments);

    /// Names are components in bytes, `atPath` is the folder. A name that no file can bear fails like any
    /// other. With `expected`, anything else that lies there is left alone.
    bool renameCurrentName(std::string_view currentName, const std::string& atPath,
                           std::string_view toNewName, bool treatAsRoot,
                           const std::optional<FileIdentity>& expected = std::nullopt);
    /// A step that is not to be tried at all: fails with the default reason.
    bool refuse();

    [[nodiscard]] const std::string& failureReasonString() const { return failureReason; }
    /// What the last attempt was about; absent when it was not to be seen.
    [[nodiscard]] const std::optional<FileIdentity>& identity() const { return lastIdentity; }

    /// Items renamed so far; temporary steps are taken off again by those who make them.
    std::int32_t actuallyRenamedCounter = 0;

  private:
    enum class Route { lion, fileManager, finder, leopard };

    bool tryRoutes(const std::string& folder, std::string_view newName);
    bool tryRoute(Route route);

    RenameRoutes routes;
    StageProgress report;
    SourceItemChanges& changes;
    int mode = 0;
    bool copiesComments = false;
    std::string failureReason;
    std::optional<FileIdentity> lastIdentity;
};

} // namespace tavrin
