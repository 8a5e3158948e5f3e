#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/TextPlacement.h"
#include "support/text/TextSearch.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 2> startModes{{{0, "a position"}, {1, "a text"}}};
constexpr std::array<ParameterChoice, 3> endModes{
    {{0, "a position"}, {1, "a text"}, {2, "a number of characters"}}};
constexpr std::array<ParameterChoice, 2> sidesOfText{{{0, "before it", "before"}, {1, "after it", "after"}}};
constexpr std::array<ParameterChoice, 2> directions{{{0, "towards the end"}, {1, "towards the start"}}};
constexpr std::int32_t widestPosition = 9999;

/// The keys of the parameters of an end, and how they are called where the two ends differ.
struct EndTable {
    std::string_view heading, word, label, sideLabel;
    std::span<const ParameterChoice> modes;
    std::string_view mode, position, whichEnd, searchTerm, occurrence, side, ignoreCase;
    /// Behind a text that isn't found lies the position one short of its length: meant to be so for the end.
    bool takesMissingText;
    bool mayBeLeftOut; ///< in a recipe
};

constexpr EndTable startTable{"From",
                              "from",
                              "Start at",
                              "Begin",
                              startModes,
                              "fromMode",
                              "fromPosition",
                              "fromWhichEndOfPosition",
                              "fromSearchTerm",
                              "fromWhichOccurence",
                              "fromWhichEndOfOccurence",
                              "fromIgnoreCase",
                              false,
                              true};
constexpr EndTable endTable{"To",
                            "to",
                            "End at",
                            "End",
                            endModes,
                            "toMode",
                            "toPositionNumber",
                            "toWhichEndOfPosition",
                            "toSearchTerm",
                            "toOccurenceNumber",
                            "toWhichEndOfOccurence",
                            "toIgnoreCase",
                            true,
                            false};

/// One end of the stretch: a position, or a side of a text.
class StretchEnd {
  public:
    static constexpr std::int32_t atPosition = 0;
    static constexpr std::int32_t atText = 1;

    explicit StretchEnd(const EndTable& keysAndLabels) : table(keysAndLabels) {}

    void addParametersTo(BaseAction& action) {
        action.addParameter(choiceParameter(table.mode, table.label, table.modes, 0).under(table.heading),
                            mode);
        const auto forPosition = [&](const ParameterDescription& row, std::int32_t& field) {
            action.addParameter(row.shownWhen(table.mode, atPosition), field);
        };
        forPosition(phrase(numberParameter(table.position, "Position", 0)
                               .between(0, widestPosition)
                               .signedBy(table.whichEnd)),
                    number);
        forPosition(
            choiceParameter(table.whichEnd, "Counted", positionModeChoices(), 0).beside(table.position),
            whichEnd);
        const auto forText = [&](const ParameterDescription& row, auto& field) {
            action.addParameter(row.shownWhen(table.mode, atText), field);
        };
        forText(phrase(textParameter(table.searchTerm, "Text").sidedBy(table.side)), searchTerm);
        forText(
            choiceParameter(table.occurrence, "Which one", occurrenceChoices(), 0).alone().behind(table.word),
            occurrence);
        forText(choiceParameter(table.side, table.sideLabel, sidesOfText, 0), side);
        forText(checkboxParameter(table.ignoreCase, "Ignore case", 1).alone("case").behind(table.word),
                ignoreCase);
    }

    void prepareParameters() { search = TextSearch(searchTerm, caseSensitivity(ignoreCase)); }

    [[nodiscard]] std::int32_t modeInUse() const { return mode; }

    /// Where it lies, negative for nowhere. Positions have 64 bits, so that sums of the 32 bits of parameters
    /// stay what they are: out of range.
    [[nodiscard]] std::int64_t locationIn(std::u16string_view text) const {
        if (mode == atPosition)
            return whichEnd == 0 ? number : static_cast<std::int64_t>(text.size()) - number;
        if (mode != atText)
            return -1;
        const std::int64_t location = findInsertionPointIn(text, search, occurrence);
        if (side == 0 || (location < 0 && !table.takesMissingText))
            return location;
        return location + static_cast<std::int64_t>(searchTerm.size());
    }

  private:
    [[nodiscard]] ParameterDescription phrase(const ParameterDescription& row) const {
        return table.mayBeLeftOut ? row.phrase(table.word).orLeftOut() : row.phrase(table.word);
    }

    const EndTable& table;
    std::int32_t mode = 0;
    std::int32_t number = 0;
    std::int32_t whichEnd = 0;
    std::u16string searchTerm;
    std::int32_t occurrence = 0;
    std::int32_t side = 0;
    std::int32_t ignoreCase = 1;
    TextSearch search;
};

/// Cuts one stretch out of the name, whose two ends are told separately. What can't be resolved leaves the
/// name as it is; nothing is clamped.
class RemoveAnywhere final : public FragmentAction {
  public:
    RemoveAnywhere() {
        from.addParametersTo(*this);
        to.addParametersTo(*this);
        addParameter(numberParameter("removeNumberOfCharacters", "Characters", 0)
                         .between(0, widestPosition)
                         .shownWhen(endTable.mode, byLength)
                         .phrase("for")
                         .signedBy("removeNumberOfCharactersFromWhichEnd"),
                     length);
        addParameter(choiceParameter("removeNumberOfCharactersFromWhichEnd", "Direction", directions, 0)
                         .beside("removeNumberOfCharacters")
                         .shownWhen(endTable.mode, byLength),
                     direction);
    }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        from.prepareParameters();
        to.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const bool hasLength = to.modeInUse() == byLength;
        auto start = from.locationIn(fragment);
        auto end = !hasLength ? to.locationIn(fragment) : direction == 0 ? start + length : start - length;
        if (start > end && hasLength && direction == 1)
            std::swap(start, end);
        if (start < 0 || start > end || end > static_cast<std::int64_t>(fragment.size()))
            result += fragment;
        else
            result.append(fragment, 0, static_cast<std::size_t>(start))
                .append(fragment, static_cast<std::size_t>(end));
    }

  private:
    static constexpr std::int32_t byLength = 2; ///< the mode of the end that counts from the start

    StretchEnd from{startTable};
    StretchEnd to{endTable};
    std::int32_t length = 0;
    std::int32_t direction = 0;
};

} // namespace

std::vector<ActionEntry> removeAnywhereActions() {
    return {
        {"Remove anywhere",
         "Remove a stretch",
         {"cut"},
         ActionCategory::remove,
         newAction<RemoveAnywhere>,
         {{{{"fromPosition", 4}, {"toMode", 2}, {"removeNumberOfCharacters", 1}},
           u"2024-06-14.jpg",
           u"202406-14.jpg"},
          {{{"fromMode", 1},
            {"fromSearchTerm", u" ("},
            {"toMode", 1},
            {"toSearchTerm", u")"},
            {"toWhichEndOfOccurence", 1}},
           u"letter (copy).txt",
           u"letter.txt"}}},
    };
}

} // namespace tavrin
