#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/cases/UnitCase.h"
#include "support/text/Text.h"

#include <array>

namespace tavrin {

namespace {

/// What starts a new word; the values are those of the parameter.
enum class MatchingMode : std::int32_t { blanks = 0, blanksAndPunctuation = 1, anythingButLetters = 2 };

constexpr std::array<ParameterChoice, 3> matchingModes{{
    {0, "blanks"},
    {1, "blanks and punctuation"},
    {2, "anything but letters"},
}};

enum class UnitKind : std::uint8_t {
    letter,
    wordBoundary,
    digit, ///< begins a word like a letter: "2nd"
    other, ///< says nothing about words
};

/// Capitalizes the first letter of each word, code unit by code unit.
class ProperCaseAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Make propercase";

    ProperCaseAction() {
        addParameter(choiceParameter("matchingMode", "A word begins after", matchingModes, 0, 0),
                     paramMatchingMode);
        addParameter(checkboxParameter("forceToLowercase", "Make the other letters small", 1, 0),
                     paramForceToLowerCase);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"it's a 2nd try.txt", u"It's A 2nd Try.txt"},
                {{{"matchingMode", 1}}, u"rock-and-roll.mp3", u"Rock-And-Roll.mp3"}};
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        for (std::size_t unit = 0; unit < kindOfAscii.size(); ++unit)
            kindOfAscii[unit] = classify(static_cast<char16_t>(unit));
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        bool startsWord = true;
        for (const char16_t unit : fragment) {
            const auto kind = unit < kindOfAscii.size() ? kindOfAscii[unit] : classify(unit);
            if (kind == UnitKind::letter)
                appendLetter(unit, startsWord, result);
            else
                result += unit;
            if (kind != UnitKind::other)
                startsWord = kind == UnitKind::wordBoundary;
        }
    }

  private:
    void appendLetter(char16_t unit, bool startsWord, std::u16string& result) const {
        if (startsWord)
            appendUppercasedUnit(unit, result);
        else if (paramForceToLowerCase == 1)
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
    std::array<UnitKind, 128> kindOfAscii{};
};

constexpr ActionEntry entries[]{entryFor<ProperCaseAction>()};

} // namespace

std::span<const ActionEntry> properCaseActions() { return entries; }

} // namespace tavrin
