#include "support/TextSearchKey.h"

#include "support/Text.h"
#include "support/TextUnits.h"

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
            entries[c].length = static_cast<std::uint16_t>(key.size());
        }
    }

    static std::u16string wholeKey(std::u16string_view text, CaseSensitivity sensitivity) {
        std::u16string key = decomposed(text);
        return sensitivity == CaseSensitivity::sensitive ? key : decomposed(caseFolded(key));
    }

    void append(char16_t c, std::u16string& into) const {
        into.append(entries[c].units.data(), entries[c].length);
    }

  private:
    struct Entry {
        std::array<char16_t, 3> units{};
        std::uint16_t length = 0;
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

} // namespace

std::u16string searchKey(std::u16string_view text, CaseSensitivity sensitivity) {
    return KeyTable::wholeKey(text, sensitivity);
}

void appendSequenceKey(std::u16string_view sequence, CaseSensitivity sensitivity, std::u16string& into) {
    const char16_t unit = sequence[0];
    if (sequence.size() > 1)
        into += KeyTable::wholeKey(sequence, sensitivity);
    else if (unit < 0x80)
        into += sensitivity == CaseSensitivity::sensitive ? unit : units::asciiLower(unit);
    else if (isHan(unit))
        into += unit;
    else if (unit < KeyTable::end)
        keyTable(sensitivity).append(unit, into);
    else
        into += KeyTable::wholeKey(sequence, sensitivity);
}

} // namespace tavrin::text
