#pragma once

#include <chrono>
#include <cstdint>

namespace tavrin {

/// 2001-01-01 00:00:00 UTC, the zero of all stored times, in seconds since 1970.
inline constexpr std::int64_t referenceDateSince1970 = 978307200;

/// The present moment in seconds since 2001.
inline double secondsSince2001() {
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return since1970.count() - static_cast<double>(referenceDateSince1970);
}

/// Tells an item on disk from another that has come to bear its name.
struct FileIdentity {
    std::uint64_t inode = 0;  ///< 0 where the item has not been seen
    std::uint32_t device = 0; ///< as the kernel holds it: 12 bits of major, 20 of minor number
    [[nodiscard]] bool isKnown() const { return inode != 0; }
    bool operator==(const FileIdentity&) const = default;
};

/// What one statx call tells of an item. Times are seconds since 2001-01-01 00:00:00 UTC.
struct FileStatus {
    enum class Kind : std::uint8_t { file, folder, link, other };
    Kind kind = Kind::file;
    bool immutable = false;
    bool appendOnly = false;     ///< nothing in it can be changed or, in a folder, renamed; it can only grow
    bool tellsLocks = false;     ///< its file system tells of the two above
    bool isSticky = false;       ///< a folder in which only owners rename their items
    bool isForeign = false;      ///< it belongs to another user, who counts
    std::uint64_t size = 0;      ///< logical size in bytes; 0 for a folder
    std::uint64_t allocated = 0; ///< bytes on the medium; 0 for a folder
    double modificationDate = 0;
    double creationDate = 0; ///< birth time where the file system has one, else the modification time
    bool hasBirthTime = false;
    double changeDate = 0; ///< of the status; of a folder also of its entries. No program can set it
    FileIdentity identity;
    /// Nobody may rename it, nor what lies in it.
    [[nodiscard]] bool isLocked() const { return immutable || appendOnly; }
};

} // namespace tavrin
