#include "engine/reading/NestedItems.h"

#include "support/text/PathParts.h"

#include <limits>

namespace tavrin {

namespace {

constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

} // namespace

NestedItems::NestedItems(const std::vector<SourceItem>& items)
    : list(items), nearest(items.size(), nowhere), holds(items.size()) {
    places.reserve(list.size());
    for (std::size_t place = 0; place < list.size(); ++place)
        places.emplace(list[place].path, place);
    std::string_view lastFolder; // neighbours on the list are likely to be so on the disk
    std::size_t lastAbove = nowhere;
    for (std::size_t place = 0; place < list.size(); ++place) {
        const std::string_view folder = PathParts(list[place].path).folder;
        if (place == 0 || folder != lastFolder || folder == list[place].path) {
            lastFolder = folder;
            lastAbove = findAbove(list[place].path);
        }
        nearest[place] = lastAbove;
        if (lastAbove != nowhere)
            holds[lastAbove] = true;
    }
}

std::size_t NestedItems::findAbove(std::string_view path) const {
    while (path.size() > 1) {
        path = PathParts(path).folder;
        if (const auto found = places.find(path); found != places.end())
            return found->second;
    }
    return nowhere;
}

std::optional<std::size_t> NestedItems::above(std::size_t place) const {
    return nearest[place] == nowhere ? std::nullopt : std::optional(nearest[place]);
}

const std::string& NestedItems::outermost(std::size_t place) const {
    while (nearest[place] != nowhere)
        place = nearest[place];
    return list[place].path;
}

} // namespace tavrin
