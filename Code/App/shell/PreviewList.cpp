#include "shell/PreviewList.h"

#include "shell/StoreOwner.h"
#include "store/StoreError.h"
#include "support/DebugLog.h"

namespace tavrin {

const std::vector<RowId>& PreviewList::arrangedObjects() {
    if (answered && answered->generation != store.generation()) {
        rows.clear();
        answered.reset();
    }
    if (isFetchPending) {
        isFetchPending = false;
        bringUpToDate();
    }
    return rows;
}

void PreviewList::bringUpToDate() {
    Question question{store.generation(), 0, predicate, order};
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    question.listVersion = context.listVersion();
    if (answered == question)
        return;
    answered.reset();
    rows.clear();
    ++fetches;
    try {
        rows = context.fetch({FetchEntity::file, predicate, order, 0});
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
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    try {
        if (!context.exists(id))
            return std::nullopt;
        const NodeRow& node = context.row(id);
        Row row;
        row.id = id;
        row.diff = node.diff;
        row.treatAsFolder = node.treatAsFolder;
        row.root = node.root;
        row.name = context.name(id);
        row.finalName = context.finalName(id);
        row.fullPath = context.fullPath(id);
        row.regex = context.regexColumns(id);
        return row;
    } catch (const StoreError& error) {
        debugLog("could not read a row: {}", error.what());
        return std::nullopt;
    }
}

} // namespace tavrin
