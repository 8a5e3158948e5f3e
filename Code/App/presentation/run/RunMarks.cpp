#include "presentation/run/RunMarks.h"

#include "presentation/QtText.h"

#include <algorithm>

namespace tavrin {

void RunMarks::begin() {
    reasons.clear();
    failedPaths.clear();
    known = visited = 0;
    isOver = false;
    refresh();
}

void RunMarks::refresh() {
    if (isOver)
        return;
    view = outcomes.view();
    for (RunOutcomes::Failure& failure : outcomes.failuresFrom(known)) {
        ++known;
        failedPaths.push_back(failure.path);
        reasons.insert_or_assign(std::move(failure.path), Reason{std::move(failure.reason), std::nullopt});
    }
}

void RunMarks::end() {
    refresh();
    isOver = true;
}

void RunMarks::listWasRead() {
    if (!isOver || !view)
        return;
    view.reset();
    for (auto& [path, reason] : reasons)
        if (const auto row = list.rowWithId(list.rowWithPath(path)))
            reason.newName = row->finalName;
    std::erase_if(reasons, [](const auto& each) { return !each.second.newName; });
}

RunOutcome RunMarks::outcomeOf(const PreviewList::Row& row) const {
    if (view)
        return view->of(row.id);
    return reasonOf(row).isEmpty() ? RunOutcome::open : RunOutcome::failed;
}

QString RunMarks::reasonOf(const PreviewList::Row& row) const {
    const auto found = reasons.empty() ? reasons.end() : reasons.find(row.fullPath);
    if (found == reasons.end() || (found->second.newName && *found->second.newName != row.finalName))
        return {};
    return toQString(std::string_view(found->second.text));
}

std::vector<RowId> RunMarks::notRenamed() const {
    std::vector<RowId> rows;
    for (const auto& [path, reason] : reasons)
        if (const auto row = list.rowWithId(list.rowWithPath(path)); row && !reasonOf(*row).isEmpty())
            rows.push_back(row->id);
    std::ranges::sort(rows);
    return rows;
}

RowId RunMarks::nextFailed() {
    for (std::size_t step = 0; step < failedPaths.size(); ++step) {
        const std::string& path = failedPaths[visited++ % failedPaths.size()];
        if (const RowId row = list.rowWithPath(path); row != noRow)
            return row;
    }
    return noRow;
}

} // namespace tavrin
