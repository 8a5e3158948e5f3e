#pragma once

#include "platform/files/FileStatus.h"
#include "store/rows/NameProblem.h"
#include "store/rows/RowValues.h"

#include <cstdint>

namespace tavrin {

/// Identity of a `Node` row: given in reading order, never reused within a store.
using RowId = std::uint32_t;
inline constexpr RowId noRow = 0;

/// The sub-entity of a row; `none` is a row that is deleted or not yet made.
enum class NodeEntity : std::uint8_t { none, file, ghostNode };

/// What a row has its final name from.
enum class NamedBy : std::uint8_t {
    steps,
    hand,  ///< given by somebody for this item alone: it is meant byte by byte, and no other is made of it
    nobody ///< the row is left out: it keeps its name, which is taken for all others
};

/// What reading saw of an item.
struct SeenItem {
    FileIdentity identity;
    FileStatus::Kind kind = FileStatus::Kind::file;
};

/// Stands for the way to a row that is too far from another for 16 bits.
inline constexpr std::int16_t rowTooFar = INT16_MIN;

/// The fixed part of a `Node` row. Names lie beside it; `fullPath`, `parentPath`, `smartName` and `random`
/// are derived when read. The pass markers are kept by the store apart from the rows.
struct NodeRow {
    double modDate = 0; ///< seconds since 2001-01-01 00:00:00 UTC, like the two below
    double crDate = 0;
    double exif = 0;
    std::uint64_t size = 0;  ///< bytes; the attribute's text form is derived
    std::uint64_t inode = 0; ///< of the item when it was read, 0 if it was not seen
    RowId parent = noRow;
    RowId previousSibling =
        noRow; ///< a list from the folder's last child backwards, through deleted rows too
    RowId cannotBeRenamedBefore = noRow;
    RowId mustBeRenamedBefore = noRow;
    std::uint32_t device = 0; ///< beside the inode
    std::int32_t manualOrder = 0;
    std::int32_t depth = 0;
    NodeEntity entity : 3 = NodeEntity::none;
    FileStatus::Kind kind : 4 = FileStatus::Kind::file; ///< when it was read, if it was seen
    bool treatAsFolder = false;
    bool root = false;
    bool diff = false;
    bool madeDistinct = false;          ///< the final name was changed so that no other item has it
    RowValues loaded = RowValues::none; ///< which of the values that cost a look are there
    bool canBeRenamedIndependently = true;
    bool mustBeSwapped = false;
    NamedBy namedBy = NamedBy::steps;
    NameProblem problem = NameProblem::none; ///< that the item has with its new name
    /// Of a name that is too long: what its file system takes. Of an item that was replaced: the kind there
    /// now. Of a conflict, and of a name that an item on the list keeps: as a signed number, how far on from
    /// this row the other one is, or `rowTooFar`. Of a name that is taken by another item: 0.
    std::uint16_t problemDetail = 0;

    [[nodiscard]] bool hasExactName() const { return namedBy == NamedBy::hand; }
    [[nodiscard]] bool isLeftOut() const { return namedBy == NamedBy::nobody; }
    /// Of the item when it was read; of a folder whose contents were read: that of what holds them, beyond a
    /// link.
    [[nodiscard]] FileIdentity identity() const { return {inode, device}; }
    void setIdentity(const FileIdentity& seen) {
        inode = seen.inode;
        device = seen.device;
    }
};

/// The part of a row that filters ask for, one byte a row and always in memory, so that counting and
/// filtering never page. It alone tells whether a row exists.
namespace rowSummary {
inline constexpr std::uint8_t none = 0;
inline constexpr std::uint8_t isFile = 1;
inline constexpr std::uint8_t isGhostNode = 2;
inline constexpr std::uint8_t treatAsFolder = 4;
inline constexpr std::uint8_t root = 8;
inline constexpr std::uint8_t diff = 16;
inline constexpr std::uint8_t sortingInformationLoaded = 32;
inline constexpr std::uint8_t problem = 64;
inline constexpr std::uint8_t leftOut = 128;

constexpr std::uint8_t of(const NodeRow& row) {
    if (row.entity == NodeEntity::none)
        return none;
    return static_cast<std::uint8_t>(
        (row.entity == NodeEntity::file ? isFile : isGhostNode) | (row.treatAsFolder ? treatAsFolder : 0) |
        (row.root ? root : 0) | (row.diff ? diff : 0) |
        (row.loaded == RowValues::all ? sortingInformationLoaded : 0) |
        (row.problem != NameProblem::none ? problem : 0) | (row.isLeftOut() ? leftOut : 0));
}
} // namespace rowSummary

} // namespace tavrin
