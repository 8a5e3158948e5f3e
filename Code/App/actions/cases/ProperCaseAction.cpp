#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/cases/UnitCase.h"
#include "support/Text.h"

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
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        bool startsWord = true;
        for (const char16_t unit : fragment) {
            if (text::isLetter(unit)) {
                appendLetter(unit, startsWord, result);
                startsWord = false;
                continue;
            }
            result += unit;
            if (isWordBoundary(unit))
                startsWord = true;
            else if (text::isDecimalDigit(unit)) // "2nd" is a word that begins with its digit
                startsWord = false;
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
};

constexpr ActionEntry entries[]{entryFor<ProperCaseAction>()};

} // namespace

std::span<const ActionEntry> properCaseActions() { return entries; }

} // namespace tavrin
