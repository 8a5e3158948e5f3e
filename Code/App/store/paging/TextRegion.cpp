#include "store/paging/TextRegion.h"

#include <algorithm>
#include <cstring>

namespace tavrin {

TextRegion::Text TextRegion::get(std::size_t index) const {
    const Slot& slot = slots[index];
    if (slot.offset == absent)
        return {};
    return {std::string_view(buffer).substr(slot.offset, slot.bytes()), (slot.length & wideBit) != 0};
}

void TextRegion::set(std::size_t index, Text text) {
    Slot& slot = slots[index];
    const std::size_t size = text.bytes.size();
    if (slot.offset != absent && size <= slot.bytes()) {
        garbage += slot.bytes() - size;
        std::memmove(buffer.data() + slot.offset, text.bytes.data(), size);
    } else {
        clear(index);
        append(slot, text.bytes);
    }
    slot.length = static_cast<std::uint32_t>(size) | (text.isWide ? wideBit : 0);
    compactIfWasteful();
}

void TextRegion::clear(std::size_t index) {
    Slot& slot = slots[index];
    if (slot.offset != absent)
        garbage += slot.bytes();
    slot = Slot{};
}

void TextRegion::clearAll() {
    slots.assign(slots.size(), Slot{});
    buffer.clear();
    garbage = 0;
}

void TextRegion::append(Slot& slot, std::string_view bytes) {
    const std::size_t needed = buffer.size() + bytes.size();
    if (needed > buffer.capacity())
        buffer.reserve(std::max(needed + needed / 4, std::size_t{256}));
    slot.offset = static_cast<std::uint32_t>(buffer.size());
    buffer.append(bytes);
}

void TextRegion::compactIfWasteful() {
    constexpr std::size_t tolerated = 4096;
    if (garbage < tolerated || garbage < buffer.size() / 2)
        return;
    *this = slice(0, slots.size());
}

std::size_t TextRegion::footprint() const { return slots.capacity() * sizeof(Slot) + buffer.capacity(); }

TextRegion TextRegion::slice(std::size_t first, std::size_t count) const {
    TextRegion part(count);
    std::size_t total = 0;
    for (std::size_t i = 0; i < count; ++i)
        total += slots[first + i].bytes();
    part.buffer.reserve(total);
    for (std::size_t i = 0; i < count; ++i) {
        const Slot& slot = slots[first + i];
        if (slot.offset == absent)
            continue;
        part.slots[i] = {static_cast<std::uint32_t>(part.buffer.size()), slot.length};
        part.buffer.append(buffer, slot.offset, slot.bytes());
    }
    return part;
}

void TextRegion::appendBlob(std::string& blob) const {
    blob.append(reinterpret_cast<const char*>(slots.data()), slots.size() * sizeof(Slot));
    blob.append(buffer);
}

bool TextRegion::readBlob(std::string_view blob, std::size_t count) {
    const std::size_t slotBytes = count * sizeof(Slot);
    if (blob.size() < slotBytes)
        return false;
    slots.resize(count);
    std::memcpy(slots.data(), blob.data(), slotBytes);
    buffer.assign(blob.substr(slotBytes));
    garbage = buffer.size();
    for (const Slot& slot : slots) {
        if (slot.offset == absent)
            continue;
        if (std::size_t{slot.offset} + slot.bytes() > buffer.size() || slot.bytes() > garbage)
            return false;
        garbage -= slot.bytes();
    }
    return true;
}

} // namespace tavrin
