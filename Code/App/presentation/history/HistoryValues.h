#pragma once

#include "engine/history/ItemsNow.h"
#include "engine/history/RunHistory.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// What the history window shows, read by a worker and handed on as values.

/// A past run and what its whole record tells of it.
struct ShownRun {
    PastRun run;
    std::string folder; ///< that holds all of its items, in bytes
    std::size_t folderCount = 0;
    std::size_t items = 0;
    std::string recipe;
    /// How many names it has changed, of a run that was cut off as far as the disk tells.
    std::size_t changed = 0;
    std::size_t withTemporaryName = 0;

    [[nodiscard]] bool isUnfinished() const { return !run.isFinished && (!run.end || run.end->wasStopped); }
    [[nodiscard]] bool isUsable() const { return !run.isUnderWay && run.problem.empty(); }

    /// By the name of the run, so that no record is read twice for nothing.
    using ByName = std::map<std::string, ShownRun>;
    /// The newest first. A record that is in `known` with its end has not changed since.
    [[nodiscard]] static std::vector<ShownRun> readAll(const RunHistory& history, const ByName& known);
};

/// The items of a run.
struct RunContents {
    struct Item {
        std::uint32_t folder = 0; ///< place in `folders`
        bool isFolder = false;
        std::string oldName; ///< in bytes, as the next
        std::string newName;
        std::optional<WhereNow> where; ///< absent until it was looked for
    };

    std::vector<std::string> folders; ///< where they are now, in bytes
    std::vector<Item> items;
    bool isLookedAt = false;
    bool isFolderMissing = false; ///< none of the folders is there
    bool isFolderAnother = false; ///< others are in the places of all that are there
    std::map<ItemNow, std::size_t> counts;

    [[nodiscard]] static RunContents read(const PastRun& run);
    /// The same with what has become of the items; what it has come to when it is not wanted any more.
    [[nodiscard]] static RunContents lookedAt(const PastRun& run, const std::function<bool()>& isUnwanted);

    [[nodiscard]] std::size_t count(ItemNow now) const;
    /// Of the items that the run could still change back, or again: how many it can't any more.
    [[nodiscard]] std::size_t lost() const;
    /// The present path of an item; the one that it had where it is nowhere.
    [[nodiscard]] std::string pathOf(const Item& item) const;
};

} // namespace tavrin
