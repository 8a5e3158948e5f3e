#include "common/EngineTestHost.h"
#include "engine/planning/PrepareForRenamingStage.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin::test {

namespace {

/// Rows without a disk, and the plan that is made for them.
class Plan : public testing::Test {
  protected:
    void prepare() {
        context.commit();
        PrepareForRenamingStage stage(host.engine);
        stage.setSettings(host.settings.values());
        stage.setManagedObjectContext(&context);
        EXPECT_TRUE(stage.process());
        EXPECT_FALSE(context.hasChanges());
    }

    RowId insert(RowId parent, std::string_view name, bool folder = false) {
        return context.insertFile(parent, name, false, folder, 0);
    }

    void want(RowId row, std::u16string_view finalName) {
        context.setFinalName(row, finalName);
        context.change(row).diff = true;
    }

    std::string nameOf(RowId row) { return row == noRow ? "-" : std::string(context.component(row)); }

    /// "name: waits for, waited for by", with "free" and "swap" where they hold.
    std::string linksOf(RowId row) {
        const NodeRow read = context.row(row);
        return nameOf(row) + ": " + nameOf(read.cannotBeRenamedBefore) + " " +
               nameOf(read.mustBeRenamedBefore) + (read.canBeRenamedIndependently ? " free" : "") +
               (read.mustBeSwapped ? " swap" : "");
    }

    EngineTestHost host;
    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};
};

} // namespace

TEST_F(Plan, LinksOfOneFolder) {
    struct Case {
        const char* title;
        std::vector<std::pair<const char*, const char16_t*>> children; ///< null: keeps its name
        std::vector<std::string> links;
    };
    const std::vector<Case> cases{
        {"free", {{"a", u"x"}, {"b", nullptr}}, {"a: - - free", "b: - - free"}},
        {"chain", {{"a", u"b"}, {"b", u"c"}, {"c", u"d"}}, {"a: b -", "b: c a", "c: - b free"}},
        {"cycle", {{"a", u"b"}, {"b", u"c"}, {"c", u"a"}}, {"a: b c", "b: c a", "c: a b"}},
        {"swap", {{"a", u"b"}, {"b", u"a"}}, {"a: b b swap", "b: a a swap"}},
        {"swap, in another case", {{"a", u"B"}, {"b", u"A"}}, {"a: b b swap", "b: a a swap"}},
        {"change of case", {{"report.txt", u"REPORT.TXT"}}, {"report.txt: - - free"}},
        {"change of case onto another item", {{"a", u"A"}, {"A", u"x"}}, {"a: A -", "A: - a free"}},
        {"swap of case", {{"a", u"A"}, {"A", u"a"}}, {"a: A A swap", "A: a a swap"}},
        {"the very name first",
         {{"A", u"x"}, {"a", nullptr}, {"b", u"A"}},
         {"A: - b free", "a: - - free", "b: A -"}},
        {"of several that differ in case the last",
         {{"Ab", nullptr}, {"aB", nullptr}, {"c", u"ab"}},
         {"Ab: - - free", "aB: - c free", "c: aB -"}},
        {"held by one that stays", {{"a", u"b"}, {"b", nullptr}}, {"a: b -", "b: - a free"}},
        {"two want one name: the last is the one waited by",
         {{"a", u"c"}, {"b", u"c"}, {"c", u"x"}},
         {"a: c -", "b: c -", "c: - b free"}},
        {"beyond ASCII, and composition counts",
         {{"\u00C9", u"x"}, {"y", u"\u00E9"}, {"z", u"e\u0301"}},
         {"\u00C9: - y free", "y: \u00C9 -", "z: - - free"}},
        {"a slash is a colon", {{"p:q", u"x"}, {"y", u"p/q"}}, {"p:q: - y free", "y: p:q -"}},
        {"names that cannot be wait for nobody",
         {{"a", u""}, {"b", u"\xD83D"}, {"c", u".."}},
         {"a: - - free", "b: - - free", "c: - - free"}},
    };
    int number = 0;
    for (const Case& one : cases) {
        SCOPED_TRACE(one.title);
        const RowId folder = context.insertGhostNode("/folder" + std::to_string(++number));
        std::vector<RowId> rows;
        for (const auto& [name, finalName] : one.children) {
            rows.push_back(insert(folder, name));
            if (finalName != nullptr)
                want(rows.back(), finalName);
        }
        prepare();
        std::vector<std::string> links;
        for (const RowId row : rows)
            links.push_back(linksOf(row));
        EXPECT_EQ(links, one.links);
    }
}

TEST_F(Plan, AnItemThatKeepsItsNameApartFromCompositionWaitsForNobody) {
    const RowId folder = context.insertGhostNode("/x");
    const RowId composed = insert(folder, "\u00E9");
    const RowId decomposed = insert(folder, "e\u0301");
    want(composed, u"y");
    context.setFinalName(decomposed, u"\u00E9");
    prepare();
    EXPECT_EQ(linksOf(decomposed), "e\u0301: - - free");
    EXPECT_EQ(linksOf(composed), "\u00E9: - - free");
}

TEST_F(Plan, DepthCountsAncestors) {
    const RowId ghost = context.insertGhostNode("/x");
    const RowId folder = insert(ghost, "f", true);
    const RowId inner = insert(folder, "g", true);
    const RowId file = insert(inner, "a");
    const RowId empty = insert(inner, "e", true);
    prepare();
    std::vector<int> depths;
    for (const RowId row : {ghost, folder, inner, file, empty})
        depths.push_back(context.row(row).depth);
    EXPECT_THAT(depths, testing::ElementsAre(0, 1, 2, 3, 3));
    PrepareForRenamingStage stage(host.engine);
    EXPECT_EQ(stage.getDepthFor(noRow), -1);
}

TEST_F(Plan, SiblingsOfAHugeFolderAndOfManyFoldersAreLinked) {
    constexpr int childCount = 25000;
    constexpr int folderCount = 2100;
    const RowId ghost = context.insertGhostNode("/x");
    const RowId huge = insert(ghost, "huge", true);
    std::vector<RowId> rows;
    for (int i = 0; i < childCount; ++i)
        rows.push_back(insert(huge, std::to_string(i)));
    for (int i = 0; i < childCount; ++i)
        want(rows[static_cast<std::size_t>(i)], text::fromUtf8(std::to_string((i + 1) % childCount)));
    std::vector<RowId> small;
    for (int i = 0; i < folderCount; ++i) {
        const RowId folder = insert(ghost, "f" + std::to_string(i), true);
        small.push_back(insert(folder, "a"));
        want(small.back(), u"b");
        insert(folder, "b");
    }
    prepare();
    int linked = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const NodeRow row = context.row(rows[i]);
        linked += row.cannotBeRenamedBefore == rows[(i + 1) % rows.size()] &&
                          row.mustBeRenamedBefore == rows[(i + rows.size() - 1) % rows.size()] &&
                          !row.canBeRenamedIndependently && row.depth == 2
                      ? 1
                      : 0;
    }
    EXPECT_EQ(linked, childCount);
    int waiting = 0;
    for (const RowId row : small)
        waiting += linksOf(row) == "a: b -" ? 1 : 0;
    EXPECT_EQ(waiting, folderCount);
}

} // namespace tavrin::test
