#include "actions/list/RenameList.h"

#include <bit>
#include <functional>

namespace tavrin {

namespace {

std::uint32_t hashOf(std::u16string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::u16string_view>{}(text));
}

} // namespace

RenameList::RenameList(TextColumn newNames) : names(std::move(newNames)) {}

RenameList::RenameList(TextColumn fileNames, TextColumn newNames, bool firstColumnHoldsPaths)
    : files(std::move(fileNames)), names(std::move(newNames)), holdsPaths(firstColumnHoldsPaths) {
    makeTable();
}

void RenameList::makeTable() {
    if (files.empty())
        return;
    table.resize(std::bit_ceil(files.size() * 2));
    for (std::size_t row = 0; row < files.size(); ++row) {
        const std::uint32_t hash = hashOf(files[row]);
        Slot& slot = table[slotOf(files[row], hash)];
        if (slot.row == 0)
            slot = {hash, static_cast<std::uint32_t>(row + 1)};
    }
}

std::size_t RenameList::slotOf(std::u16string_view key, std::uint32_t hash) const {
    const std::size_t mask = table.size() - 1;
    std::size_t place = hash & mask;
    while (table[place].row != 0 && !(table[place].hash == hash && files[table[place].row - 1] == key))
        place = (place + 1) & mask;
    return place;
}

std::optional<std::u16string_view> RenameList::newNameFor(std::u16string_view key) const {
    if (table.empty())
        return std::nullopt;
    const Slot& slot = table[slotOf(key, hashOf(key))];
    return slot.row == 0 ? std::nullopt : std::optional(names[slot.row - 1]);
}

} // namespace tavrin
