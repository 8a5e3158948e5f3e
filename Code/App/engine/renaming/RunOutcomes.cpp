#include "engine/renaming/RunOutcomes.h"

#include <algorithm>
#include <utility>

namespace tavrin {

void RunOutcomes::begin(std::vector<bool> isPlanned, std::optional<std::vector<RowId>> rowsOfList) {
    auto table = std::make_shared<View::Table>();
    table->end = static_cast<RowId>(isPlanned.size());
    table->bytes = std::make_unique<std::atomic<RunOutcome>[]>(isPlanned.size());
    table->isPlanned = std::move(isPlanned);
    table->rowsOfList = std::move(rowsOfList);
    const std::lock_guard lock(mutex);
    current = std::move(table);
    failures.clear();
    failedCount = 0;
    stopped = false;
}

void RunOutcomes::fail(RowId row, Failure failure) {
    set(row, RunOutcome::failed);
    const std::lock_guard lock(mutex);
    ++failedCount;
    if (failures.size() < mostFailures)
        failures.push_back(std::move(failure));
}

RowId RunOutcomes::View::rowOfRun(RowId row) const {
    const auto& rows = table->rowsOfList;
    return !rows ? row : row < rows->size() ? (*rows)[row] : noRow;
}

RunOutcome RunOutcomes::View::of(RowId row) const {
    row = rowOfRun(row);
    return row < table->end ? table->bytes[row].load(std::memory_order_relaxed) : RunOutcome::open;
}

bool RunOutcomes::View::isPlanned(RowId row) const {
    row = rowOfRun(row);
    return row < table->end && table->isPlanned[row];
}

RunOutcomes::View RunOutcomes::view() const {
    View view;
    const std::lock_guard lock(mutex);
    view.table = current;
    return view;
}

std::vector<RunOutcomes::Failure> RunOutcomes::failuresFrom(std::size_t first) const {
    const std::lock_guard lock(mutex);
    return {failures.begin() + static_cast<std::ptrdiff_t>(std::min(first, failures.size())), failures.end()};
}

} // namespace tavrin
