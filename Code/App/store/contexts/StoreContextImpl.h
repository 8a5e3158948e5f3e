#pragma once

#include "store/contexts/StagedChanges.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStoreImpl.h"
#include "store/paging/RowImages.h"
#include "store/rows/NameSlots.h"
#include "support/text/PathParts.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

/// The last component of a path as rows have it: the root's is "/".
inline std::string_view componentOf(std::string_view path) {
    const std::string_view last = lastComponent(path);
    return last.empty() ? "/" : last;
}

/// The inside of a context: blocks of rows read so far, changes staged in them, cursors and sorted lists.
struct StoreContext::Impl {
    Impl(ItemStore& newStore, MergePolicy newPolicy) : store(newStore), policy(newPolicy) {}

    // --- Blocks ---
    RowBlock& blockOf(RowId id);
    RowBlock& blockWithNames(RowId id);
    RowBlock& blockWithFinals(RowId id);
    /// The copy of a row that is in no block, gathered along the sorted list being walked; null when the row
    /// is better read with its neighbours.
    RowImages::Image* image(RowId id);
    void forgetStaleImages();
    PassMarker storedStageFlag(RowId id);
    /// Absent while the final name is the name.
    std::optional<TextRegion::Text> finalText(RowId id);
    /// The block if it is here already.
    RowBlock* presentBlock(RowId id);
    void note(RowBlock& block, RowId id, RowBlock::Change change);
    RowId insert(const NodeRow& row, std::string_view component);
    void dropCleanBlocks();
    void dropAllBlocks();
    /// Makes deleted rows read as empty ones; the blocks stay, since a list is emptied row by row.
    void forgetDeletedRows(const StoreChanges& changes);
    /// Reads the rows of a block anew in which nothing is staged.
    void refreshUnchangedRows(RowBlock& block);

    // --- Reading through the staged changes ---
    std::uint8_t summary(RowId id);
    [[nodiscard]] bool hasStagedRows() const { return !staged.blocks.empty() || !staged.marks.empty(); }
    template <typename Ask> auto askSourceItems(Ask ask);
    /// The path of a row that can have children; empty when it is gone.
    const std::string& folderPath(RowId folder);

    // --- Fetching ---
    bool matches(const FetchRequest& request, RowId id);
    /// Adds matching rows until there are as many as the limit; where to go on.
    RowId scan(const FetchRequest& request, RowId from, RowId to, std::vector<RowId>& into);
    std::vector<RowId> fetchByCursor(const FetchRequest& request);
    std::vector<RowId> fetchSorted(const FetchRequest& request);
    std::vector<RowId> fetchChildren(const FetchRequest& request);
    /// Visits rows as the store has them, a segment at a time under its lock, until `visit` returns false.
    /// It gets the segment and the row's place in it.
    template <typename Visit> void forEachRow(const std::vector<RowId>& rows, Visit visit);
    /// The places of all folders in the order of their paths, by row.
    std::unordered_map<RowId, std::uint32_t> folderRanks();
    void sortRows(std::vector<RowId>& rows, const std::vector<SortDescriptor>& order);

    ItemStore& store;
    const MergePolicy policy;
    std::recursive_mutex mutex;

    StagedChanges staged;
    EngineControl controlForReading;

    std::unordered_map<std::uint32_t, std::unique_ptr<RowBlock>> blocks;
    std::vector<std::unique_ptr<RowBlock>> spareBlocks;
    RowBlock* lastBlock = nullptr;
    std::uint64_t clock = 0;
    RowId nextReserved = noRow; // ids for inserts: from here to the end of the block
    RowId endReserved = noRow;

    RowId lastFolder = noRow;
    std::string lastFolderPath;
    std::string scratch;
    RowId firstDeletable = noRow; // where the next bulk deletion goes on

    struct Cursor {
        FetchEntity entity;
        Predicate predicate;
        RowId next;
    };
    std::vector<Cursor> cursors;

    using SortedRows = ItemStore::Impl::SortedRows;
    /// How far a walk along sorted rows has come.
    struct Walk {
        std::shared_ptr<const SortedRows> list;
        std::size_t next = 0;
    };
    std::vector<Walk> walks;
    Walk& walkAlong(const FetchRequest& request);
    std::shared_ptr<const SortedRows> sortedRows(const FetchRequest& whole);
    std::uint64_t versionsOf(const FetchRequest& request);

    std::unordered_map<RowId, NameSlots> nameIndexes; // by folder, for looking files up by path
    std::uint64_t nameIndexVersion = 0;
    RowId childNamed(const ItemStore::Access& inside, RowId folder, std::string_view component);

    RowImages images;
    std::uint64_t imagesRowVersion = 0;
    std::uint64_t imagesDeletionVersion = 0;
    std::shared_ptr<const SortedRows> walked; // those out of id order that rows were last fetched from
    std::size_t walkPosition = 0;

  private:
    bool gatherImages(RowId id);
    RowBlock& loadBlock(std::uint32_t number);
    void makeRoomForBlock();
};

} // namespace tavrin
