#include "store/contexts/StoreContext.h"

#include "store/contexts/StoreContextImpl.h"

#include <algorithm>
#include <utility>

// The life of a context: blocks, staging, commit, merge.

namespace tavrin {

namespace {

/// How many unchanged blocks a context keeps, and how many it lets go at once.
constexpr std::size_t keptBlocks = 96;
constexpr std::size_t droppedBlocks = 48;

} // namespace

StoreContext::StoreContext(ItemStore& store, MergePolicy policy)
    : impl(std::make_unique<Impl>(store, policy)) {}

StoreContext::~StoreContext() = default;

ItemStore& StoreContext::store() const { return impl->store; }

std::recursive_mutex& StoreContext::mutex() const { return impl->mutex; }

// --- Blocks ---

RowBlock* StoreContext::Impl::presentBlock(RowId id) {
    const std::uint32_t number = RowBlock::number(id);
    if (lastBlock != nullptr && RowBlock::number(lastBlock->first) == number)
        return lastBlock;
    const auto found = blocks.find(number);
    if (found == blocks.end())
        return nullptr;
    lastBlock = found->second.get();
    lastBlock->lastUse = ++clock;
    return lastBlock;
}

RowBlock& StoreContext::Impl::blockOf(RowId id) {
    if (RowBlock* block = presentBlock(id))
        return *block;
    return loadBlock(RowBlock::number(id));
}

RowBlock& StoreContext::Impl::loadBlock(std::uint32_t number) {
    makeRoomForBlock();
    std::unique_ptr<RowBlock> block;
    if (spareBlocks.empty()) {
        block = std::make_unique<RowBlock>();
    } else {
        block = std::move(spareBlocks.back());
        spareBlocks.pop_back();
    }
    block->first = number * static_cast<RowId>(RowBlock::capacity);
    block->hasNames = block->hasFinals = false;
    block->forgetChanges();
    block->lastUse = ++clock;
    {
        const ItemStore::Access inside = store.access();
        inside->loadRows(*block);
    }
    lastBlock = block.get();
    blocks[number] = std::move(block);
    return *lastBlock;
}

void StoreContext::Impl::makeRoomForBlock() {
    if (blocks.size() < keptBlocks + staged.blocks.size())
        return;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> clean; // by age
    for (const auto& [number, block] : blocks) {
        if (block->changedRows == 0)
            clean.emplace_back(block->lastUse, number);
    }
    const auto count = std::min(droppedBlocks, clean.size());
    std::nth_element(clean.begin(), clean.begin() + static_cast<std::ptrdiff_t>(count), clean.end());
    for (std::size_t i = 0; i < count; ++i) {
        const auto found = blocks.find(clean[i].second);
        if (found->second.get() == lastBlock)
            lastBlock = nullptr;
        spareBlocks.push_back(std::move(found->second));
        blocks.erase(found);
    }
}

RowBlock& StoreContext::Impl::blockWithNames(RowId id) {
    RowBlock& block = blockOf(id);
    if (!block.hasNames) {
        const ItemStore::Access inside = store.access();
        inside->loadNames(block);
    }
    return block;
}

RowBlock& StoreContext::Impl::blockWithFinals(RowId id) {
    RowBlock& block = blockOf(id);
    if (!block.hasFinals) {
        const ItemStore::Access inside = store.access();
        inside->loadFinals(block);
    }
    return block;
}

void StoreContext::Impl::note(RowBlock& block, RowId id, RowBlock::Change change) {
    const bool isFirstInBlock = block.changedRows == 0;
    block.note(RowBlock::index(id), change);
    if (isFirstInBlock) {
        staged.blocks.push_back(&block);
        staged.segments.insert(Segment::number(id));
    }
}

void StoreContext::Impl::dropCleanBlocks() {
    for (auto block = blocks.begin(); block != blocks.end();) {
        if (block->second->changedRows != 0) {
            ++block;
            continue;
        }
        spareBlocks.push_back(std::move(block->second));
        block = blocks.erase(block);
    }
    if (spareBlocks.size() > keptBlocks)
        spareBlocks.resize(keptBlocks);
    lastBlock = nullptr;
}

void StoreContext::Impl::dropAllBlocks() {
    for (RowBlock* block : staged.blocks)
        block->forgetChanges();
    dropCleanBlocks();
}

void StoreContext::Impl::refreshUnchangedRows(RowBlock& block) {
    const auto fresh = std::make_unique<RowBlock>();
    fresh->first = block.first;
    {
        const ItemStore::Access inside = store.access();
        inside->loadRows(*fresh);
        inside->loadFinals(*fresh);
    }
    for (std::size_t i = 0; i < RowBlock::capacity; ++i) {
        if (block.changes[i] != 0)
            continue;
        block.rows[i] = fresh->rows[i];
        block.stageFlags[i] = fresh->stageFlags[i];
        block.secondaryStageFlags[i] = fresh->secondaryStageFlags[i];
        if (block.hasFinals && fresh->finals.has(i))
            block.finals.set(i, fresh->finals.get(i));
        else if (block.hasFinals)
            block.finals.clear(i);
    }
}

void StoreContext::Impl::forgetDeletedRows(const StoreChanges& changes) {
    lastFolder = noRow;
    if (changes.deletedRows.empty())
        return dropCleanBlocks();
    for (const RowId id : changes.deletedRows) {
        RowBlock* block = presentBlock(id);
        if (block == nullptr)
            continue;
        const std::size_t index = RowBlock::index(id);
        block->rows[index] = NodeRow{};
        if (block->hasNames)
            block->names.clear(index);
        if (block->hasFinals)
            block->finals.clear(index);
    }
}

std::uint8_t StoreContext::Impl::summary(RowId id) {
    if (hasStagedRows()) {
        if (const RowBlock* block = presentBlock(id)) {
            const std::uint8_t changes = block->changes[RowBlock::index(id)];
            if (changes & RowBlock::deleted)
                return rowSummary::none;
            if (changes & RowBlock::inserted)
                return rowSummary::of(block->rows[RowBlock::index(id)]);
            if (changes != 0) {
                const ItemStore::Access inside = store.access();
                return inside->exists(id) ? rowSummary::of(block->rows[RowBlock::index(id)])
                                          : rowSummary::none;
            }
        }
    }
    const ItemStore::Access inside = store.access();
    return id < inside->summaries.size() ? inside->summaries[id] : rowSummary::none;
}

const std::string& StoreContext::Impl::folderPath(RowId folder) {
    if (folder == lastFolder && folder != noRow)
        return lastFolderPath;
    lastFolder = folder;
    if (const auto found = staged.folderPaths.find(folder); found != staged.folderPaths.end()) {
        lastFolderPath = found->second;
        return lastFolderPath;
    }
    const ItemStore::Access inside = store.access();
    const FolderTable::Folder* record = inside->folders.ofRow(folder);
    lastFolderPath = record ? record->path : std::string();
    return lastFolderPath;
}

RowImages::Image* StoreContext::Impl::image(RowId id) {
    if (walked == nullptr && images.isEmpty())
        return nullptr;
    RowImages::Image* found = images.find(id);
    if (found == nullptr && gatherImages(id))
        found = images.find(id);
    if (found == nullptr || imagesDeletionVersion == store.deletionVersion())
        return found;
    const ItemStore::Access inside = store.access();
    return inside->exists(id) ? found : nullptr;
}

/// Gathers the rows that the walk comes to next, if this row is among them.
bool StoreContext::Impl::gatherImages(RowId id) {
    constexpr std::size_t reach = 4096;
    if (walked == nullptr || walkPosition >= walked->rows.size())
        return false;
    const auto begin = walked->rows.begin() + static_cast<std::ptrdiff_t>(walkPosition);
    const std::size_t left = walked->rows.size() - walkPosition;
    const auto end = begin + static_cast<std::ptrdiff_t>(std::min(reach, left));
    const auto place = std::find(begin, end, id);
    if (place == end)
        return false;
    walkPosition = static_cast<std::size_t>(place - walked->rows.begin());
    const std::size_t count = std::min(RowImages::capacity, walked->rows.size() - walkPosition);
    std::vector<RowId> ids(place, place + static_cast<std::ptrdiff_t>(count));
    walkPosition += count;
    const ItemStore::Access inside = store.access();
    std::erase_if(ids, [&](RowId row) { return !inside->exists(row); });
    images.gather(ids, inside->segments);
    imagesRowVersion = inside->rowVersion;
    imagesDeletionVersion = inside->deletionVersion;
    return true;
}

void StoreContext::Impl::forgetStaleImages() {
    if (images.isEmpty())
        return;
    const ItemStore::Access inside = store.access();
    if (imagesRowVersion != inside->rowVersion)
        images.clear();
}

// --- Changes ---

bool StoreContext::hasChanges() const { return !impl->staged.isEmpty(); }

bool StoreContext::commitIfMuchIsStaged() {
    constexpr std::size_t manyBlocks = 1024;
    constexpr std::size_t manySegments = 24;
    constexpr std::size_t manyBytes = 4u << 20;
    const bool isMuch =
        impl->staged.blocks.size() >= manyBlocks || impl->staged.tagBytes >= manyBytes ||
        (impl->store.kind() == ItemStore::Kind::file && impl->staged.segments.size() >= manySegments);
    if (isMuch) {
        commit();
        refault();
    }
    return isMuch;
}

void StoreContext::commit() {
    Impl& self = *impl;
    if (self.staged.isEmpty())
        return;
    std::sort(self.staged.blocks.begin(), self.staged.blocks.end(),
              [](const RowBlock* a, const RowBlock* b) { return a->first < b->first; });
    StoreChanges changes;
    changes.committer = this;
    std::function<void(const StoreChanges&)> didSave;
    {
        const ItemStore::Access inside = self.store.access();
        inside->apply(self.staged, changes);
        didSave = inside->didSave;
    }
    for (RowBlock* block : self.staged.blocks)
        block->forgetChanges();
    for (const auto& [id, marker] : self.staged.marks) {
        if (RowBlock* block = self.presentBlock(id)) // read after the mark was set
            block->stageFlags[RowBlock::index(id)] = marker;
    }
    self.staged = StagedChanges{};
    self.forgetStaleImages();
    if (changes.rowsDeleted)
        self.forgetDeletedRows(changes);
    if (didSave)
        didSave(changes);
}

void StoreContext::commitWithoutRows() {
    StagedChanges kept;
    kept.sourceItems = std::move(impl->staged.sourceItems);
    kept.insertedErrors = std::move(impl->staged.insertedErrors);
    kept.deletedErrors = impl->staged.deletedErrors;
    kept.control = impl->staged.control;
    kept.controlAsRead = impl->staged.controlAsRead;
    reset();
    impl->staged = std::move(kept);
    commit();
}

void StoreContext::refault() {
    impl->dropCleanBlocks();
    impl->forgetStaleImages();
}

void StoreContext::reset() {
    Impl& self = *impl;
    self.dropAllBlocks();
    self.staged = StagedChanges{};
    self.nextReserved = self.endReserved = noRow;
    self.forgetStaleImages();
    self.lastFolder = noRow;
}

void StoreContext::merge(const StoreChanges& changes) {
    Impl& self = *impl;
    if (changes.committer == this)
        return;
    if (self.policy == MergePolicy::storeWins && self.hasStagedRows()) {
        for (const RowId id : changes.updated) {
            RowBlock* block = self.presentBlock(id);
            if (block == nullptr || block->changes[RowBlock::index(id)] == 0)
                continue;
            block->changes[RowBlock::index(id)] = 0;
            if (--block->changedRows == 0)
                std::erase(self.staged.blocks, block);
        }
    }
    if (changes.rowsDeleted)
        self.forgetDeletedRows(changes);
    if (!changes.updated.empty() || changes.rowsInserted) {
        self.dropCleanBlocks();
        self.forgetStaleImages();
        for (RowBlock* block : self.staged.blocks)
            self.refreshUnchangedRows(*block);
    }
    if (changes.engineControl && (!self.staged.control || *self.staged.control == self.staged.controlAsRead))
        self.staged.control.reset();
}

} // namespace tavrin
