#include "engine/pipeline/EngineTurns.h"

#include <algorithm>

namespace tavrin {

EngineTurns::Turn::Turn(EngineTurns& line) : turns(line) {
    const std::lock_guard lock(turns.mutex);
    turns.line.push_back(this);
}

void EngineTurns::Turn::await() {
    std::unique_lock lock(turns.mutex);
    turns.changed.wait(lock, [this] { return turns.line.front() == this; });
}

void EngineTurns::Turn::end() {
    {
        const std::lock_guard lock(turns.mutex);
        if (!isInLine)
            return;
        isInLine = false;
        turns.line.erase(std::find(turns.line.begin(), turns.line.end(), this));
    }
    turns.changed.notify_all();
}

} // namespace tavrin
