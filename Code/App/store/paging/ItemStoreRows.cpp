#include "store/paging/ItemStoreImpl.h"
#include "store/paging/StoreError.h"
#include "store/rows/NodeKey.h"

#include <algorithm>
#include <utility>

// How the store hands rows to contexts and takes their changes over.

namespace tavrin {

namespace {

/// The changes that need the row's segment.
constexpr std::uint8_t ofSegment = RowBlock::attributes | RowBlock::finalName | RowBlock::inserted;

constexpr std::uint8_t bit(ColumnClass one) { return static_cast<std::uint8_t>(one); }

/// Takes over what was changed since the row was read; the classes of what is another value now.
std::uint8_t updateAttributes(NodeRow& row, const NodeRow& changed, const NodeRow& original) {
    std::uint8_t classes = 0;
    forEachMember([&](auto member, ColumnClass columnClass) {
        if (changed.*member == original.*member || row.*member == changed.*member)
            return;
        row.*member = changed.*member;
        classes |= bit(columnClass);
    });
    return classes;
}

} // namespace

void ItemStore::Impl::loadRows(RowBlock& block) {
    const std::uint32_t number = Segment::number(block.first);
    if (!segments.exists(number)) {
        block.rows.fill(NodeRow{});
        block.stageFlags.fill(unmarked);
        block.secondaryStageFlags.fill(unmarked);
        return;
    }
    const Segment& segment = segments.use(number);
    const std::size_t offset = Segment::index(block.first);
    for (std::size_t i = 0; i < RowBlock::capacity; ++i) {
        const RowId id = block.first + static_cast<RowId>(i);
        const bool isLive = exists(id);
        block.rows[i] = isLive ? segment.rows[offset + i] : NodeRow{};
        block.stageFlags[i] = isLive ? stageFlags[id] : unmarked;
        block.secondaryStageFlags[i] = isLive ? secondaryStageFlags[id] : unmarked;
    }
}

void ItemStore::Impl::loadNames(RowBlock& block) {
    const std::uint32_t number = Segment::number(block.first);
    block.names = segments.exists(number)
                      ? segments.use(number).names.slice(Segment::index(block.first), RowBlock::capacity)
                      : TextRegion(RowBlock::capacity);
    block.hasNames = true;
}

void ItemStore::Impl::loadFinals(RowBlock& block) {
    const std::uint32_t number = Segment::number(block.first);
    block.finals = segments.exists(number)
                       ? segments.use(number).finals.slice(Segment::index(block.first), RowBlock::capacity)
                       : TextRegion(RowBlock::capacity);
    block.hasFinals = true;
}

std::vector<RowId> ItemStore::Impl::children(RowId row) {
    std::vector<RowId> rows;
    const FolderTable::Folder* folder = folders.ofRow(row);
    if (folder == nullptr)
        return rows;
    rows.reserve(folder->childCount);
    for (RowId child = folder->lastChild; child != noRow && segments.exists(Segment::number(child));) {
        if (exists(child))
            rows.push_back(child);
        child = segments.use(Segment::number(child)).rows[Segment::index(child)].previousSibling;
    }
    std::reverse(rows.begin(), rows.end());
    return rows;
}

void ItemStore::Impl::apply(StagedChanges& staged, StoreChanges& into) {
    // Before segments are held: it may go through all of them.
    std::vector<RowId> doomed;
    for (const RowId row : staged.deletedTrees)
        collectTree(row, doomed);
    segments.makeRoom();
    SegmentTable::Hold hold(segments);
    touchSegments(staged);
    for (const RowId row : staged.deletedTrees)
        takeFromParent(row);

    for (RowBlock* block : staged.blocks)
        applyBlock(*block, staged, into);
    for (const auto& [row, marker] : staged.marks) {
        if (!exists(row))
            continue;
        stageFlags[row] = marker;
        into.updated.push_back(row);
    }
    for (const auto& [row, columns] : staged.regexColumns) {
        if (exists(row))
            segments.use(Segment::number(row)).setRegex(Segment::index(row), columns);
    }
    for (auto& [row, data] : staged.tagData) {
        if (exists(row))
            tags.set(row, std::move(data));
    }
    for (const RowId row : doomed)
        removeRow(row);
    for (const RowId row : staged.deletedNodes)
        removeRow(row);
    into.rowsDeleted = !doomed.empty() || !staged.deletedNodes.empty();
    constexpr std::size_t tellingCount = 256;
    if (staged.deletedNodes.empty() && doomed.size() <= tellingCount)
        into.deletedRows = std::move(doomed);
    if (!staged.deletedNodes.empty())
        dropEmptySegments();
    applySmallEntities(staged, into);

    for (std::size_t at = 0; at < classVersions.size(); ++at)
        classVersions[at] += (into.columnClasses >> at) & 1u;
    insertVersion += into.rowsInserted ? 1 : 0;
    deletionVersion += into.rowsDeleted ? 1 : 0;
}

void ItemStore::Impl::touchSegments(const StagedChanges& staged) {
    for (const RowBlock* block : staged.blocks) {
        const bool isTouched = std::any_of(block->changes.begin(), block->changes.end(),
                                           [](std::uint8_t change) { return (change & ofSegment) != 0; });
        if (!isTouched)
            continue;
        const std::uint32_t number = Segment::number(block->first);
        segments.create(number);
        segments.use(number);
    }
}

void ItemStore::Impl::applyBlock(RowBlock& block, StagedChanges& staged, StoreChanges& into) {
    Segment* segment = nullptr;
    const auto byIndex = [](const auto& a, const auto& b) { return a.first < b.first; };
    if (!std::is_sorted(block.originals.begin(), block.originals.end(), byIndex))
        std::stable_sort(block.originals.begin(), block.originals.end(), byIndex);
    auto original = block.originals.begin();
    for (std::size_t i = 0; i < RowBlock::capacity; ++i) {
        const std::uint8_t changes = block.changes[i];
        if (changes == 0)
            continue;
        const RowId id = block.first + static_cast<RowId>(i);
        const NodeRow* wasRead = nullptr; // the last one counts, a change may have been rolled back
        for (; original != block.originals.end() && original->first <= i; ++original)
            wasRead = original->first == i ? &original->second : nullptr;
        if (segment == nullptr && (changes & ofSegment))
            segment = &segments.use(Segment::number(block.first));
        if (changes & RowBlock::inserted) {
            if (changes & RowBlock::deleted)
                continue;
            insertRow(block, i, staged);
            into.rowsInserted = true;
        } else if (!exists(id)) {
            continue;
        } else {
            into.updated.push_back(id);
            if ((changes & RowBlock::attributes) && wasRead) {
                NodeRow& row = segment->rows[Segment::index(id)];
                into.columnClasses |= updateAttributes(row, block.rows[i], *wasRead);
                ++rowVersion;
                segment->dirty[Segment::rowPart] = true;
                summaries[id] = rowSummary::of(row);
            }
        }
        if (changes & RowBlock::finalName) {
            if (block.finals.has(i))
                segment->finals.set(Segment::index(id), block.finals.get(i));
            else
                segment->finals.clear(Segment::index(id));
            segment->dirty[Segment::finalPart] = true;
            ++rowVersion;
            into.columnClasses |= bit(ColumnClass::naming);
        }
        if (changes & RowBlock::stageFlag)
            stageFlags[id] = block.stageFlags[i];
        if (changes & RowBlock::secondaryStageFlag)
            secondaryStageFlags[id] = block.secondaryStageFlags[i];
    }
}

void ItemStore::Impl::insertRow(RowBlock& block, std::size_t index, StagedChanges& staged) {
    const RowId id = block.first + static_cast<RowId>(index);
    NodeRow row = block.rows[index];
    FolderTable::Folder* parent = folders.ofRow(row.parent);
    if (parent == nullptr && row.parent != noRow)
        return; // the folder was deleted while this row was on its way
    if (parent != nullptr) {
        row.previousSibling = parent->lastChild;
        parent->lastChild = id;
        ++parent->childCount;
    }
    if (const auto path = staged.folderPaths.find(id); path != staged.folderPaths.end())
        folders.add(id, path->second);
    Segment& segment = segments.use(Segment::number(id));
    segment.rows[Segment::index(id)] = row;
    segment.names.set(Segment::index(id), block.names.get(index));
    ++rowVersion;
    segment.dirty[Segment::rowPart] = segment.dirty[Segment::namePart] = true;
    summaries[id] = rowSummary::of(row);
}

void ItemStore::Impl::collectTree(RowId row, std::vector<RowId>& into) {
    std::size_t next = into.size();
    into.push_back(row);
    for (; next < into.size(); ++next) {
        const std::vector<RowId> below = children(into[next]);
        into.insert(into.end(), below.begin(), below.end());
    }
}

/// What lies below goes with its folder.
void ItemStore::Impl::takeFromParent(RowId row) {
    if (!exists(row))
        return;
    const RowId parent = segments.use(Segment::number(row)).rows[Segment::index(row)].parent;
    if (FolderTable::Folder* folder = folders.ofRow(parent))
        --folder->childCount;
}

void ItemStore::Impl::removeRow(RowId row) {
    if (!exists(row))
        return;
    summaries[row] = rowSummary::none;
    tags.forget(row);
    folders.remove(row);
}

void ItemStore::Impl::dropEmptySegments() {
    const std::size_t count = (summaries.size() + Segment::capacity - 1) / Segment::capacity;
    for (std::uint32_t number = 0; number < count; ++number) {
        if (!segments.exists(number))
            continue;
        const auto begin = summaries.begin() + std::ptrdiff_t{number} * std::ptrdiff_t{Segment::capacity};
        const auto end =
            summaries.begin() +
            static_cast<std::ptrdiff_t>(std::min((number + 1) * Segment::capacity, summaries.size()));
        if (std::all_of(begin, end, [](std::uint8_t summary) { return summary == rowSummary::none; }))
            segments.drop(number);
    }
}

void ItemStore::Impl::applySmallEntities(StagedChanges& staged, StoreChanges& into) {
    if (staged.control && *staged.control != staged.controlAsRead) {
        const EngineControl& changed = *staged.control;
        const EngineControl& original = staged.controlAsRead;
        const auto take = [&](auto EngineControl::*member) {
            if (changed.*member != original.*member)
                control.*member = changed.*member;
        };
        take(&EngineControl::totalNumberOfFiles);
        take(&EngineControl::totalNumberOfFilesSelectedOrNot);
        take(&EngineControl::numberOfFilesThatNeedRenaming);
        take(&EngineControl::numberOfFolders);
        take(&EngineControl::numberOfNamesMadeDistinct);
        take(&EngineControl::numberOfActuallyRenamedFiles);
        take(&EngineControl::numberOfItemsNotRenamed);
        take(&EngineControl::totalNumberOfNodes);
        take(&EngineControl::needToRedoConflictResolution);
        into.engineControl = true;
    }
    for (const SourceItemChange& change : staged.sourceItems)
        sourceItems.apply(change);
    const std::size_t gone = std::min(staged.deletedErrors, errors.size());
    errors.erase(errors.begin(), errors.begin() + static_cast<std::ptrdiff_t>(gone));
    for (ProcessingError& error : staged.insertedErrors)
        errors.push_back(std::move(error));
}

} // namespace tavrin
