#include "support/text/TextSearchKey.h"

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>

namespace tavrin::text {
namespace {

/// The keys of single characters up to the end of the Cyrillic letters, so that most accented names need no
/// call of ICU per character.
class KeyTable {
  public:
    static constexpr char16_t end = 0x0530;

    explicit KeyTable(CaseSensitivity sensitivity) {
        for (char16_t c = 0; c < end; ++c) {
            const std::u16string key = wholeKey(std::u16string_view(&c, 1), sensitivity);
            if (key.size() > entries[c].units.size())
                throw std::logic_error("search key of a character is too long");
            std::copy(key.begin(), key.end(), entries[c].units.begin());
            entries[c].length = static_cast<std::uint8_t>(key.size());
            const std::u16string composed = precomposed(key);
            const bool isAlone = c != u'\r' && !isMark(c) && composed.size() == 1;
            entries[c].alone = isAlone ? composed[0] : u'\0';
        }
    }

    static bool isMark(char16_t c) { return (c >= 0x0300 && c <= 0x036F) || (c >= 0x0483 && c <= 0x0489); }

    static std::u16string wholeKey(std::u16string_view text, CaseSensitivity sensitivity) {
        std::u16string key = decomposed(text);
        return sensitivity == CaseSensitivity::sensitive ? key : decomposed(caseFolded(key));
    }

    void append(char16_t c, std::u16string& into) const {
        into.append(entries[c].units.data(), entries[c].length);
    }

    /// The composed key if it is one unit and the character joins with none of its like; else 0.
    char16_t alone(char16_t c) const { return entries[c].alone; }

  private:
    struct Entry {
        std::array<char16_t, 3> units{};
        char16_t alone = 0;
        std::uint8_t length = 0;
    };
    std::array<Entry, end> entries;
};

const KeyTable& keyTable(CaseSensitivity sensitivity) {
    if (sensitivity == CaseSensitivity::sensitive) {
        static const KeyTable table(CaseSensitivity::sensitive);
        return table;
    }
    static const KeyTable table(CaseSensitivity::insensitive);
    return table;
}

bool isHan(char16_t unit) { return unit >= 0x4E00 && unit <= 0x9FFF; }

/// Characters above the table that are sequences by themselves, have no case and are their own form C: Han,
/// Hangul syllables, kana without their voicing marks, dashes and quotation marks.
bool isOwnComposedKey(char16_t unit) {
    return isHan(unit) || (unit >= 0xAC00 && unit <= 0xD7A3) || (unit >= 0x3041 && unit <= 0x3096) ||
           (unit >= 0x30A1 && unit <= 0x30FA) || (unit >= 0x2010 && unit <= 0x2027);
}

} // namespace

std::u16string searchKey(std::u16string_view text, CaseSensitivity sensitivity) {
    return KeyTable::wholeKey(text, sensitivity);
}

void appendSequenceKey(std::u16string_view sequence, CaseSensitivity sensitivity, std::u16string& into) {
    const char16_t unit = sequence[0];
    const auto appendAscii = [&] {
        into += sensitivity == CaseSensitivity::sensitive ? unit : units::asciiLower(unit);
    };
    if (sequence.size() == 2 && unit < 0x80 && KeyTable::isMark(sequence[1])) {
        appendAscii();
        keyTable(sensitivity).append(sequence[1], into);
    } else if (sequence.size() > 1) {
        into += KeyTable::wholeKey(sequence, sensitivity);
    } else if (unit < 0x80) {
        appendAscii();
    } else if (isHan(unit)) {
        into += unit;
    } else if (unit < KeyTable::end) {
        keyTable(sensitivity).append(unit, into);
    } else {
        into += KeyTable::wholeKey(sequence, sensitivity);
    }
}

bool unitwiseKey(std::u16string_view text, CaseSensitivity sensitivity, std::u16string& into) {
    const KeyTable& table = keyTable(sensitivity);
    into.resize(text.size());
    char16_t* const out = into.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        out[i] = unit < KeyTable::end ? table.alone(unit) : isOwnComposedKey(unit) ? unit : u'\0';
        if (out[i] == 0)
            return false;
    }
    return true;
}

} // namespace tavrin::text
