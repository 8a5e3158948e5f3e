#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/RenameActionHelper.h"
#include "support/text/TextSearch.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 2> startModes{{{0, "a position"}, {1, "a text"}}};
constexpr std::array<ParameterChoice, 3> endModes{
    {{0, "a position"}, {1, "a text"}, {2, "a number of characters"}}};
constexpr std::array<ParameterChoice, 2> sidesOfText{{{0, "before it"}, {1, "after it"}}};
constexpr std::array<ParameterChoice, 2> directions{{{0, "towards the end"}, {1, "towards the start"}}};
constexpr std::int32_t widestPosition = 9999;

enum class EndMode : std::int32_t { position = 0, occurence = 1, numberOfCharacters = 2 };

/// Cuts one stretch out of the name, whose two ends are told separately. What can't be resolved leaves the
/// name as it is; nothing is clamped.
class RemoveAnywhere final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Remove anywhere";

    RemoveAnywhere() {
        addParametersOfStart();
        addParametersOfEnd();
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"fromPosition", 4}, {"toMode", 2}, {"removeNumberOfCharacters", 1}},
                 u"2024-06-14.jpg",
                 u"202406-14.jpg"},
                {{{"fromMode", 1},
                  {"fromSearchTerm", u" ("},
                  {"toMode", 1},
                  {"toSearchTerm", u")"},
                  {"toWhichEndOfOccurence", 1}},
                 u"letter (copy).txt",
                 u"letter.txt"}};
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        fromSearch = TextSearch(paramFromSearchTerm, RenameActionHelper::sensitivity(paramFromOccurenceMask));
        toSearch = TextSearch(paramToSearchTerm, RenameActionHelper::sensitivity(paramToOccurenceMask));
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        auto start = findFromPosition(fragment);
        auto end = findToPosition(fragment, start);
        if (start > end && toMode() == EndMode::numberOfCharacters &&
            paramRemoveNumberOfCharactersFromWhichEnd == 1)
            std::swap(start, end);
        if (start < 0 || start > end || end > static_cast<std::int64_t>(fragment.size()))
            result += fragment;
        else
            result.append(fragment, 0, static_cast<std::size_t>(start))
                .append(fragment, static_cast<std::size_t>(end));
    }

  private:
    void addParametersOfStart();
    void addParametersOfEnd();

    [[nodiscard]] EndMode toMode() const { return static_cast<EndMode>(paramToMode); }

    // Positions have 64 bits, so that sums of the 32 bits of parameters stay what they are: out of range.

    [[nodiscard]] static std::int64_t position(std::u16string_view text, std::int32_t number,
                                               std::int32_t whichEnd) {
        return whichEnd == 0 ? number : static_cast<std::int64_t>(text.size()) - number;
    }

    [[nodiscard]] std::int64_t findFromPosition(std::u16string_view text) const {
        if (paramFromMode == 0)
            return position(text, paramFromPositionNumber, paramFromWhichEndOfPosition);
        if (paramFromMode != 1)
            return -1;
        const auto location =
            RenameActionHelper::findInsertionPointIn(text, fromSearch, paramFromWhichOccurence);
        if (location < 0 || paramFromWhichEndOfOccurence == 0)
            return location;
        return location + static_cast<std::int64_t>(paramFromSearchTerm.size());
    }

    [[nodiscard]] std::int64_t findToPosition(std::u16string_view text, std::int64_t from) const {
        switch (toMode()) {
        case EndMode::position:
            return position(text, paramToPositionNumber, paramToWhichEndOfPosition);
        case EndMode::occurence: {
            const auto location =
                RenameActionHelper::findInsertionPointIn(text, toSearch, paramToOccurenceNumber);
            // Behind a text that isn't found lies the position one short of its length: meant to be so.
            return paramToWhichEndOfOccurence == 0
                       ? location
                       : location + static_cast<std::int64_t>(paramToSearchTerm.size());
        }
        case EndMode::numberOfCharacters:
            return paramRemoveNumberOfCharactersFromWhichEnd == 0 ? from + paramRemoveNumberOfCharacters
                                                                  : from - paramRemoveNumberOfCharacters;
        }
        return -1;
    }

    std::int32_t paramFromMode = 0;
    std::int32_t paramFromPositionNumber = 0;
    std::int32_t paramFromWhichEndOfPosition = 0;
    std::int32_t paramFromWhichOccurence = 0;
    std::int32_t paramFromWhichEndOfOccurence = 0;
    std::int32_t paramFromOccurenceMask = 1;
    std::u16string paramFromSearchTerm;
    std::int32_t paramToMode = 0;
    std::int32_t paramToPositionNumber = 0;
    std::int32_t paramToWhichEndOfPosition = 0;
    std::int32_t paramToOccurenceNumber = 0;
    std::int32_t paramToWhichEndOfOccurence = 0;
    std::int32_t paramToOccurenceMask = 1;
    std::u16string paramToSearchTerm;
    std::int32_t paramRemoveNumberOfCharacters = 0;
    std::int32_t paramRemoveNumberOfCharactersFromWhichEnd = 0;
    TextSearch fromSearch;
    TextSearch toSearch;
};

void RemoveAnywhere::addParametersOfStart() {
    addParameter(choiceParameter("fromMode", "Start at", startModes, 0, 0).under("From"), paramFromMode);
    addParameter(
        numberParameter("fromPosition", "Position", 0, 0).between(0, widestPosition).shownWhen("fromMode", 0),
        paramFromPositionNumber);
    addParameter(choiceParameter("fromWhichEndOfPosition", "Counted", positionModeChoices(), 0, 0)
                     .beside("fromPosition")
                     .shownWhen("fromMode", 0),
                 paramFromWhichEndOfPosition);
    addParameter(textParameter("fromSearchTerm", "Text").shownWhen("fromMode", 1), paramFromSearchTerm);
    addParameter(choiceParameter("fromWhichOccurence", "Which one", occurrenceChoices(), 0, 0)
                     .shownWhen("fromMode", 1),
                 paramFromWhichOccurence);
    addParameter(
        choiceParameter("fromWhichEndOfOccurence", "Begin", sidesOfText, 0, 0).shownWhen("fromMode", 1),
        paramFromWhichEndOfOccurence);
    addParameter(checkboxParameter("fromIgnoreCase", "Ignore case", 1, 1).shownWhen("fromMode", 1),
                 paramFromOccurenceMask);
}

void RemoveAnywhere::addParametersOfEnd() {
    addParameter(choiceParameter("toMode", "End at", endModes, 0, 0).under("To"), paramToMode);
    addParameter(numberParameter("toPositionNumber", "Position", 0, 0)
                     .between(0, widestPosition)
                     .shownWhen("toMode", 0),
                 paramToPositionNumber);
    addParameter(choiceParameter("toWhichEndOfPosition", "Counted", positionModeChoices(), 0, 0)
                     .beside("toPositionNumber")
                     .shownWhen("toMode", 0),
                 paramToWhichEndOfPosition);
    addParameter(textParameter("toSearchTerm", "Text").shownWhen("toMode", 1), paramToSearchTerm);
    addParameter(
        choiceParameter("toOccurenceNumber", "Which one", occurrenceChoices(), 0, 0).shownWhen("toMode", 1),
        paramToOccurenceNumber);
    addParameter(choiceParameter("toWhichEndOfOccurence", "End", sidesOfText, 0, 0).shownWhen("toMode", 1),
                 paramToWhichEndOfOccurence);
    addParameter(checkboxParameter("toIgnoreCase", "Ignore case", 1, 1).shownWhen("toMode", 1),
                 paramToOccurenceMask);
    addParameter(numberParameter("removeNumberOfCharacters", "Characters", 0, 0)
                     .between(0, widestPosition)
                     .shownWhen("toMode", 2),
                 paramRemoveNumberOfCharacters);
    addParameter(choiceParameter("removeNumberOfCharactersFromWhichEnd", "Direction", directions, 0, 0)
                     .beside("removeNumberOfCharacters")
                     .shownWhen("toMode", 2),
                 paramRemoveNumberOfCharactersFromWhichEnd);
}

constexpr ActionEntry entries[]{entryFor<RemoveAnywhere>()};

} // namespace

std::span<const ActionEntry> removeAnywhereActions() { return entries; }

} // namespace tavrin
