#pragma once

#include "store/contexts/SmallEntities.h"
#include "store/contexts/StagedChanges.h"
#include "store/paging/ItemStore.h"
#include "store/paging/SegmentTable.h"
#include "store/paging/StoreFile.h"
#include "store/rows/FolderTable.h"
#include "store/rows/TagTable.h"
#include "store/sources/SourceItemTable.h"

#include <array>
#include <atomic>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The inside of a store. Everything but what is atomic or const is guarded by `mutex`.
struct ItemStore::Impl {
    explicit Impl(Options options);

    /// A run of fresh ids that begins a block: its first id. Ids are never given twice.
    RowId reserveBlock();

    void loadRows(RowBlock& block);
    void loadNames(RowBlock& block);
    void loadFinals(RowBlock& block);
    /// The rows below a folder, in reading order.
    std::vector<RowId> children(RowId folder);

    [[nodiscard]] bool exists(RowId row) const {
        return row < summaries.size() && summaries[row] != rowSummary::none;
    }

    /// Behind the last id that was given.
    [[nodiscard]] RowId endOfRows() const { return static_cast<RowId>(summaries.size()); }
    [[nodiscard]] bool matches(const FetchRequest& request, RowId row) const {
        return request.predicate.matchesSummary(request.entity, summaries[row]) &&
               request.predicate.matchesMarkers(stageFlags[row], secondaryStageFlags[row]);
    }

    /// Takes the changes over, all or nothing. Throws StoreError when what is changed cannot be read. Fills
    /// in what contexts must know.
    void apply(StagedChanges& staged, StoreChanges& into);
    bool migrateToMemory();

    const std::uint64_t serial;
    const std::optional<std::string> openError;
    std::atomic<Kind> kind;
    std::unique_ptr<StoreFile> file;
    SegmentTable segments;
    FolderTable folders;
    // By id.
    std::vector<std::uint8_t> summaries;
    std::vector<std::uint8_t> stageFlags;
    std::vector<std::uint8_t> secondaryStageFlags;
    TagTable tags;
    EngineControl control;
    SourceItemTable sourceItems;
    std::deque<ProcessingError> errors;
    std::uint64_t secret = 0; ///< of the random sort keys

    /// All rows that match a predicate, in an order. What one context has sorted serves the others.
    struct SortedRows {
        FetchEntity entity;
        Predicate predicate; // without markers
        std::vector<SortDescriptor> order;
        std::vector<RowId> rows;
        std::uint64_t versions = 0; ///< of what the order depends on
        bool fillsBlocks = true;    ///< by ascending id and close together, so that blocks of rows serve well

        [[nodiscard]] bool answers(const FetchRequest& request) const {
            return entity == request.entity && predicate == request.predicate && order == request.order;
        }
    };
    std::vector<std::shared_ptr<const SortedRows>> sortedRows; ///< the newest at the end

    /// Versions by what a list can depend on.
    std::uint64_t insertVersion = 1;
    std::array<std::uint64_t, 5> classVersions{1, 1, 1, 1, 1}; ///< by bit of ColumnClass
    std::uint64_t rowVersion = 1;                              ///< any value of any row, its markers apart
    std::atomic<std::uint64_t> deletionVersion{1};

    std::function<void(const StoreChanges&)> didSave;

  private:
    friend class Access;
    std::mutex mutex;

    void touchSegments(const StagedChanges& staged);
    void applyBlock(RowBlock& block, StagedChanges& staged, StoreChanges& into);
    void insertRow(RowBlock& block, std::size_t index, StagedChanges& staged);
    void collectTree(RowId row, std::vector<RowId>& into);
    void takeFromParent(RowId row);
    void removeRow(RowId row);
    void dropEmptySegments();
    void applySmallEntities(StagedChanges& staged, StoreChanges& into);
};

/// The inside of a store under its lock. Not to be held while the handler of commits is called.
class ItemStore::Access {
  public:
    explicit Access(Impl& newInside) : lock(newInside.mutex), inside(newInside) {}
    Impl* operator->() const { return &inside; }

  private:
    std::scoped_lock<std::mutex> lock;
    Impl& inside;
};

inline ItemStore::Access ItemStore::access() const { return Access(*impl); }

} // namespace tavrin
