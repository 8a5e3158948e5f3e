#include "presentation/settings/PanelRows.h"

#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

namespace tavrin::test {

namespace {

std::unique_ptr<BaseRenameAction> makeAction(std::string_view name) {
    const auto entries = allActions();
    const auto entry = std::ranges::find(entries, name, &ActionEntry::name);
    return entry == entries.end() ? nullptr : entry->make();
}

/// Row by row: the keys, then the label of the row, with a heading in front.
std::vector<std::string> writtenRows(const BaseRenameAction& action) {
    std::vector<std::string> rows;
    for (const PanelRow& row : panelRowsOf(action)) {
        std::string text = row.first().head.empty() ? "" : "[" + std::string(row.first().head) + "] ";
        for (const ParameterDescription* parameter : row.parameters)
            text += std::string(parameter->key) + (parameter == row.parameters.back() ? ": " : "+");
        rows.push_back(text + std::string(row.first().label));
    }
    return rows;
}

struct Panel {
    const char* action;
    std::vector<std::string> rows;
};

const std::vector<std::string> order{"[Order] sortingMode: First", "sortingMode2: Then",
                                     "sortEachFolderSeparately: Start again in each folder"};

std::vector<std::string> withOrder(std::vector<std::string> rows) {
    rows.insert(rows.end(), order.begin(), order.end());
    return rows;
}

const std::vector<Panel> panels{
    {"Produce numbered list", withOrder({"prefix: Text in front", "startValue: Start at", "stepValue: Step",
                                         "padding: Digits", "suffix: Text behind"})},
    {"Insert roman numeral at position",
     withOrder({"startValue: Start at", "stepValue: Step", "position+mode: At"})},
    {"Insert alphabetical sequence after existing text",
     withOrder({"startValue: Start at", "stepValue: Step", "padding: Letters", "searchTerm: Text to find",
                "mode: Which one", "ignoreCase: Ignore case"})},
    {"Add date at position",
     {"mode: Date", "datePatternIndex: Date as", "timePatternIndex: Time as", "separatorMode: Order",
      "uppercaseAmPm: AM/PM in capitals", "position+mode2: At"}},
    {"Insert path components after existing text",
     {"levels: Folders", "exceptionMode: If there are fewer", "prefix: Text in front",
      "pathSeparator: Between", "suffix: Text behind", "searchTerm: Text to find", "mode: Which one",
      "ignoreCase: Ignore case"}},
    {"Move text after existing text",
     {"text: Text to move", "ignoreCase: Ignore case", "searchTerm: Text to find", "mode: Which one",
      "ignoreCaseOfInsertionStrategy: Ignore case"}},
    {"Replace characters",
     {"replaceCharacters0+with0+ignoreCase0: Any of", "replaceCharacters1+with1+ignoreCase1: Any of",
      "replaceCharacters2+with2+ignoreCase2: Any of", "replaceCharacters3+with3+ignoreCase3: Any of"}},
    {"Remove anywhere",
     {"[From] fromMode: Start at", "fromPosition+fromWhichEndOfPosition: Position", "fromSearchTerm: Text",
      "fromWhichOccurence: Which one", "fromWhichEndOfOccurence: Begin", "fromIgnoreCase: Ignore case",
      "[To] toMode: End at", "toPositionNumber+toWhichEndOfPosition: Position", "toSearchTerm: Text",
      "toOccurenceNumber: Which one", "toWhichEndOfOccurence: End", "toIgnoreCase: Ignore case",
      "removeNumberOfCharacters+removeNumberOfCharactersFromWhichEnd: Characters"}},
    {"Change numbers", {"blockMode: Which number", "operationMode+operand: Change", "padding: Digits"}},
    {"Rename from list",
     withOrder({"listFilePath+status: List", "ignoreCase: Ignore case of current names"})},
};

/// What the panels leave out, by the beginning of the action's name and of the key. An empty name is any.
constexpr std::array<std::pair<std::string_view, std::string_view>, 17> leftOut{{
    {"", "active"},
    {"", "fragmentSelection"},
    {"Insert number at position", "prefix"},
    {"Insert number at position", "suffix"},
    {"Insert alphabetical sequence at position", "prefix"},
    {"Insert alphabetical sequence at position", "suffix"},
    {"Insert roman numeral at position", "prefix"},
    {"Insert roman numeral at position", "suffix"},
    {"Produce roman numeral list", "padding"},
    {"Add roman numeral to", "padding"},
    {"Insert roman numeral", "padding"},
    {"Add path components", "leadingSpace"},
    {"Add path components", "trailingSpace"},
    {"Remove text", "with"},
    {"Remove text", "replacementTerm"},
    {"Remove characters", "with"},
    {"Convert to Mac OS 9", ""},
}};

bool isLeftOut(std::string_view action, std::string_view key) {
    // The mark of the patterns' version belongs to all actions on dates.
    return key == "version" || std::ranges::any_of(leftOut, [&](const auto& each) {
               return action.starts_with(each.first) && key.starts_with(each.second);
           });
}

} // namespace

TEST(PanelRows, HaveTheRowsOfTheDesign) {
    for (const Panel& panel : panels) {
        const auto action = makeAction(panel.action);
        ASSERT_TRUE(action) << panel.action;
        EXPECT_EQ(writtenRows(*action), panel.rows) << panel.action;
    }
}

// A new parameter, or one whose row was misspelt, is seen here.
TEST(PanelRows, ShowEveryParameterOnce) {
    for (const ActionEntry& entry : allActions()) {
        const auto action = entry.make();
        std::multiset<std::string_view> shown;
        for (const PanelRow& row : panelRowsOf(*action)) {
            for (const ParameterDescription* parameter : row.parameters)
                shown.insert(parameter->key);
            EXPECT_TRUE(row.first().besideKey.empty()) << entry.name << ": " << row.first().key;
        }
        for (const ParameterDescription& parameter : action->parameters())
            EXPECT_EQ(shown.count(parameter.key), isLeftOut(entry.name, parameter.key) ? 0U : 1U)
                << entry.name << ": " << parameter.key;
    }
}

TEST(PanelRows, HaveWordsForWhatTheyMean) {
    const auto numbers = makeAction("Add number to end");
    numbers->setParameterList({{"startValue", 9}, {"stepValue", -1}, {"padding", 3}});
    numbers->prepare();
    EXPECT_EQ(numbers->firstValues(), (std::vector<std::u16string>{u"009", u"008", u"007"}));
    const auto letters = makeAction("Add alphabetical sequence to end");
    letters->setParameterList({{"startValue", u"Y"}});
    letters->prepare();
    EXPECT_EQ(letters->firstValues(), (std::vector<std::u16string>{u"Y", u"Z", u"BA"}));
    const auto removal = makeAction("Remove text");
    EXPECT_EQ(removal->explanation(), u"");
    removal->setParameterList({{"searchTerm", u"x"}, {"replacementMode", 8}, {"ignoreCase", 0}});
    EXPECT_EQ(removal->explanation(), u"Remove only the second to last occurence of “x”.");
    const auto expression = makeAction("Reg Ex Replacement");
    for (const auto& [pattern, fails] : {std::pair{u"", false}, {u"(a", true}, {u"(a)", false}}) {
        expression->setParameterList({{"searchPattern", std::u16string(pattern)}});
        expression->prepare();
        EXPECT_EQ(!expression->failure().empty(), fails) << text::toUtf8(pattern);
    }
}

} // namespace tavrin::test
