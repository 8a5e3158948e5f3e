#pragma once

#include "support/text/TextUnits.h"

#include <bit>
#include <cstddef>
#include <string_view>

/// Search unit by unit. `part` is never empty; the lowered ones take `part` in lower case and compare it with
/// the lower case of `text`, all of whose characters lie below U+0100.
namespace tavrin::text::literal {

inline constexpr std::size_t none = std::u16string_view::npos;

inline bool startsLowered(std::u16string_view text, std::u16string_view part) {
    if (text.size() < part.size())
        return false;
    for (std::size_t i = 0; i < part.size(); ++i)
        if (units::latin1Lower(text[i]) != part[i])
            return false;
    return true;
}

inline bool starts(std::u16string_view text, std::u16string_view part) {
    return units::same(text.substr(0, part.size()), part);
}

/// The first place with the unit `first` or `other` from which `matches` holds.
template <typename Matches>
std::size_t scan(std::u16string_view text, std::u16string_view part, char16_t other, Matches matches) {
    const std::uint64_t firsts = units::everyUnit(part[0]);
    const std::uint64_t others = units::everyUnit(other);
    std::size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
        const std::uint64_t word = units::load(text.data() + at);
        std::uint64_t candidates = units::zeroUnits(word ^ firsts) | units::zeroUnits(word ^ others);
        for (; candidates != 0; candidates &= candidates - 1) {
            const std::size_t start = at + static_cast<std::size_t>(std::countr_zero(candidates)) / 16;
            if (matches(text.substr(start), part))
                return start;
        }
    }
    for (; at < text.size(); ++at)
        if (matches(text.substr(at), part))
            return at;
    return none;
}

inline std::size_t find(std::u16string_view text, std::u16string_view part) {
    return scan(text, part, part[0], starts);
}

inline std::size_t findLowered(std::u16string_view text, std::u16string_view part) {
    const auto capital = static_cast<char16_t>(part[0] - 0x20);
    const bool hasCapital = part[0] >= 0x20 && units::latin1Lower(capital) == part[0];
    return scan(text, part, hasCapital ? capital : part[0], startsLowered);
}

inline std::size_t findLast(std::u16string_view text, std::u16string_view part) {
    for (std::size_t at = text.size(); at-- > 0;)
        if (text[at] == part[0] && starts(text.substr(at), part))
            return at;
    return none;
}

inline std::size_t findLastLowered(std::u16string_view text, std::u16string_view part) {
    for (std::size_t at = text.size(); at-- > 0;)
        if (startsLowered(text.substr(at), part))
            return at;
    return none;
}

} // namespace tavrin::text::literal
