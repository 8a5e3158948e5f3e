#include "engine/naming/NameTable.h"

#include "store/contexts/StoreContext.h"
#include "support/text/AsciiBytes.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t batchSize = 32;

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

std::uint32_t CaselessHash::of(std::u16string_view name) {
    if (!text::units::allAscii(name))
        return ofKey(text::lowercased(name));
    buffer.resize(name.size());
    std::ranges::transform(name, buffer.begin(),
                           [](char16_t unit) { return static_cast<char>(text::units::asciiLower(unit)); });
    return slots.hashOf(std::string_view(buffer));
}

std::uint32_t CaselessHash::ofKey(std::u16string_view key) {
    if (!text::units::allAscii(key))
        return slots.hashOf(key);
    buffer.assign(key.begin(), key.end());
    return slots.hashOf(std::string_view(buffer));
}

std::uint32_t CaselessHash::ofAscii(std::string_view name) {
    text::lowercaseBytes(name, buffer);
    return slots.hashOf(std::string_view(buffer));
}

void NameTable::read(const std::vector<RowId>& children) {
    groups.clear();
    rows.clear();
    rows.reserve(children.size());
    entries.reset(children.size());
    for (std::size_t at = 0; at < children.size(); at += batchSize)
        readBatch(std::span(children).subspan(at, std::min(batchSize, children.size() - at)));
}

/// All hashes before the table is touched, so that the memory of a big table is on its way meanwhile.
void NameTable::readBatch(std::span<const RowId> children) {
    std::array<std::uint32_t, batchSize> ofBatch{};
    for (std::size_t i = 0; i < children.size(); ++i) {
        const RowId id = children[i];
        ofBatch[i] = id < hashes.size() && hashes[id] != 0 ? hashes[id] : hashOf(id);
        entries.prefetch(ofBatch[i]);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        const RowId id = children[i];
        const std::uint32_t entry = find(ofBatch[i], [&] { return keyOf(id); });
        if (entry == 0)
            addEntry(id, ofBatch[i]);
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
    return find(hasher.ofKey(key), [&] { return std::u16string_view(key); }) != 0;
}

void NameTable::add(RowId id) {
    const std::uint32_t hash = hashOf(id);
    if (find(hash, [&] { return keyOf(id); }) == 0)
        addEntry(id, hash);
}

std::u16string_view NameTable::keyOf(RowId id) {
    context.finalName(id, nameBuffer);
    lowercase(nameBuffer, keyBuffer);
    return keyBuffer;
}

std::uint32_t NameTable::hashOf(RowId id) {
    const StoreContext::HeldName held = context.heldFinalName(id);
    const std::string_view bytes = held.isName ? context.component(id) : held.bytes;
    if (!held.hasBytes || !text::isAsciiWithoutNul(bytes))
        return hasher.ofKey(keyOf(id));
    if (!held.isName || bytes.find(':') == bytes.npos)
        return hasher.ofAscii(bytes);
    byteBuffer.assign(bytes);
    std::ranges::replace(byteBuffer, ':', '/');
    return hasher.ofAscii(byteBuffer);
}

template <typename Key> std::uint32_t NameTable::find(std::uint32_t hash, Key key) {
    bool hasKey = false;
    const std::uint32_t* const entry = entries.find(hash, [&](std::uint32_t candidate) {
        if (!std::exchange(hasKey, true))
            soughtKey = key();
        return isKeyOf(candidate, soughtKey);
    });
    return entry == nullptr ? 0 : *entry;
}

bool NameTable::isKeyOf(std::uint32_t entry, std::u16string_view key) {
    const auto group = groups.find(entry);
    return text::units::same(group != groups.end() ? group->second.key : keyOf(rows[entry - 1]), key);
}

/// The name sought last is that of the member.
void NameTable::addMember(std::uint32_t entry, RowId id) {
    NamedGroup& group = groups[entry];
    if (group.members.empty()) {
        group.key = soughtKey;
        group.members.push_back(rows[entry - 1]);
    }
    group.members.push_back(id);
}

void NameTable::addEntry(RowId id, std::uint32_t hash) {
    rows.push_back(id);
    entries.add(hash, static_cast<std::uint32_t>(rows.size()));
}

} // namespace tavrin
