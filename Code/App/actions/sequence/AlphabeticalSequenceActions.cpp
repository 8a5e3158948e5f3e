#include "actions/ActionFamilies.h"
#include "actions/sequence/SequenceAction.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::int64_t base = 26;
constexpr std::int32_t widest = 1024;
constexpr std::size_t longestStartValue = 6;

/// Small letters count as capitals, other characters as "A" or "Z"; an empty text is 0.
std::int64_t uAlphaToNum(std::u16string_view letters) {
    std::uint64_t value = 0;
    for (const char16_t unit : text::uppercased(letters))
        value = value * base + static_cast<std::uint64_t>(std::clamp(unit - u'A', 0, 25));
    return static_cast<std::int64_t>(value);
}

/// Puts in the letters of a value, with "A"s on the left up to the width; "A" for negative ones.
void uNumToAlpha(std::int64_t value, std::size_t width, std::u16string& letters) {
    letters.clear();
    value = std::max<std::int64_t>(value, 0);
    do {
        letters += static_cast<char16_t>(u'A' + value % base);
        value /= base;
    } while (value > 0);
    letters.resize(std::max(letters.size(), width), u'A');
    std::reverse(letters.begin(), letters.end());
}

/// Gives an item letters by its place in the run: numbers with base 26 whose digit zero is "A", so that "BA"
/// follows "Z". The arithmetic wraps round at 64 bits.
class AlphabeticalListBasedAction final : public SequenceAction {
  public:
    explicit AlphabeticalListBasedAction(Place place) : SequenceAction(place) {
        addParameter(textParameter("startValue", "Start at", u"A").option("from"), paramStartValue);
        addParameter(numberParameter("stepValue", "Step", 1).option("step"), paramStepValue);
        addWidthParameters(numberParameter("padding", "Letters", 1).between(0, 20).option("width"));
        addPlacementParameters();
    }
    [[nodiscard]] std::optional<std::u16string> sequenceValue(std::int32_t rank,
                                                              std::int32_t lastRank) const override {
        std::u16string letters;
        setLettersAfter(rank - 1, widthFor(lastRank), letters);
        return letters;
    }
    /// A start value comes back in its normal form: capital letters, of the first six code units, without
    /// leading "A"s.
    [[nodiscard]] PropertyValue validatedValue(const PropertyValue& value,
                                               std::string_view key) const override {
        return key == "startValue" ? validateStartValue(textValue(value))
                                   : SequenceAction::validatedValue(value, key);
    }

  protected:
    void prepareParameters() override {
        SequenceAction::prepareParameters();
        startNumber = uAlphaToNum(paramStartValue);
    }

    [[nodiscard]] const std::u16string* textFor(const InputContext& input) override {
        setLettersAfter(std::int64_t{getSortIndex(input)} - 1, width(), formatted);
        return &formatted;
    }

    [[nodiscard]] std::int32_t widestValue(std::int32_t lastRank) const override {
        std::size_t width = 0;
        std::u16string letters;
        for (const std::int32_t rank : {1, std::max(lastRank, 1)}) {
            setLettersAfter(rank - 1, 0, letters);
            width = std::max(width, letters.size());
        }
        return static_cast<std::int32_t>(width);
    }

  private:
    /// Puts in the letters of the item that comes after so many others.
    void setLettersAfter(std::int64_t steps, std::int32_t width, std::u16string& letters) const {
        const std::int64_t distance = steps * paramStepValue;
        const auto sum = static_cast<std::uint64_t>(startNumber) + static_cast<std::uint64_t>(distance);
        const auto atLeast = static_cast<std::size_t>(std::clamp(width, 0, widest));
        uNumToAlpha(static_cast<std::int64_t>(sum), atLeast, letters);
    }

    /// Checks the start value before it is stored.
    [[nodiscard]] static std::u16string validateStartValue(std::u16string_view proposed) {
        std::u16string letters;
        uNumToAlpha(uAlphaToNum(text::uppercased(proposed).substr(0, longestStartValue)), 0, letters);
        return letters;
    }

    std::u16string paramStartValue;
    std::int32_t paramStepValue = 0;
    std::int64_t startNumber = 0; ///< what `paramStartValue` stands for
    std::u16string formatted;
};

} // namespace

std::vector<ActionEntry> alphabeticalSequenceActions() {
    constexpr auto category = ActionCategory::letters;
    return {
        {"Produce alphabetical list",
         "Letters as new name",
         {"letters"},
         category,
         newAction<AlphabeticalListBasedAction, Place::wholeName>,
         {{{{"prefix", u"Appendix "}, {"startValue", u"C"}}, u"tables.pdf", u"Appendix C.pdf"}}},
        {"Add alphabetical sequence to start",
         "Add letters to start",
         {"letters", Place::start},
         category,
         newAction<AlphabeticalListBasedAction, Place::start>,
         {{{{"padding", 2}}, u" plan.txt", u"AA plan.txt"}}},
        {"Add alphabetical sequence to end",
         "Add letters to end",
         {"letters", Place::end},
         category,
         newAction<AlphabeticalListBasedAction, Place::end>,
         {{{{"startValue", u"BA"}}, u"plan-.txt", u"plan-BA.txt"}}},
        {"Insert alphabetical sequence at position",
         "Insert letters at position",
         {"letters", Place::position},
         category,
         newAction<AlphabeticalListBasedAction, Place::position>,
         {{{{"position", 2}}, u"12 plan.txt", u"12A plan.txt"}}},
        {"Insert alphabetical sequence in front of existing text",
         "Insert letters before text",
         {"letters", Place::beforeText},
         category,
         newAction<AlphabeticalListBasedAction, Place::beforeText>,
         {{{{"searchTerm", u" plan"}}, u"12 plan.txt", u"12A plan.txt"}}},
        {"Insert alphabetical sequence after existing text",
         "Insert letters after text",
         {"letters", Place::afterText},
         category,
         newAction<AlphabeticalListBasedAction, Place::afterText>,
         {{{{"searchTerm", u"Plan"}}, u"plan 12.txt", u"planA 12.txt"}}},
    };
}

} // namespace tavrin
