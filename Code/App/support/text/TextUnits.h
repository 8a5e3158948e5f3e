#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The inner loops of the text functions: four code units at a time in a 64-bit word.
namespace tavrin::text::units {

/// Below this no character combines with another, and form C changes nothing.
inline constexpr char16_t firstCombining = 0x0300;
/// Below this no character has a canonical decomposition.
inline constexpr char16_t firstDecomposing = 0x00C0;

inline constexpr std::uint64_t everyUnit(std::uint16_t value) { return value * 0x0001000100010001ULL; }

template <typename Unit> std::uint64_t load(const Unit* from) {
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

inline bool same(std::u16string_view a, std::u16string_view b) {
    // An empty view may have no address, which memcmp does not take.
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

/// Whether `outside`, asked for words of four units, is zero for the whole text.
template <typename Outside> bool none(std::u16string_view text, Outside outside) {
    const char16_t* at = text.data();
    const char16_t* const end = at + text.size();
    std::uint64_t found = 0;
    if (text.size() < 4) {
        for (; at < end; ++at)
            found |= outside(std::uint64_t{*at});
        return found == 0;
    }
    for (; end - at >= 8; at += 8)
        found |= outside(load(at)) | outside(load(at + 4));
    if (end - at >= 4)
        found |= outside(load(at));
    // The last word overlaps the one before, which spares a loop over single units.
    return (found | outside(load(end - 4))) == 0;
}

inline bool allAscii(std::u16string_view text) {
    return none(text, [](std::uint64_t word) { return word & everyUnit(0xFF80); });
}

inline bool allBelow100(std::u16string_view text) {
    return none(text, [](std::uint64_t word) { return word & everyUnit(0xFF00); });
}

inline bool allBelowFirstCombining(std::u16string_view text) {
    // A unit of 0300 to 03FF has both of the bits 8 and 9.
    return none(text, [](std::uint64_t word) {
        return (word & everyUnit(0xFC00)) | (word & (word << 1) & everyUnit(0x0200));
    });
}

inline bool allBelowFirstDecomposing(std::u16string_view text) {
    return none(text, [](std::uint64_t word) {
        return (word & everyUnit(0xFF00)) | (word & (word << 1) & everyUnit(0x0080));
    });
}

/// Has a bit where a unit of the word is zero; exact for the lowest such unit and for whether there is one.
inline std::uint64_t zeroUnits(std::uint64_t word) {
    return (word - everyUnit(1)) & ~word & everyUnit(0x8000);
}

template <typename Unit> constexpr Unit asciiLower(Unit unit) {
    const bool isCapital = static_cast<std::uint16_t>(unit - 'A') < 26;
    return static_cast<Unit>(unit + (isCapital ? 'a' - 'A' : 0));
}

constexpr bool isLatin1Capital(char32_t c) { return c - 0xC0 < 0x1F && c != 0xD7; }

/// The lower case of a character below U+0100.
constexpr char16_t latin1Lower(char16_t unit) {
    return static_cast<char16_t>(asciiLower(unit) + (isLatin1Capital(unit) ? 0x20 : 0));
}

template <typename Unit> constexpr Unit asciiUpper(Unit unit) {
    const bool isSmall = static_cast<std::uint16_t>(unit - 'a') < 26;
    return static_cast<Unit>(unit - (isSmall ? 'a' - 'A' : 0));
}

constexpr bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }
constexpr bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

/// The code point at a position; an unpaired surrogate is itself.
inline char32_t codePointAt(std::u16string_view text, std::size_t at) {
    const char16_t unit = text[at];
    if (isHighSurrogate(unit) && at + 1 < text.size() && isLowSurrogate(text[at + 1]))
        return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (text[at + 1] - 0xDC00);
    return unit;
}

constexpr std::size_t unitCount(char32_t c) { return c < 0x10000 ? 1 : 2; }

} // namespace tavrin::text::units
