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

} // namespace

// A parameter whose row was misspelt is seen here.
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
            EXPECT_EQ(shown.count(parameter.key), parameter.isHidden ? 0U : 1U)
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
