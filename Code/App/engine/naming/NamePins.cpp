#include "engine/naming/NamePins.h"

#include "support/text/PathParts.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tavrin {

std::size_t NamePins::partOf(std::string_view path) {
    // Not the bits by which a part itself tells its paths apart.
    return (Hash{}(path) >> 40) % partCount;
}

void NamePins::apply(std::vector<Change> changes) {
    std::vector<std::pair<std::uint16_t, std::uint32_t>> byPart;
    byPart.reserve(changes.size());
    for (const Change& change : changes)
        byPart.emplace_back(partOf(change.path), byPart.size());
    std::ranges::sort(byPart);
    auto next = std::make_shared<Parts>(parts ? *parts : Parts());
    for (auto at = byPart.begin(); at != byPart.end();) {
        auto& shared = (*next)[at->first];
        auto part = std::make_shared<Part>(shared ? *shared : Part());
        for (const auto number = at->first; at != byPart.end() && at->first == number; ++at)
            applyTo(*part, changes[at->second]);
        shared = part->empty() ? nullptr : std::move(part);
    }
    parts = std::move(next);
}

void NamePins::applyTo(Part& part, Change& change) {
    const auto [entry, isNew] = part.try_emplace(std::move(change.path));
    Pin& pin = entry->second;
    namedCount -= pin.name.empty() ? 0 : 1;
    leftOutCount -= pin.isLeftOut ? 1 : 0;
    if (change.name)
        pin.name = std::move(*change.name);
    pin.isLeftOut = change.isLeftOut.value_or(pin.isLeftOut);
    namedCount += pin.name.empty() ? 0 : 1;
    leftOutCount += pin.isLeftOut ? 1 : 0;
    if (pin.isNothing())
        part.erase(entry);
}

std::vector<NamePins::Change> NamePins::Bunches::next() {
    std::vector<Change> bunch;
    for (std::size_t taken = 0; nextPart < partCount && taken < partsAtOnce; ++nextPart) {
        std::ranges::move(byPart[nextPart], std::back_inserter(bunch));
        taken += byPart[nextPart].empty() ? 0 : 1;
        byPart[nextPart] = {};
    }
    return bunch;
}

const NamePins::Pin* NamePins::find(std::string_view path) const {
    const Part* const part = parts ? (*parts)[partOf(path)].get() : nullptr;
    if (part == nullptr)
        return nullptr;
    const auto found = part->find(path);
    return found == part->end() ? nullptr : &found->second;
}

std::string MovedPaths::presentPath(const std::string& path) const {
    std::vector<std::string_view> components; // from the last one up
    std::string_view folder = path;
    std::string sought;
    for (; folder.size() > 1; folder = PathParts(folder).folder) {
        sought = folder;
        const auto moved = moves.find(sought);
        components.push_back(moved == moves.end() ? PathParts(folder).name : moved->second.name);
    }
    return std::accumulate(
        components.rbegin(), components.rend(), std::string("/"),
        [](const std::string& above, std::string_view name) { return joinedPath(above, name); });
}

std::vector<NamePins::Change> MovedPaths::changesOf(const NamePins& pins) const {
    std::vector<NamePins::Change> gone;
    std::vector<NamePins::Change> come; // behind all that leave, since paths may be exchanged
    if (moves.empty())
        return gone;
    pins.forEach([&](const std::string& path, const NamePins::Pin& pin) {
        const auto move = moves.find(path);
        const bool isDone = move != moves.end() && move->second.isPinned && pins.namesCount();
        std::string present = presentPath(path);
        if (!isDone && present == path)
            return;
        gone.push_back({path, "", false});
        const std::string name = isDone ? std::string() : pin.name;
        if (!name.empty() || pin.isLeftOut)
            come.push_back({std::move(present), name, pin.isLeftOut});
    });
    std::ranges::move(come, std::back_inserter(gone));
    return gone;
}

} // namespace tavrin
