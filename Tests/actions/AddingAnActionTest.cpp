#include "actions/ActionLaws.h"
#include "actions/AddedAction.h"
#include "platform/files/FileSystem.h"

// What docs/adding-an-action.md shows is true.

namespace tavrin::test {

namespace {

using AddingAnAction = CatalogueFixture;

TEST_F(AddingAnAction, GivesAnActionThatKeepsTheLaws) {
    auto entries = addedActions();
    ASSERT_EQ(entries.size(), 1U);
    for (const auto& entry : allActions())
        entries.push_back(entry);
    ActionList list(entries);
    expectLaws(list, entries);
    expectExamples(entries.front());
}

TEST_F(AddingAnAction, ShowsAnActionOfTheProgram) {
    auto& files = FileSystem::sharedInstance();
    std::string page, unit;
    ASSERT_EQ(files.readFile(TAVRIN_SOURCE_FOLDER "/docs/adding-an-action.md", page, 1U << 20), 0);
    ASSERT_EQ(files.readFile(TAVRIN_SOURCE_FOLDER "/Code/App/actions/characters/CharacterSetActions.cpp",
                             unit, 1U << 20),
              0);
    const std::string opening = "```cpp real\n";
    int count = 0;
    for (auto at = page.find(opening); at != page.npos; at = page.find(opening, at + 1), ++count) {
        const auto start = at + opening.size();
        const auto shown = page.substr(start, page.find("```", start) - start);
        EXPECT_NE(unit.find(shown), unit.npos) << shown;
    }
    EXPECT_EQ(count, 2);
}

} // namespace

} // namespace tavrin::test
