#include "shell/preview/PreviewList.h"

#include "engine/naming/NameProblems.h"
#include "shell/start/StoreOwner.h"
#include "store/paging/StoreError.h"
#include "support/application/DebugLog.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace tavrin {

template <typename Read>
auto PreviewList::read(Read&& what) -> decltype(what(std::declval<StoreContext&>())) {
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    try {
        return what(context);
    } catch (const StoreError& error) {
        debugLog("could not read rows: {}", error.what());
        return std::nullopt;
    }
}

const std::vector<RowId>& PreviewList::arrangedObjects() {
    hasBeenAsked = true;
    if (answered && answered->generation != store.generation()) {
        rows.clear();
        answered.reset();
        isHeld = false;
    }
    if (isFetchPending && !isHeld) {
        isFetchPending = false;
        bringUpToDate();
    }
    return rows;
}

void PreviewList::hold(std::vector<RowId> arranged) {
    rows = std::move(arranged);
    isHeld = true;
}

void PreviewList::bringUpToDate() {
    Question question{store.generation(), 0, predicate, order};
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    question.version = context.versionOf(request());
    if (answered == question)
        return;
    answered.reset();
    rows.clear();
    ++fetches;
    try {
        rows = context.fetch(request());
        answered = std::move(question);
    } catch (const StoreError& error) {
        debugLog("could not fetch: {}", error.what());
    }
}

std::optional<PreviewList::Row> PreviewList::rowAt(std::size_t index) {
    const std::vector<RowId>& ids = arrangedObjects();
    return index < ids.size() ? rowWithId(ids[index]) : std::nullopt;
}

std::optional<PreviewList::Row> PreviewList::rowWithId(RowId id) {
    return read([&](StoreContext& context) { return rowOf(context, id); });
}

std::vector<PreviewList::Row> PreviewList::rowsWithIds(std::span<const RowId> ids) {
    std::vector<Row> result;
    static_cast<void>(read([&](StoreContext& context) {
        for (const RowId id : ids)
            result.push_back(rowOf(context, id).value_or(Row{}));
        return std::optional(true);
    }));
    result.resize(ids.size());
    return result;
}

std::vector<RowId> PreviewList::changingRows() {
    const std::vector<RowId> changing = changingIds();
    std::vector<RowId> arranged;
    arranged.reserve(changing.size());
    std::ranges::copy_if(arrangedObjects(), std::back_inserter(arranged),
                         [&](RowId id) { return std::ranges::binary_search(changing, id); });
    return arranged;
}

std::vector<RowId> PreviewList::changingIds() {
    if (arrangedObjects().empty())
        return {};
    const FetchRequest request{FetchEntity::file, predicate.with(Predicate::isTrue(NodeKey::diff)), {}, 0};
    std::vector<RowId> ids = read([&](StoreContext& context) {
                                 return std::optional(context.fetch(request));
                             }).value_or(std::vector<RowId>());
    std::ranges::sort(ids);
    return ids;
}

std::vector<RowId> PreviewList::problemIds() {
    return read([&](StoreContext& context) { return std::optional(rowsWithProblems(context, predicate)); })
        .value_or(std::vector<RowId>());
}

std::optional<std::string> PreviewList::pathOf(RowId id) {
    return read([&](StoreContext& context) {
        return context.exists(id) ? std::optional(context.fullPath(id)) : std::nullopt;
    });
}

/// The roots are found without reading a row, so that no selection takes long.
bool PreviewList::isAnyRoot(std::span<const RowId> ids) {
    if (ids.empty())
        return false;
    const FetchRequest request{FetchEntity::file, Predicate::isTrue(NodeKey::root), {}, 0};
    const std::vector<RowId> roots = read([&](StoreContext& context) {
                                         return std::optional(context.fetch(request));
                                     }).value_or(std::vector<RowId>());
    return std::ranges::any_of(ids, [&](RowId id) { return std::ranges::binary_search(roots, id); });
}

RowId PreviewList::rowWithPath(const std::string& path) {
    return read([&](StoreContext& context) { return std::optional(context.fileWithPath(path)); })
        .value_or(noRow);
}

std::optional<PreviewList::Row> PreviewList::rowOf(StoreContext& context, RowId id) {
    if (!context.exists(id))
        return std::nullopt;
    const NodeRow& node = context.row(id);
    Row row;
    row.id = id;
    row.diff = node.diff;
    row.treatAsFolder = node.treatAsFolder;
    row.root = node.root;
    row.madeDistinct = node.madeDistinct;
    row.isPinned = node.hasExactName();
    row.isLeftOut = node.isLeftOut();
    row.problem = node.problem;
    row.note = noteOf(context, id);
    if (auto told = problemOf(context, id))
        row.problemMessage = std::move(told->message);
    row.name = context.name(id);
    row.finalName = context.finalName(id);
    row.fullPath = context.fullPath(id);
    row.regex = context.regexColumns(id);
    return row;
}

} // namespace tavrin
