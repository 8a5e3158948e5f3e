#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <array>

namespace tavrin {

namespace {

void appendUppercase(std::u16string_view fragment, std::u16string& result) {
    result += text::uppercased(fragment);
}

void appendLowercase(std::u16string_view fragment, std::u16string& result) {
    result += text::lowercased(fragment);
}

void appendWithoutAccents(std::u16string_view fragment, std::u16string& result) {
    result += text::withoutDiacritics(fragment);
}

// One code unit by itself: full mapping, so one unit may become several; half a surrogate pair stays.

inline void appendUppercasedUnit(char16_t unit, std::u16string& result) {
    if (unit < 0x80)
        result += text::units::asciiUpper(unit);
    else
        result += text::uppercased(std::u16string_view(&unit, 1));
}

inline void appendLowercasedUnit(char16_t unit, std::u16string& result) {
    if (unit < 0x80)
        result += text::units::asciiLower(unit);
    else
        result += text::lowercased(std::u16string_view(&unit, 1));
}

ParameterDescription forceToLowercase() {
    return checkboxParameter("forceToLowercase", "Make the other letters small", 1).mark("keep-capitals");
}

/// Capitalizes the very first code unit, whatever it is.
class SentenceCaseAction final : public FragmentAction {
  public:
    SentenceCaseAction() { addParameter(forceToLowercase(), paramForceToLowerCase); }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        if (fragment.empty())
            return;
        appendUppercasedUnit(fragment.front(), result);
        if (paramForceToLowerCase != 1) {
            result.append(fragment, 1);
            return;
        }
        for (const char16_t unit : fragment.substr(1))
            appendLowercasedUnit(unit, result);
    }

  private:
    std::int32_t paramForceToLowerCase = 0;
};

/// What starts a new word; the values are those of the parameter.
enum class MatchingMode : std::int32_t { blanks = 0, blanksAndPunctuation = 1, anythingButLetters = 2 };

constexpr std::array<ParameterChoice, 3> matchingModes{{
    {0, "blanks", "blanks"},
    {1, "blanks and punctuation", "punctuation"},
    {2, "anything but letters", "non-letters"},
}};

enum class UnitKind : std::uint8_t {
    letter,
    wordBoundary,
    digit, ///< begins a word like a letter: "2nd"
    other, ///< says nothing about words
};

/// Capitalizes the first letter of each word, code unit by code unit.
class ProperCaseAction final : public FragmentAction {
  public:
    ProperCaseAction() {
        addParameter(
            choiceParameter("matchingMode", "A word begins after", matchingModes, 0).option("breaks"),
            paramMatchingMode);
        addParameter(forceToLowercase(), paramForceToLowerCase);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        for (std::size_t unit = 0; unit < ascii.size(); ++unit) {
            ascii[unit].kind = classify(static_cast<char16_t>(unit));
            for (const bool startsWord : {false, true}) {
                std::u16string written;
                append(static_cast<char16_t>(unit), ascii[unit].kind, startsWord, written);
                ascii[unit].written[startsWord] = written.front();
            }
        }
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        bool startsWord = true;
        for (const char16_t unit : fragment) {
            const bool isAscii = unit < ascii.size();
            const UnitKind kind = isAscii ? ascii[unit].kind : classify(unit);
            if (isAscii)
                result += ascii[unit].written[startsWord];
            else
                append(unit, kind, startsWord, result);
            if (kind != UnitKind::other)
                startsWord = kind == UnitKind::wordBoundary;
        }
    }

  private:
    /// What the parameters make of a character of ASCII, within a word and at its start.
    struct Ascii {
        UnitKind kind = UnitKind::other;
        std::array<char16_t, 2> written{};
    };

    void append(char16_t unit, UnitKind kind, bool startsWord, std::u16string& result) const {
        if (kind == UnitKind::letter && startsWord)
            appendUppercasedUnit(unit, result);
        else if (kind == UnitKind::letter && paramForceToLowerCase == 1)
            appendLowercasedUnit(unit, result);
        else
            result += unit;
    }

    [[nodiscard]] UnitKind classify(char16_t unit) const {
        if (text::isLetter(unit))
            return UnitKind::letter;
        if (isWordBoundary(unit))
            return UnitKind::wordBoundary;
        return text::isDecimalDigit(unit) ? UnitKind::digit : UnitKind::other;
    }

    /// For a unit that is no letter.
    [[nodiscard]] bool isWordBoundary(char16_t unit) const {
        switch (static_cast<MatchingMode>(paramMatchingMode)) {
        case MatchingMode::blanks:
            return text::isWhitespaceOrNewline(unit);
        case MatchingMode::blanksAndPunctuation:
            return text::isWhitespaceOrNewline(unit) || text::isPunctuation(unit);
        case MatchingMode::anythingButLetters:
            return true;
        }
        return false;
    }

    std::int32_t paramMatchingMode = 0;
    std::int32_t paramForceToLowerCase = 0;
    std::array<Ascii, 128> ascii{};
};

} // namespace

std::vector<ActionEntry> caseActions() {
    constexpr auto category = ActionCategory::letterCase;
    return {
        {"Make lowercase",
         "Make lowercase",
         {"lower"},
         category,
         newAction<PlainAction<appendLowercase>>,
         {{{{"fragmentSelection", 0}}, u"IMG_4021.JPG", u"img_4021.jpg"}}},
        {"Make uppercase",
         "Make uppercase",
         {"upper"},
         category,
         newAction<PlainAction<appendUppercase>>,
         {{{}, u"straße.txt", u"STRASSE.txt"}}},
        {"Fold String",
         "Remove accents",
         {"unaccent"},
         category,
         newAction<PlainAction<appendWithoutAccents>>,
         {{{}, u"Crème Brûlée.txt", u"Creme Brulee.txt"}},
         u"Removes accents and other marks from letters."},
        {"Make sentencecase",
         "Sentence case",
         {"sentence"},
         category,
         newAction<SentenceCaseAction>,
         {{{}, u"HELLO WORLD.txt", u"Hello world.txt"}}},
        {"Make propercase",
         "Title case",
         {"title"},
         category,
         newAction<ProperCaseAction>,
         {{{}, u"it's a 2nd try.txt", u"It's A 2nd Try.txt"},
          {{{"matchingMode", 1}}, u"rock-and-roll.mp3", u"Rock-And-Roll.mp3"}}},
    };
}

} // namespace tavrin
