#include "engine/renaming/RunOutcomes.h"

#include <algorithm>

namespace tavrin {

void RunOutcomes::begin(RowId end, RowsByPath byPath) {
    auto table = std::make_shared<View::Table>();
    table->end = end;
    table->bytes = std::make_unique<std::atomic<RunOutcome>[]>(end);
    table->byPath = std::move(byPath);
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

RunOutcome RunOutcomes::View::of(RowId row, const std::string& path) const {
    if (!table->byPath.empty()) {
        const auto found = table->byPath.find(path);
        if (found == table->byPath.end())
            return RunOutcome::open;
        row = found->second;
    }
    return row < table->end ? table->bytes[row].load(std::memory_order_relaxed) : RunOutcome::open;
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
