#pragma once

#include "store/contexts/EngineControl.h"
#include "store/contexts/ProcessingError.h"
#include "store/contexts/StagedChanges.h"
#include "store/paging/ItemStore.h"
#include "store/paging/SegmentTable.h"
#include "store/paging/StoreFile.h"
#include "store/rows/FolderTable.h"
#include "store/rows/RowBlock.h"
#include "store/rows/TagTable.h"
#include "store/sources/SourceItemTable.h"

#include <atomic>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The inside of a store. Everything but the atomics is guarded by `mutex`.
struct ItemStore::Impl {
    explicit Impl(Options options);

    /// A run of fresh ids that begins a block: its first id. Ids are never given twice.
    RowId reserveBlock();

    void loadRows(RowBlock& block);
    void loadNames(RowBlock& block);
    void loadFinals(RowBlock& block);
    /// The rows below a folder, in reading order.
    std::vector<RowId> children(RowId folder);

    /// Takes the changes over, all or nothing. Throws StoreError when what is changed cannot be read. Fills
    /// in what contexts must know.
    void apply(StagedChanges& staged, StoreChanges& into);
    bool migrateToMemory();

    std::mutex mutex;
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

    /// Versions by what a list can depend on.
    std::uint64_t insertVersion = 1;
    std::uint64_t sortVersion = 1;
    std::uint64_t filterVersion = 1;
    std::uint64_t namingVersion = 1;
    std::uint64_t planVersion = 1;
    std::uint64_t rowVersion = 1; ///< any value of any row, its markers apart
    std::atomic<std::uint64_t> deletionVersion{1};
    std::atomic<std::uint64_t> listVersion{1};

    std::function<void(const StoreChanges&)> didSave;

  private:
    void touchSegments(const StagedChanges& staged);
    void applyBlock(RowBlock& block, StagedChanges& staged, StoreChanges& into);
    void insertRow(RowBlock& block, std::size_t index, StagedChanges& staged);
    std::uint8_t updateAttributes(NodeRow& row, const NodeRow& changed, const NodeRow& original);
    void collectTree(RowId row, std::vector<RowId>& into);
    void removeRow(RowId row);
    void dropEmptySegments();
    void applySmallEntities(StagedChanges& staged, StoreChanges& into);
};

} // namespace tavrin
