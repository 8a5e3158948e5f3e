#include "engine/reading/SourceItemChanges.h"

#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"

#include <fmt/ranges.h>

#include <utility>

namespace tavrin {

void SourceItemChanges::change(std::string from, std::string to) {
    changeFrom.push_back(std::move(from));
    changeTo.push_back(std::move(to));
}

void SourceItemChanges::apply() {
    debugLog("-- finished renaming, now removing old source times, then adding new source items");
    if (debugLogIsOn()) {
        debugLog("source item paths to be changed from {} to {}", fmt::join(changeFrom, ", "),
                 fmt::join(changeTo, ", "));
        debugLog("source item paths to be removed: {}", fmt::join(toBeRemoved, ", "));
        debugLog("source item paths to be added: {}", fmt::join(toBeAdded, ", "));
    }
    SourceItemManager& manager = SourceItemManager::sharedInstance();
    for (std::size_t i = 0; i < changeFrom.size(); ++i)
        manager.changeTo(changeFrom[i], changeTo[i]);
    for (const std::string& path : toBeRemoved)
        manager.removeItem(path);
    for (const std::string& path : toBeAdded)
        manager.addSourceItem(path);
    for (auto* paths : {&changeFrom, &changeTo, &toBeRemoved, &toBeAdded})
        paths->clear();
}

} // namespace tavrin
