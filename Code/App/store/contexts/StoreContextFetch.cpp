#include "store/contexts/StoreContext.h"
#include "store/contexts/StoreContextImpl.h"
#include "store/queries/SortKeys.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

// Fetches of a context: cursors, sorted lists, children, look-ups by path.

namespace tavrin {

namespace {

constexpr std::size_t visitedAtATime = 4096;
constexpr std::size_t keptCursors = 8;
constexpr std::size_t keptWalks = 4;
constexpr std::size_t keptSortedRows = 4;

/// Whether rows are read well by the blocks that they lie in.
bool fillsBlocks(const std::vector<RowId>& rows) {
    constexpr std::size_t sparse = 16;
    return std::ranges::is_sorted(rows) &&
           (rows.empty() || rows.back() - rows.front() <= rows.size() * sparse);
}

} // namespace

std::vector<RowId> StoreContext::fetch(const FetchRequest& request) {
    if (request.predicate.matchesNothing())
        return {};
    if (request.predicate.parent())
        return impl->fetchChildren(request);
    return request.order.empty() ? impl->fetchByCursor(request) : impl->fetchSorted(request);
}

void StoreContext::forEach(const FetchRequest& request, const std::function<void(RowId)>& visit) {
    forEachPart(request, [&visit](std::span<const RowId> rows) { std::ranges::for_each(rows, visit); });
}

void StoreContext::forEachPart(const FetchRequest& request,
                               const std::function<void(std::span<const RowId>)>& visit) {
    FetchRequest part = request;
    part.limit = visitedAtATime;
    std::vector<RowId> rows;
    RowId next = 1;
    do {
        rows.clear();
        next = impl->scan(part, next, ~RowId{0}, rows);
        visit(rows);
    } while (rows.size() == part.limit);
}

std::size_t StoreContext::count(FetchEntity entity, const Predicate& predicate) {
    const FetchRequest request{entity, predicate, {}, 0};
    if (predicate.parent())
        return fetch(request).size();
    if (predicate.matchesNothing())
        return 0;
    std::size_t found = 0;
    if (impl->hasStagedRows()) {
        forEach(request, [&found](RowId) { ++found; });
        return found;
    }
    const ItemStore::Access inside = impl->store.access();
    for (RowId id = 1; id < inside->endOfRows(); ++id)
        found += inside->matches(request, id) ? 1 : 0;
    return found;
}

bool StoreContext::Impl::matches(const FetchRequest& request, RowId id) {
    if (!request.predicate.matchesSummary(request.entity, summary(id)))
        return false;
    PassMarker stageFlag = unmarked;
    PassMarker secondary = unmarked;
    const RowBlock* block = hasStagedRows() ? presentBlock(id) : nullptr;
    if (block != nullptr) {
        stageFlag = block->stageFlags[RowBlock::index(id)];
        secondary = block->secondaryStageFlags[RowBlock::index(id)];
    } else {
        const ItemStore::Access inside = store.access();
        stageFlag = inside->stageFlags[id];
        secondary = inside->secondaryStageFlags[id];
    }
    if (const auto mark = staged.marks.find(id); mark != staged.marks.end())
        stageFlag = mark->second;
    return request.predicate.matchesMarkers(stageFlag, secondary);
}

RowId StoreContext::Impl::scan(const FetchRequest& request, RowId from, RowId to, std::vector<RowId>& into) {
    const auto isFull = [&] { return request.limit != 0 && into.size() >= request.limit; };
    RowId id = from;
    if (hasStagedRows()) {
        const auto end = std::min(to, store.access()->endOfRows());
        for (; id < end && !isFull(); ++id) {
            if (matches(request, id))
                into.push_back(id);
        }
        return id;
    }
    const ItemStore::Access inside = store.access();
    const auto end = std::min(to, inside->endOfRows());
    for (; id < end && !isFull(); ++id) {
        if (inside->matches(request, id))
            into.push_back(id);
    }
    return id;
}

std::vector<RowId> StoreContext::Impl::fetchByCursor(const FetchRequest& request) {
    std::vector<RowId> found;
    if (request.limit == 0) {
        scan(request, 1, ~RowId{0}, found);
        return found;
    }
    auto cursor = std::find_if(cursors.begin(), cursors.end(), [&](const Cursor& one) {
        return one.entity == request.entity && one.predicate == request.predicate;
    });
    if (cursor == cursors.end()) {
        if (cursors.size() == keptCursors)
            cursors.erase(cursors.begin());
        cursor = cursors.insert(cursors.end(), {request.entity, request.predicate, 1});
    }
    const RowId start = cursor->next;
    cursor->next = scan(request, start, ~RowId{0}, found);
    if (found.size() < request.limit && start > 1)
        cursor->next = scan(request, 1, start, found);
    if (found.empty())
        cursors.erase(cursor);
    return found;
}

std::uint64_t StoreContext::Impl::versionsOf(const FetchRequest& request) {
    std::uint8_t classes = request.predicate.columnClasses();
    for (const SortDescriptor& descriptor : request.order)
        classes |= static_cast<std::uint8_t>(attribute(descriptor.key).columnClass);
    classes |= static_cast<std::uint8_t>(ColumnClass::order); // manualOrder is behind every order
    // Each only grows, so an equal sum means that none has moved.
    const ItemStore::Access inside = store.access();
    std::uint64_t sum = inside->insertVersion;
    for (std::size_t at = 0; at < inside->classVersions.size(); ++at)
        sum += ((classes >> at) & 1u) * inside->classVersions[at];
    return sum;
}

StoreContext::Impl::Walk& StoreContext::Impl::walkAlong(const FetchRequest& request) {
    const FetchRequest whole{request.entity, request.predicate.withoutMarkers(), request.order};
    auto walk = std::ranges::find_if(walks, [&](const Walk& one) { return one.list->answers(whole); });
    if (walk != walks.end() && walk->list->versions == versionsOf(whole))
        return *walk;
    if (walk == walks.end() && walks.size() == keptWalks)
        walk = walks.begin();
    if (walk != walks.end())
        walks.erase(walk);
    return walks.emplace_back(Walk{sortedRows(whole)});
}

/// Those that any context has sorted already, or sorts them now. What is staged here is no other's business.
std::shared_ptr<const ItemStore::Impl::SortedRows> StoreContext::Impl::sortedRows(const FetchRequest& whole) {
    const std::uint64_t versions = versionsOf(whole);
    const auto isKnown = [&](const auto& one) { return one->answers(whole); };
    if (!hasStagedRows()) {
        const ItemStore::Access inside = store.access();
        const auto known = std::ranges::find_if(inside->sortedRows, isKnown);
        if (known != inside->sortedRows.end() && (*known)->versions == versions)
            return *known;
    }
    std::vector<RowId> rows;
    scan(whole, 1, ~RowId{0}, rows);
    sortRows(rows, whole.order);
    const bool isDense = fillsBlocks(rows);
    auto made = std::make_shared<const SortedRows>(
        SortedRows{whole.entity, whole.predicate, whole.order, std::move(rows), versions, isDense});
    if (!hasStagedRows()) {
        const ItemStore::Access inside = store.access();
        std::erase_if(inside->sortedRows, isKnown);
        if (inside->sortedRows.size() == keptSortedRows)
            inside->sortedRows.erase(inside->sortedRows.begin());
        inside->sortedRows.push_back(made);
    }
    return made;
}

template <typename Visit> void StoreContext::Impl::forEachRow(const std::vector<RowId>& rows, Visit visit) {
    for (std::size_t i = 0; i < rows.size();) {
        const ItemStore::Access inside = store.access();
        const std::uint32_t number = Segment::number(rows[i]);
        const Segment& segment = inside->segments.use(number);
        for (; i < rows.size() && Segment::number(rows[i]) == number; ++i) {
            if (!visit(rows[i], segment, Segment::index(rows[i])))
                return;
        }
    }
}

namespace {

/// Bytes taken out of the budget of the store's segments for a while.
class Reserve {
  public:
    Reserve(ItemStore& owner, std::size_t bytes) : store(owner) {
        store.access()->segments.setReserve(bytes);
    }
    ~Reserve() { store.access()->segments.setReserve(0); }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;

  private:
    ItemStore& store;
};

} // namespace

std::unordered_map<RowId, std::uint32_t> StoreContext::Impl::folderRanks() {
    std::vector<std::pair<std::string, RowId>> paths;
    {
        const ItemStore::Access inside = store.access();
        for (const auto& [row, folder] : inside->folders.all())
            paths.emplace_back(folder.path, row);
    }
    for (auto& [path, row] : paths) {
        std::string key;
        std::ranges::replace(path, '/', '\1'); // what a folder holds comes right behind it
        SortKeys::appendNaturalText(key, path);
        path.swap(key);
    }
    std::ranges::sort(paths);
    std::unordered_map<RowId, std::uint32_t> ranks;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const bool isSame = i > 0 && paths[i].first == paths[i - 1].first;
        ranks[paths[i].second] = isSame ? ranks[paths[i - 1].second] : static_cast<std::uint32_t>(i);
    }
    return ranks;
}

void StoreContext::Impl::sortRows(std::vector<RowId>& rows, const std::vector<SortDescriptor>& order) {
    SortKeys keys(order, store.access()->secret);
    const bool isByFinalName = keys.needs(NodeKey::finalName);
    const auto ranks =
        keys.needs(NodeKey::folder) ? folderRanks() : std::unordered_map<RowId, std::uint32_t>();
    RowId lastParent = noRow;
    std::uint32_t lastRank = 0;
    const auto rankOf = [&](RowId parent) {
        if (parent != lastParent) {
            lastParent = parent;
            const auto found = ranks.find(parent);
            lastRank = found == ranks.end() ? 0 : found->second;
        }
        return lastRank;
    };
    const auto sorted = [&](RowId id, const Segment& segment, std::size_t index) {
        SortedRow row{id, segment.rows[index], segment.names.get(index).bytes, {}, 0};
        if (isByFinalName)
            row.finalName = segment.finals.has(index) ? segment.finals.get(index).bytes : row.component;
        if (!ranks.empty())
            row.folderRank = rankOf(row.row.parent);
        return row;
    };
    bool isInOrder = true;
    forEachRow(rows, [&](RowId id, const Segment& segment, std::size_t index) {
        isInOrder = isInOrder && keys.addInOrder(sorted(id, segment, index));
        return isInOrder;
    });
    if (isInOrder)
        return;
    std::size_t namesBytes = 0;
    forEachRow(rows, [&](RowId id, const Segment& segment, std::size_t index) {
        const SortedRow row = sorted(id, segment, index);
        namesBytes += std::max(row.component.size(), row.finalName.size());
        return true;
    });
    // Where there are many, the keys take the place of rows in memory while the order is made.
    constexpr std::size_t many = 1u << 18;
    std::optional<Reserve> reserve;
    if (const std::size_t bytes = keys.keepAll(rows.size(), namesBytes); bytes >= many)
        reserve.emplace(store, bytes);
    forEachRow(rows, [&](RowId id, const Segment& segment, std::size_t index) {
        keys.add(sorted(id, segment, index));
        return true;
    });
    keys.takeSorted(rows);
}

void StoreContext::sort(std::vector<RowId>& rows, const std::vector<SortDescriptor>& order) {
    impl->sortRows(rows, order);
}

std::vector<RowId> StoreContext::Impl::fetchSorted(const FetchRequest& request) {
    Walk& walk = walkAlong(request);
    const std::vector<RowId>& rows = walk.list->rows;
    std::vector<RowId> found;
    const std::size_t count = rows.size();
    if (request.limit == 0)
        found.reserve(count);
    const std::size_t start = request.limit == 0 || walk.next >= count ? 0 : walk.next;
    const auto collect = [&](std::size_t from, std::size_t to, auto isMatch) {
        for (walk.next = from; walk.next < to && (request.limit == 0 || found.size() < request.limit);
             ++walk.next) {
            if (isMatch(rows[walk.next]))
                found.push_back(rows[walk.next]);
        }
    };
    const auto collectAll = [&](auto isMatch) {
        collect(start, count, isMatch);
        if (start > 0 && found.size() < request.limit)
            collect(0, start, isMatch);
    };
    if (hasStagedRows()) {
        collectAll([&](RowId id) { return matches(request, id); });
    } else {
        const ItemStore::Access inside = store.access();
        collectAll([&](RowId id) { return inside->matches(request, id); });
    }
    walked = found.empty() || walk.list->fillsBlocks || request.readById ? nullptr : walk.list;
    walkPosition = start;
    return found;
}

std::vector<RowId> StoreContext::Impl::fetchChildren(const FetchRequest& request) {
    std::vector<RowId> rows = store.access()->children(*request.predicate.parent());
    std::erase_if(rows, [&](RowId id) { return !matches(request, id); });
    if (!request.order.empty())
        sortRows(rows, request.order);
    if (request.limit != 0 && rows.size() > request.limit)
        rows.resize(request.limit);
    walked = nullptr;
    walkPosition = 0;
    if (!fillsBlocks(rows))
        walked = std::make_shared<const SortedRows>(
            SortedRows{request.entity, request.predicate, request.order, rows, 0, false});
    return rows;
}

std::vector<RowId> StoreContext::children(RowId folder) { return impl->store.access()->children(folder); }

std::size_t StoreContext::childCount(RowId folder) {
    const ItemStore::Access inside = impl->store.access();
    const FolderTable::Folder* record = inside->folders.ofRow(folder);
    return record == nullptr ? 0 : record->childCount;
}

RowId StoreContext::endOfRows() { return impl->store.access()->endOfRows(); }

std::uint64_t StoreContext::versionOf(const FetchRequest& request) {
    return impl->versionsOf(request) + impl->store.deletionVersion();
}

RowFolders StoreContext::foldersOf(const FetchRequest& request) {
    std::vector<RowId> rows;
    impl->scan(request, 1, ~RowId{0}, rows);
    std::unordered_set<RowId> parents;
    RowId lastParent = noRow;
    impl->forEachRow(rows, [&](RowId, const Segment& segment, std::size_t index) {
        if (const RowId parent = segment.rows[index].parent; parent != lastParent)
            parents.insert(lastParent = parent);
        return true;
    });
    std::unordered_set<std::string> paths;
    RowFolders folders;
    for (const RowId parent : parents) {
        const std::string& path = impl->folderPath(parent);
        folders.common = paths.empty() ? path : std::string(commonFolder(folders.common, path));
        paths.insert(path);
    }
    folders.count = paths.size();
    return folders;
}

RowId StoreContext::nodeWithPath(std::string_view path) {
    const RowId folder = folderWithPath(path);
    return folder != noRow ? folder : fileWithPath(path);
}

RowId StoreContext::folderWithPath(std::string_view path) {
    if (const auto found = impl->staged.foldersByPath.find(std::string(path));
        found != impl->staged.foldersByPath.end())
        return found->second;
    const ItemStore::Access inside = impl->store.access();
    const FolderTable::Folder* folder = inside->folders.withPath(path);
    return folder == nullptr ? noRow : folder->row;
}

RowId StoreContext::fileWithPath(std::string_view path) {
    const ItemStore::Access inside = impl->store.access();
    const FolderTable::Folder* own = inside->folders.withPath(path);
    if (own != nullptr && (inside->summaries[own->row] & rowSummary::isFile))
        return own->row;
    const FolderTable::Folder* parent = inside->folders.withPath(PathParts(path).folder);
    return parent == nullptr ? noRow : impl->childNamed(inside, parent->row, componentOf(path));
}

RowId StoreContext::Impl::childNamed(const ItemStore::Access& inside, RowId folder,
                                     std::string_view component) {
    if (nameIndexVersion != inside->insertVersion) {
        nameIndexes.clear();
        nameIndexVersion = inside->insertVersion;
    }
    const auto nameOf = [&](RowId row) {
        return inside->segments.use(Segment::number(row)).names.get(Segment::index(row)).bytes;
    };
    const auto [index, isNew] = nameIndexes.try_emplace(folder);
    NameSlots& names = index->second;
    if (isNew) {
        const std::vector<RowId> children = inside->children(folder);
        names.reset(children.size());
        for (const RowId child : children)
            names.add(names.hashOf(nameOf(child)), child);
    }
    const std::uint32_t* const row = names.find(names.hashOf(component), [&](RowId candidate) {
        return inside->exists(candidate) && nameOf(candidate) == component;
    });
    return row == nullptr ? noRow : *row;
}

} // namespace tavrin
