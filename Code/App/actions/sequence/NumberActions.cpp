#include "actions/ActionFamilies.h"
#include "actions/PaddedNumber.h"
#include "actions/sequence/SequenceAction.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace tavrin {

namespace {

/// Gives an item a number by its place in the run, with zeros on the left up to the padding, the sign within
/// it, or blanks on the right for a negative padding. The arithmetic wraps round at 32 bits.
class SortNumberBasedAction : public SequenceAction {
  public:
    explicit SortNumberBasedAction(Place place) : SequenceAction(place) {
        addParameter(numberParameter("startValue", "Start at", 1).option("from"), paramStartValue);
        addParameter(numberParameter("stepValue", "Step", 1).option("step"), paramStepValue);
        addWidthParameters(numberParameter("padding", "Digits", 2).between(0, 20).option("digits"));
        addPlacementParameters(u"Image_");
    }
    [[nodiscard]] std::optional<std::u16string> sequenceValue(std::int32_t rank,
                                                              std::int32_t lastRank) const override {
        std::u16string number;
        appendPaddedNumber(valueAfter(static_cast<std::uint32_t>(rank) - 1U), widthFor(lastRank), number);
        return number;
    }

  protected:
    [[nodiscard]] const std::u16string* textFor(const InputContext& input) override {
        formatted.clear();
        appendPaddedNumber(value(input), width(), formatted);
        return &formatted;
    }

    /// The widest is the first or the last, unless the numbers wrap round on their way.
    [[nodiscard]] std::int32_t widestValue(std::int32_t lastRank) const override {
        using Number = std::numeric_limits<std::int32_t>;
        const std::int64_t last = paramStartValue + std::int64_t{paramStepValue} * std::max(lastRank - 1, 0);
        if (last < Number::min() || last > Number::max())
            return widthOf(Number::min());
        return std::max(widthOf(paramStartValue), widthOf(static_cast<std::int32_t>(last)));
    }

    /// The number of the item.
    [[nodiscard]] std::int32_t value(const InputContext& input) const {
        return valueAfter(static_cast<std::uint32_t>(getSortIndex(input)) - 1U);
    }
    std::u16string formatted;

  private:
    [[nodiscard]] static std::int32_t widthOf(std::int32_t number) {
        std::u16string digits;
        appendPaddedNumber(number, 0, digits);
        return static_cast<std::int32_t>(digits.size());
    }

    /// The number of the item that comes after so many others.
    [[nodiscard]] std::int32_t valueAfter(std::uint32_t steps) const {
        return static_cast<std::int32_t>(steps * static_cast<std::uint32_t>(paramStepValue) +
                                         static_cast<std::uint32_t>(paramStartValue));
    }

    std::int32_t paramStartValue = 1;
    std::int32_t paramStepValue = 1;
};

constexpr std::int32_t largestRomanNumeral = 4000;

constexpr std::array<std::pair<std::int32_t, std::u16string_view>, 13> romanNumerals{{
    {1000, u"M"},
    {900, u"CM"},
    {500, u"D"},
    {400, u"CD"},
    {100, u"C"},
    {90, u"XC"},
    {50, u"L"},
    {40, u"XL"},
    {10, u"X"},
    {9, u"IX"},
    {5, u"V"},
    {4, u"IV"},
    {1, u"I"},
}};

/// The same in roman numerals: none from 4001 on, empty for zero and negative numbers.
class RomanNumeralBasedAction final : public SortNumberBasedAction {
  public:
    explicit RomanNumeralBasedAction(Place place) : SortNumberBasedAction(place) {
        addParameter(numberParameter("padding", "Not used", 2).unused());
        retireParameter("paddingMode");
    }
    [[nodiscard]] std::optional<std::u16string> sequenceValue(std::int32_t, std::int32_t) const override {
        return std::nullopt;
    }

  protected:
    [[nodiscard]] const std::u16string* textFor(const InputContext& input) override {
        return romanNumeral(value(input));
    }

  private:
    const std::u16string* romanNumeral(std::int32_t number) {
        if (number > largestRomanNumeral)
            return nullptr;
        formatted.clear();
        for (const auto& [value, text] : romanNumerals)
            for (; number >= value; number -= value)
                formatted += text;
        return &formatted;
    }
};

std::vector<ActionEntry> arabicNumberActions() {
    constexpr auto category = ActionCategory::number;
    return {
        {"Produce numbered list",
         "Number as new name",
         {"number"},
         category,
         newAction<SortNumberBasedAction, Place::wholeName>,
         {{{}, u"DSC_0042.jpg", u"Image_01.jpg"},
          {{{"prefix", u"Trip "}, {"padding", 3}, {"startValue", 10}}, u"DSC_0042.jpg", u"Trip 010.jpg"}}},
        {"Add number to start",
         "Add number to start",
         {"number", Place::start},
         category,
         newAction<SortNumberBasedAction, Place::start>,
         {{{{"padding", 3}}, u"photo.jpg", u"001photo.jpg"}}},
        {"Add number to end",
         "Add number to end",
         {"number", Place::end},
         category,
         newAction<SortNumberBasedAction, Place::end>,
         {{{}, u"photo.jpg", u"photo01.jpg"}}},
        {"Insert number at position",
         "Insert number at position",
         {"number", Place::position},
         category,
         newAction<SortNumberBasedAction, Place::position>,
         {{{{"position", 4}}, u"scan page.pdf", u"scan01 page.pdf"}}},
        {"Insert number in front of existing text",
         "Insert number before text",
         {"number", Place::beforeText},
         category,
         newAction<SortNumberBasedAction, Place::beforeText>,
         {{{{"searchTerm", u" of"}}, u"page of report.pdf", u"page01 of report.pdf"}}},
        {"Insert number after existing text",
         "Insert number after text",
         {"number", Place::afterText},
         category,
         newAction<SortNumberBasedAction, Place::afterText>,
         {{{{"searchTerm", u"Page "}}, u"page of report.pdf", u"page 01of report.pdf"}}},
    };
}

std::vector<ActionEntry> romanNumeralActions() {
    constexpr auto category = ActionCategory::romanNumerals;
    return {
        {"Produce roman numeral list",
         "Roman numeral as new name",
         {"roman"},
         category,
         newAction<RomanNumeralBasedAction, Place::wholeName>,
         {{{{"prefix", u"Chapter "}, {"startValue", 14}}, u"draft.txt", u"Chapter XIV.txt"}}},
        {"Add roman numeral to start",
         "Add roman numeral to start",
         {"roman", Place::start},
         category,
         newAction<RomanNumeralBasedAction, Place::start>,
         {{{{"startValue", 4}}, u" Allegro.flac", u"IV Allegro.flac"}}},
        {"Add roman numeral to end",
         "Add roman numeral to end",
         {"roman", Place::end},
         category,
         newAction<RomanNumeralBasedAction, Place::end>,
         {{{{"startValue", 2}}, u"Part .txt", u"Part II.txt"}}},
        {"Insert roman numeral at position",
         "Insert roman numeral at position",
         {"roman", Place::position},
         category,
         newAction<RomanNumeralBasedAction, Place::position>,
         {{{{"position", 4}, {"startValue", 9}}, u"act - end.txt", u"act IX- end.txt"}}},
        {"Insert roman numeral in front of existing text",
         "Insert roman numeral before text",
         {"roman", Place::beforeText},
         category,
         newAction<RomanNumeralBasedAction, Place::beforeText>,
         {{{{"searchTerm", u". "}, {"startValue", 3}}, u"Act. The end.txt", u"ActIII. The end.txt"}}},
        {"Insert roman numeral after existing text",
         "Insert roman numeral after text",
         {"roman", Place::afterText},
         category,
         newAction<RomanNumeralBasedAction, Place::afterText>,
         {{{{"searchTerm", u"Louis "}, {"startValue", 14}},
           u"Louis of France.txt",
           u"Louis XIVof France.txt"}}},
    };
}

} // namespace

std::vector<ActionEntry> numberActions() {
    auto all = arabicNumberActions();
    for (auto& entry : romanNumeralActions())
        all.push_back(std::move(entry));
    return all;
}

} // namespace tavrin
