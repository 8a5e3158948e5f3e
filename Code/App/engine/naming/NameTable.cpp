#include "engine/naming/NameTable.h"

#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <random>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t smallestTable = 16;
constexpr std::size_t batchSize = 32;

/// Folds two words into one so that every bit of both counts.
std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    a = (a ^ b) * 0x9E3779B97F4A7C15ULL;
    a ^= a >> 32;
    a *= 0xD6E8FEB86659FD93ULL;
    return a ^ (a >> 29);
}

/// So that no one can prepare names whose hashes are all alike.
std::uint64_t newSeed() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

/// Lower-cases into a buffer that is used again.
void lowercase(std::u16string_view name, std::u16string& into) {
    if (!text::units::allAscii(name)) {
        into = text::lowercased(name);
        return;
    }
    into.resize(name.size());
    std::transform(name.begin(), name.end(), into.begin(), text::units::asciiLower<char16_t>);
}

} // namespace

NameTable::NameTable(StoreContext& storeContext) : context(storeContext), seed(newSeed()) {}

void NameTable::read(const std::vector<RowId>& children) {
    groups.clear();
    rows.clear();
    rows.reserve(children.size());
    table.assign(std::max(smallestTable, std::bit_ceil(children.size() + children.size() / 4)), {});
    for (std::size_t at = 0; at < children.size(); at += batchSize)
        readBatch(std::span(children).subspan(at, std::min(batchSize, children.size() - at)));
}

/// All hashes before the table is touched, so that the memory of a big table is on its way meanwhile.
void NameTable::readBatch(std::span<const RowId> children) {
    std::array<std::uint32_t, batchSize> hashes{};
    for (std::size_t i = 0; i < children.size(); ++i) {
        hashes[i] = hashOf(keyOf(children[i]));
        __builtin_prefetch(&table[hashes[i] & (table.size() - 1)]);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        const RowId id = children[i];
        const std::uint32_t entry = find(hashes[i], [&] { return keyOf(id); });
        if (entry == none)
            addEntry(id, hashes[i]);
        else
            addMember(entry, id);
    }
}

std::vector<NameTable::Group> NameTable::takeGroups() {
    std::vector<std::pair<std::uint32_t, Group>> byEntry;
    for (auto& [entry, group] : groups)
        byEntry.emplace_back(entry, std::move(group.members));
    std::sort(byEntry.begin(), byEntry.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Group> result;
    for (auto& [entry, members] : byEntry)
        result.push_back(std::move(members));
    return result;
}

bool NameTable::isTaken(std::u16string_view name) {
    std::u16string key;
    lowercase(name, key);
    return find(hashOf(key), [&] { return std::u16string_view(key); }) != none;
}

void NameTable::add(RowId id) {
    const std::uint32_t hash = hashOf(keyOf(id));
    if (find(hash, [&] { return keyOf(id); }) == none)
        addEntry(id, hash);
}

std::u16string_view NameTable::keyOf(RowId id) {
    context.finalName(id, nameBuffer);
    lowercase(nameBuffer, keyBuffer);
    return keyBuffer;
}

template <typename Key> std::uint32_t NameTable::find(std::uint32_t hash, Key key) {
    const std::size_t mask = table.size() - 1;
    bool hasKey = false;
    for (std::size_t at = hash & mask; table[at].entry != none; at = (at + 1) & mask) {
        if (table[at].hash != hash)
            continue;
        if (!std::exchange(hasKey, true))
            soughtKey = key();
        if (isKeyOf(table[at].entry, soughtKey))
            return table[at].entry;
    }
    return none;
}

bool NameTable::isKeyOf(std::uint32_t entry, std::u16string_view key) {
    const auto group = groups.find(entry);
    return text::units::same(group != groups.end() ? group->second.key : keyOf(rows[entry]), key);
}

/// The name sought last is that of the member.
void NameTable::addMember(std::uint32_t entry, RowId id) {
    NamedGroup& group = groups[entry];
    if (group.members.empty()) {
        group.key = soughtKey;
        group.members.push_back(rows[entry]);
    }
    group.members.push_back(id);
}

void NameTable::addEntry(RowId id, std::uint32_t hash) {
    rows.push_back(id);
    if (rows.size() + rows.size() / 3 > table.size())
        grow();
    insert({hash, static_cast<std::uint32_t>(rows.size() - 1)});
}

void NameTable::grow() {
    const std::vector<Slot> former = std::exchange(table, std::vector<Slot>(table.size() * 2));
    for (const Slot& slot : former) {
        if (slot.entry != none)
            insert(slot);
    }
}

void NameTable::insert(Slot slot) {
    const std::size_t mask = table.size() - 1;
    std::size_t at = slot.hash & mask;
    while (table[at].entry != none)
        at = (at + 1) & mask;
    table[at] = slot;
}

std::uint32_t NameTable::hashOf(std::u16string_view key) const {
    std::uint64_t hash = mixed(seed, key.size());
    const char16_t* at = key.data();
    std::size_t left = key.size();
    for (; left >= 4; left -= 4, at += 4)
        hash = mixed(hash, text::units::load(at));
    std::uint64_t rest = 0;
    std::memcpy(&rest, at, left * sizeof(char16_t));
    return static_cast<std::uint32_t>(mixed(hash, rest) >> 32);
}

} // namespace tavrin
