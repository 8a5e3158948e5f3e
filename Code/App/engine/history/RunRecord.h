#pragma once

#include "platform/files/FileStatus.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What a run was for. A redo takes an undo back, or finishes a rename.
enum class RunKind : std::uint8_t { rename, undo, redo };

/// The lines of the record of a run. Fields stand behind tabs; names and paths are bytes, with tab, line feed
/// and backslash escaped. Times of items are seconds since 2001, printed so that they read back as they were.
struct RunHeading {
    std::string time; ///< when the run began, ISO 8601 with zone
    std::int64_t process = 0;
    std::string bootId;
    std::string who; ///< "tvrn", "window", "droplet"
    RunKind what = RunKind::rename;
    std::string of; ///< the name of the run that it takes back or finishes

    /// Seconds since 2001; absent for a time that is none.
    [[nodiscard]] std::optional<double> began() const;
};

struct RunEnd {
    std::int64_t changed = 0;
    std::int64_t failed = 0;
    std::string time;
    bool wasStopped = false;
};

struct RecordedFolder {
    std::uint32_t number = 0;
    FileIdentity identity;
    std::uint64_t volume = 0;
    std::optional<double> birthTime;
    std::string path; ///< when the run was planned
};

struct RecordedItem {
    /// More to know an item by, where its inode may change.
    struct Look {
        std::uint64_t size = 0;
        double modified = 0;
    };

    std::uint32_t folder = 0;
    std::uint64_t inode = 0; ///< 0: not seen
    std::optional<double> birthTime;
    FileStatus::Kind kind = FileStatus::Kind::file;
    std::string oldName;
    std::string newName;
    std::string standIn; ///< where the item may lie for a moment; often none
    std::optional<Look> look;
};

/// Printing and reading of single lines, without their ends. Reading gives nothing for a line that is not
/// exactly of its kind.
namespace runLine {

inline constexpr std::string_view firstLine = "tavrin run 1";
inline constexpr std::string_view anyFirstLine = "tavrin run ";

/// Stands behind the recipe where links were renamed themselves.
inline constexpr std::string_view linksLine = "links";

struct Recipe {
    std::string text;
};
/// Stands behind so many lines, with their checksum.
struct Block {
    std::size_t lines = 0;
    std::uint32_t checksum = 0;
};
/// The run itself has found another inode than its plan had.
struct Late {
    std::size_t item = 0; ///< counted from 0
    std::uint64_t inode = 0;
};
/// A device whose file system can't refuse a taken name.
struct NoFlag {
    std::uint32_t device = 0;
};

// Of RunHeading, Recipe, RecordedFolder, RecordedItem, RunEnd, Block, Late and NoFlag.
template <typename Kind> void print(const Kind& what, std::string& into);
template <typename Kind> [[nodiscard]] std::optional<Kind> read(std::string_view line);

/// The name of a kind of run in records and in what is shown.
[[nodiscard]] std::string_view nameOf(RunKind kind);
/// A moment of the clock as records have it.
[[nodiscard]] std::string timeNow();

} // namespace runLine

} // namespace tavrin
