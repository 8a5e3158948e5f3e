#include "actions/ActionLaws.h"
#include "actions/AddedAction.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

// What docs/adding-an-action.md shows is true.

namespace tavrin::test {

namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(TAVRIN_SOURCE_FOLDER "/" + path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

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
    const auto page = contentOf("docs/adding-an-action.md");
    const auto unit = contentOf("Code/App/actions/characters/CharacterSetActions.cpp");
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
