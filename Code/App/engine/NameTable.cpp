#include "engine/NameTable.h"

#include "store/StoreContext.h"
#include "support/Text.h"
#include "support/TextUnits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t smallestTable = 16;

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

} // namespace

NameTable::NameTable(StoreContext& storeContext) : context(storeContext), seed(newSeed()) {}

void NameTable::read(const std::vector<RowId>& children) {
    groups.clear();
    hashes.clear();
    rows.clear();
    hashes.reserve(children.size());
    rows.reserve(children.size());
    table.assign(std::max(smallestTable, std::bit_ceil(children.size() + children.size() / 2)), none);
    for (const RowId id : children) {
        context.finalName(id, nameBuffer);
        lowercase(nameBuffer, keyBuffer);
        const std::uint64_t hash = hashOf(keyBuffer);
        if (const std::uint32_t entry = find(keyBuffer, hash); entry != none)
            addMember(entry, id, keyBuffer);
        else
            addEntry(id, hash);
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
    lowercase(name, keyBuffer);
    return find(keyBuffer, hashOf(keyBuffer)) != none;
}

void NameTable::add(RowId id) {
    context.finalName(id, nameBuffer);
    lowercase(nameBuffer, keyBuffer);
    const std::uint64_t hash = hashOf(keyBuffer);
    if (find(keyBuffer, hash) == none)
        addEntry(id, hash);
}

void NameTable::addMember(std::uint32_t entry, RowId id, std::u16string_view key) {
    NamedGroup& group = groups[entry];
    if (group.members.empty()) {
        group.key = key;
        group.members.push_back(rows[entry]);
    }
    group.members.push_back(id);
}

void NameTable::addEntry(RowId id, std::uint64_t hash) {
    rows.push_back(id);
    hashes.push_back(hash);
    if (rows.size() + rows.size() / 4 > table.size())
        grow();
    else
        insertIntoTable(static_cast<std::uint32_t>(rows.size() - 1));
}

void NameTable::grow() {
    table.assign(table.size() * 2, none);
    for (std::uint32_t entry = 0; entry < rows.size(); ++entry)
        insertIntoTable(entry);
}

void NameTable::insertIntoTable(std::uint32_t entry) {
    const std::size_t mask = table.size() - 1;
    std::size_t slot = hashes[entry] & mask;
    while (table[slot] != none)
        slot = (slot + 1) & mask;
    table[slot] = entry;
}

std::uint32_t NameTable::find(std::u16string_view key, std::uint64_t hash) {
    const std::size_t mask = table.size() - 1;
    for (std::size_t slot = hash & mask; table[slot] != none; slot = (slot + 1) & mask) {
        const std::uint32_t entry = table[slot];
        if (hashes[entry] != hash)
            continue;
        const auto group = groups.find(entry);
        if (group == groups.end()) {
            context.finalName(rows[entry], nameBuffer);
            lowercase(nameBuffer, otherBuffer);
        }
        if ((group == groups.end() ? otherBuffer : group->second.key) == key)
            return entry;
    }
    return none;
}

std::uint64_t NameTable::hashOf(std::u16string_view key) const {
    std::uint64_t hash = mixed(seed, key.size());
    const char16_t* at = key.data();
    std::size_t left = key.size();
    for (; left >= 4; left -= 4, at += 4)
        hash = mixed(hash, text::units::load(at));
    std::uint64_t rest = 0;
    std::memcpy(&rest, at, left * sizeof(char16_t));
    return mixed(hash, rest);
}

void NameTable::lowercase(std::u16string_view name, std::u16string& into) const {
    if (!text::units::allAscii(name)) {
        into = text::lowercased(name);
        return;
    }
    into.resize(name.size());
    std::transform(name.begin(), name.end(), into.begin(), text::units::asciiLower<char16_t>);
}

} // namespace tavrin
