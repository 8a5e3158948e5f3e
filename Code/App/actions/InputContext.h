#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace tavrin {

class FileMO;

/// What an action is told of one item. The caller keeps one object and refills it from item to item.
struct InputContext {
    std::u16string currentName; ///< the name to work on; every ":" is already "/"
    std::int32_t rank = 1;      ///< the item's place in the run, from 1
    std::int32_t lastRank = 1;  ///< that of the last item which counts together with it
    FileMO* fileMo = nullptr;   ///< the item's row, not owned; null where only a path is known
    std::string path;           ///< the path in bytes, used where `fileMo` is null
    bool preview = false;       ///< set only while a composite runs its current step

    /// The item's full current path in bytes. Made anew on each call, so ask only when needed.
    [[nodiscard]] std::string inputPath() const;
};

/// What an action answers. The caller keeps one object too and resets `regex` and `failure` between
/// items.
struct OutputContext {
    std::u16string newName; ///< the complete new name
    std::optional<std::array<std::u16string, 6>> regex;
    /// Why the metadata that the new name needs could not be read, so that the name stays; else empty.
    std::string failure;
};

} // namespace tavrin
