#include "common/EngineTestHost.h"
#include "engine/renaming/PrepareForRenamingStage.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <algorithm>

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
        context.change(row).diff = !text::canonicallyEqual(context.name(row), finalName);
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
        {"apart from composition it keeps its name, and waits for nobody",
         {{"\u00E9", u"y"}, {"e\u0301", u"\u00E9"}},
         {"\u00E9: - - free", "e\u0301: - - free"}},
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

/// More than fits into one batch, of siblings and of folders.
TEST_F(Plan, SiblingsOfAHugeFolderAndOfManyFoldersAreLinked) {
    constexpr std::size_t childCount = 25000;
    const RowId ghost = context.insertGhostNode("/x");
    const RowId huge = insert(ghost, "huge", true);
    std::vector<RowId> ring;
    for (std::size_t i = 0; i < childCount; ++i)
        ring.push_back(insert(huge, std::to_string(i)));
    for (std::size_t i = 0; i < childCount; ++i)
        want(ring[i], text::fromUtf8(std::to_string((i + 1) % childCount)));
    std::vector<RowId> small;
    for (int i = 0; i < 2100; ++i) {
        const RowId folder = insert(ghost, "f" + std::to_string(i), true);
        small.push_back(insert(folder, "a"));
        want(small.back(), u"b");
        insert(folder, "b");
    }
    prepare();
    EXPECT_EQ(std::ranges::count_if(small, [&](RowId row) { return linksOf(row) == "a: b -"; }), 2100);
    std::size_t linked = 0;
    for (std::size_t i = 0; i < childCount; ++i) {
        const NodeRow row = context.row(ring[i]);
        linked += row.cannotBeRenamedBefore == ring[(i + 1) % childCount] &&
                          row.mustBeRenamedBefore == ring[(i + childCount - 1) % childCount] && row.depth == 2
                      ? 1U
                      : 0U;
    }
    EXPECT_EQ(linked, childCount);
}

} // namespace tavrin::test
