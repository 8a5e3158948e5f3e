#include "store/contexts/StoreContext.h"
#include "store/contexts/StoreContextImpl.h"
#include "store/queries/SortKeys.h"
#include "store/rows/RowSummary.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <functional>
#include <malloc.h>
#include <utility>

// Fetches of a context: cursors, sorted lists, children, look-ups by path.

namespace tavrin {

namespace {

constexpr std::size_t keptCursors = 8;
constexpr std::size_t keptSortedLists = 4;

std::uint64_t hashOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

/// Whether a text attribute passes a test with a text.
bool passes(const PropertyValue& value, const Predicate::Test& test) {
    const std::string* wanted = std::get_if<std::string>(&test.operand);
    const std::u16string* actual = value.asText();
    if (wanted != nullptr && actual != nullptr) {
        const std::u16string text = text::fromBytes(*wanted);
        if (test.operation == Predicate::Operation::beginsWith)
            return actual->starts_with(text);
        return (*actual == text) == (test.operation == Predicate::Operation::equals);
    }
    std::int64_t number = 0;
    if (const auto* integer = std::get_if<std::int64_t>(&test.operand))
        number = *integer;
    else if (const auto* boolean = std::get_if<bool>(&test.operand))
        number = *boolean ? 1 : 0;
    else if (const auto* row = std::get_if<RowId>(&test.operand))
        number = *row;
    const bool isEqual = intValue(value) == number;
    return isEqual == (test.operation == Predicate::Operation::equals);
}

} // namespace

std::vector<RowId> StoreContext::fetch(const FetchRequest& request) {
    const RowMatcher matcher(request.entity, request.predicate);
    if (matcher.matchesNothing())
        return {};
    if (matcher.parent())
        return impl->fetchChildren(request, matcher);
    if (!request.order.empty())
        return impl->fetchSorted(request, matcher);
    return impl->fetchByCursor(request, matcher);
}

std::size_t StoreContext::count(FetchEntity entity, const Predicate& predicate) {
    const RowMatcher matcher(entity, predicate);
    if (matcher.matchesNothing())
        return 0;
    if (matcher.parent())
        return fetch({entity, predicate, {}, 0}).size();
    RowId next = noRow;
    return impl->scan(matcher, 1, ~RowId{0}, 0, next).size();
}

void StoreContext::readByIdNow() {
    impl->walked = nullptr;
    impl->images.clear();
}

bool StoreContext::Impl::passesOtherTests(const std::vector<Predicate::Test>& tests, RowId id) {
    return std::all_of(tests.begin(), tests.end(), [&](const Predicate::Test& test) {
        const auto value = self->valueForKey(id, test.key);
        if (!value)
            return test.operation == Predicate::Operation::differs;
        return passes(*value, test);
    });
}

bool StoreContext::Impl::matches(const RowMatcher& matcher, RowId id) {
    if (!matcher.matchesSummary(summary(id)))
        return false;
    PassMarker stageFlag = unmarked;
    PassMarker secondary = unmarked;
    const RowBlock* block = hasStagedRows() ? presentBlock(id) : nullptr;
    if (block != nullptr) {
        stageFlag = block->stageFlags[RowBlock::index(id)];
        secondary = block->secondaryStageFlags[RowBlock::index(id)];
    } else {
        std::scoped_lock lock(store.mutex);
        if (id < store.stageFlags.size()) {
            stageFlag = store.stageFlags[id];
            secondary = store.secondaryStageFlags[id];
        }
    }
    if (const auto mark = staged.marks.find(id); mark != staged.marks.end())
        stageFlag = mark->second;
    return matcher.matchesMarkers(stageFlag, secondary) && passesOtherTests(matcher.otherTests(), id);
}

std::vector<RowId> StoreContext::Impl::scan(const RowMatcher& matcher, RowId from, RowId to,
                                            std::size_t limit, RowId& next) {
    std::vector<RowId> found;
    const bool isPlain = !hasStagedRows() && matcher.otherTests().empty();
    std::unique_lock lock(store.mutex);
    const auto end = static_cast<RowId>(std::min<std::size_t>(to, store.summaries.size()));
    RowId id = from;
    if (isPlain) {
        for (; id < end; ++id) {
            if (!matcher.matchesSummary(store.summaries[id]) ||
                !matcher.matchesMarkers(store.stageFlags[id], store.secondaryStageFlags[id]))
                continue;
            found.push_back(id);
            if (limit != 0 && found.size() == limit) {
                ++id;
                break;
            }
        }
    } else {
        lock.unlock();
        for (; id < end; ++id) {
            if (!matches(matcher, id))
                continue;
            found.push_back(id);
            if (limit != 0 && found.size() == limit) {
                ++id;
                break;
            }
        }
    }
    next = id;
    return found;
}

std::vector<RowId> StoreContext::Impl::fetchByCursor(const FetchRequest& request, const RowMatcher& matcher) {
    RowId next = noRow;
    if (request.limit == 0)
        return scan(matcher, 1, ~RowId{0}, 0, next);
    auto cursor = std::find_if(cursors.begin(), cursors.end(), [&](const Cursor& one) {
        return one.entity == request.entity && one.predicate == request.predicate;
    });
    if (cursor == cursors.end()) {
        if (cursors.size() == keptCursors)
            cursors.erase(cursors.begin());
        cursor = cursors.insert(cursors.end(), {request.entity, request.predicate, 1});
    }
    const RowId start = cursor->next;
    std::vector<RowId> found = scan(matcher, start, ~RowId{0}, request.limit, next);
    if (found.size() < request.limit && start > 1) {
        const std::vector<RowId> wrapped = scan(matcher, 1, start, request.limit - found.size(), next);
        found.insert(found.end(), wrapped.begin(), wrapped.end());
    }
    if (found.empty())
        cursors.erase(cursor);
    else
        cursor->next = next;
    return found;
}

std::uint64_t StoreContext::Impl::versionsOf(const Predicate& predicate,
                                             const std::vector<SortDescriptor>& order) {
    unsigned classes = 0;
    for (const Predicate::Test& test : predicate.tests())
        classes |= static_cast<unsigned>(attribute(test.key).columnClass);
    for (const SortDescriptor& descriptor : order)
        classes |= static_cast<unsigned>(attribute(descriptor.key).columnClass);
    classes |= static_cast<unsigned>(ColumnClass::sort); // manualOrder is behind every order
    const auto has = [classes](ColumnClass one) { return (classes & static_cast<unsigned>(one)) != 0; };
    // Each only grows, so an equal sum means that none has moved.
    std::scoped_lock lock(store.mutex);
    return store.insertVersion + (has(ColumnClass::sort) ? store.sortVersion : 0) +
           (has(ColumnClass::filter) ? store.filterVersion : 0) +
           (has(ColumnClass::naming) ? store.namingVersion : 0) +
           (has(ColumnClass::plan) ? store.planVersion : 0);
}

StoreContext::Impl::SortedList& StoreContext::Impl::sortedList(const FetchRequest& request,
                                                               const RowMatcher& matcher) {
    const Predicate predicate = matcher.withoutMarkers();
    const std::uint64_t versions = versionsOf(predicate, request.order);
    auto list = std::find_if(sortedLists.begin(), sortedLists.end(), [&](const auto& one) {
        return one->entity == request.entity && one->predicate == predicate && one->order == request.order;
    });
    if (list != sortedLists.end() && (*list)->versions == versions)
        return **list;
    if (list == sortedLists.end() && sortedLists.size() == keptSortedLists)
        list = sortedLists.begin();
    if (list != sortedLists.end()) {
        walked = nullptr;
        sortedLists.erase(list);
    }
    RowId next = noRow;
    const RowMatcher unmarkedMatcher(request.entity, predicate);
    const std::vector<RowId> rows = scan(unmarkedMatcher, 1, ~RowId{0}, 0, next);
    sortedLists.push_back(std::make_unique<SortedList>(SortedList{
        request.entity, predicate, request.order, sortRows(rows, request.order), 0, versions, true}));
    SortedList& made = *sortedLists.back();
    made.isInIdOrder = std::is_sorted(made.rows.begin(), made.rows.end());
    return made;
}

/// Visits rows as the store has them, a segment at a time under its lock, until `visit` returns false.
template <typename Visit> void StoreContext::Impl::forEachRow(const std::vector<RowId>& rows, Visit visit) {
    for (std::size_t i = 0; i < rows.size();) {
        std::scoped_lock lock(store.mutex);
        const std::uint32_t number = Segment::number(rows[i]);
        const Segment& segment = store.segments.use(number);
        for (; i < rows.size() && Segment::number(rows[i]) == number; ++i) {
            const std::size_t index = Segment::index(rows[i]);
            if (!visit(rows[i], segment.rows[index], segment.names.get(index).bytes))
                return;
        }
    }
}

namespace {

/// Bytes taken out of the budget of the store's segments for a while.
class Reserve {
  public:
    Reserve(ItemStore::Impl& owner, std::size_t bytes) : store(owner) {
        std::scoped_lock lock(store.mutex);
        store.segments.setReserve(bytes);
        store.segments.makeRoom();
        if (store.file)
            malloc_trim(0); // segments leave holes that only this gives back
    }
    ~Reserve() {
        std::scoped_lock lock(store.mutex);
        store.segments.setReserve(0);
    }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;

  private:
    ItemStore::Impl& store;
};

} // namespace

std::vector<RowId> StoreContext::Impl::sortRows(const std::vector<RowId>& rows,
                                                const std::vector<SortDescriptor>& order) {
    SortKeys keys(order, store.secret);
    bool isInOrder = true;
    forEachRow(rows, [&](RowId id, const NodeRow& row, std::string_view component) {
        isInOrder = isInOrder && keys.addInOrder(id, row, component);
        return isInOrder;
    });
    if (isInOrder)
        return keys.sorted();
    std::size_t namesBytes = 0;
    forEachRow(rows, [&](RowId, const NodeRow&, std::string_view component) {
        namesBytes += component.size();
        return true;
    });
    // Where there are many, the keys take the place of rows in memory while the order is made.
    constexpr std::size_t many = 1u << 18;
    std::optional<Reserve> reserve;
    if (const std::size_t bytes = keys.keepAll(rows.size(), namesBytes); bytes >= many)
        reserve.emplace(store, bytes);
    forEachRow(rows, [&](RowId id, const NodeRow& row, std::string_view component) {
        keys.add(id, row, component);
        return true;
    });
    return keys.sorted();
}

std::vector<RowId> StoreContext::Impl::fetchSorted(const FetchRequest& request, const RowMatcher& matcher) {
    SortedList& list = sortedList(request, matcher);
    const RowMatcher everything(request.entity, request.predicate);
    std::vector<RowId> found;
    const std::size_t count = list.rows.size();
    if (request.limit == 0)
        found.reserve(count);
    const std::size_t start = request.limit == 0 || list.next >= count ? 0 : list.next;
    const auto collect = [&](std::size_t from, std::size_t to) {
        const bool isPlain = !hasStagedRows();
        std::unique_lock lock(store.mutex, std::defer_lock);
        if (isPlain)
            lock.lock();
        for (std::size_t i = from; i < to; ++i) {
            const RowId id = list.rows[i];
            const bool isMatch =
                isPlain ? everything.matchesSummary(store.summaries[id]) &&
                              everything.matchesMarkers(store.stageFlags[id], store.secondaryStageFlags[id])
                        : matches(everything, id);
            if (!isMatch)
                continue;
            found.push_back(id);
            if (request.limit != 0 && found.size() == request.limit) {
                list.next = i + 1;
                return;
            }
        }
        list.next = to;
    };
    collect(start, count);
    if (start > 0 && found.size() < request.limit)
        collect(0, start);
    walked = found.empty() || list.isInIdOrder ? nullptr : &list;
    walkPosition = start;
    return found;
}

std::vector<RowId> StoreContext::Impl::fetchChildren(const FetchRequest& request, const RowMatcher& matcher) {
    std::vector<RowId> rows = self->children(*matcher.parent());
    std::erase_if(rows, [&](RowId id) { return !matches(matcher, id); });
    if (!request.order.empty())
        rows = sortRows(rows, request.order);
    if (request.limit != 0 && rows.size() > request.limit)
        rows.resize(request.limit);
    return rows;
}

std::vector<RowId> StoreContext::children(RowId folder) {
    std::scoped_lock lock(impl->store.mutex);
    return impl->store.children(folder);
}

std::size_t StoreContext::childCount(RowId folder) {
    std::scoped_lock lock(impl->store.mutex);
    const FolderTable::Folder* record = impl->store.folders.ofRow(folder);
    return record == nullptr ? 0 : record->childCount;
}

RowId StoreContext::nodeWithPath(std::string_view path) {
    if (const auto found = impl->stagedFolders.find(std::string(path)); found != impl->stagedFolders.end())
        return found->second;
    {
        std::scoped_lock lock(impl->store.mutex);
        if (const FolderTable::Folder* folder = impl->store.folders.withPath(path))
            return folder->row;
    }
    return fileWithPath(path);
}

RowId StoreContext::fileWithPath(std::string_view path) {
    RowId folder = noRow;
    {
        std::scoped_lock lock(impl->store.mutex);
        const FolderTable::Folder* own = impl->store.folders.withPath(path);
        if (own != nullptr && (impl->store.summaries[own->row] & rowSummary::isFile))
            return own->row;
        const FolderTable::Folder* parent = impl->store.folders.withPath(PathParts(path).folder);
        if (parent == nullptr)
            return noRow;
        folder = parent->row;
    }
    return impl->childNamed(folder, componentOf(path));
}

RowId StoreContext::Impl::childNamed(RowId folder, std::string_view component) {
    std::scoped_lock lock(store.mutex);
    if (nameIndexVersion != store.insertVersion) {
        nameIndexes.clear();
        nameIndexVersion = store.insertVersion;
    }
    auto index = nameIndexes.find(folder);
    if (index == nameIndexes.end()) {
        NameIndex made;
        for (const RowId child : store.children(folder)) {
            const Segment& segment = store.segments.use(Segment::number(child));
            made.rows.emplace_back(hashOf(segment.names.get(Segment::index(child)).bytes), child);
        }
        std::sort(made.rows.begin(), made.rows.end());
        index = nameIndexes.emplace(folder, std::move(made)).first;
    }
    const std::uint64_t hash = hashOf(component);
    const auto& rows = index->second.rows;
    for (auto row = std::lower_bound(rows.begin(), rows.end(), std::pair{hash, noRow});
         row != rows.end() && row->first == hash; ++row) {
        if (store.summaries[row->second] == rowSummary::none)
            continue;
        const Segment& segment = store.segments.use(Segment::number(row->second));
        if (segment.names.get(Segment::index(row->second)).bytes == component)
            return row->second;
    }
    return noRow;
}

} // namespace tavrin
