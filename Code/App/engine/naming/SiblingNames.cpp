#include "engine/naming/SiblingNames.h"

#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <bit>
#include <functional>

namespace tavrin {

namespace {

std::uint32_t hashOf(std::string_view name) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(name));
}

/// The slot of the first row that has this hash and passes the test, or the free one where it would go.
template <typename Table, typename Test> auto& slotFor(Table& table, std::uint32_t hash, Test isWanted) {
    const std::size_t mask = table.size() - 1;
    std::size_t at = hash & mask;
    while (table[at].row != noRow && !(table[at].hash == hash && isWanted(table[at].row)))
        at = (at + 1) & mask;
    return table[at];
}

} // namespace

void SiblingNames::build(StoreContext& from, const std::vector<RowId>& children) {
    context = &from;
    namesDifferInCaseAlone = false;
    lowerCased.assign(std::bit_ceil(2 * children.size() + 1), {});
    for (const RowId child : children)
        addLowerCased(child);
    if (namesDifferInCaseAlone)
        addVeryNames(children);
}

void SiblingNames::addLowerCased(RowId child) {
    text::lowercaseBytes(context->component(child), key);
    const std::uint32_t hash = hashOf(key);
    Slot& slot = slotFor(lowerCased, hash, [&](RowId row) { return isLowerCasedNameOf(row, key); });
    namesDifferInCaseAlone |= slot.row != noRow;
    slot = {hash, child};
}

void SiblingNames::addVeryNames(const std::vector<RowId>& children) {
    veryNames.assign(lowerCased.size(), {});
    for (const RowId child : children) {
        const std::uint32_t hash = hashOf(context->component(child));
        slotFor(veryNames, hash, [](RowId) { return false; }) = {hash, child};
    }
}

bool SiblingNames::isLowerCasedNameOf(RowId child, std::string_view wanted) {
    text::lowercaseBytes(context->component(child), other);
    return other == wanted;
}

RowId SiblingNames::find(std::string_view name) {
    if (lowerCased.empty())
        return noRow;
    if (namesDifferInCaseAlone) {
        const Slot& slot =
            slotFor(veryNames, hashOf(name), [&](RowId row) { return context->component(row) == name; });
        if (slot.row != noRow)
            return slot.row;
    }
    text::lowercaseBytes(name, key);
    return slotFor(lowerCased, hashOf(key), [&](RowId row) { return isLowerCasedNameOf(row, key); }).row;
}

void SiblingNames::clear() {
    constexpr std::size_t worthKeeping = 4096;
    for (Table* table : {&lowerCased, &veryNames}) {
        table->clear();
        if (table->capacity() > worthKeeping)
            table->shrink_to_fit();
    }
}

} // namespace tavrin
