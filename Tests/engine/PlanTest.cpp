#include "RenameBench.h"
#include "engine/renaming/PrepareForRenamingStage.h"

namespace tavrin::test {

namespace {

/// Rows without a disk, and the plan that is made for them.
class Plan : public StageTest {
  protected:
    void prepare() {
        context.commit();
        run<PrepareForRenamingStage>();
        context.reset();
    }

    /// Children as "name>final name", or the name alone where it stays.
    std::vector<RowId> insert(RowId parent, std::string_view words) {
        std::vector<RowId> rows;
        for (const std::string& word : split(words)) {
            const std::size_t arrow = word.find('>');
            rows.push_back(context.insertFile(parent, word.substr(0, arrow), false, false, 0));
            if (arrow == std::string::npos)
                continue;
            const std::u16string wanted = shownName(word.substr(arrow + 1));
            context.setFinalName(rows.back(), wanted);
            context.change(rows.back()).diff = !text::canonicallyEqual(context.name(rows.back()), wanted);
        }
        return rows;
    }

    std::string nameOf(RowId row) { return row == noRow ? "-" : std::string(context.component(row)); }

    /// "name=waits for,waited for by", with "+" for free and "*" for a swap.
    std::string linksOf(RowId row) {
        const NodeRow read = context.row(row);
        return nameOf(row) + "=" + nameOf(read.cannotBeRenamedBefore) + "," +
               nameOf(read.mustBeRenamedBefore) + (read.canBeRenamedIndependently ? "+" : "") +
               (read.mustBeSwapped ? "*" : "");
    }

    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};
};

} // namespace

TEST_F(Plan, LinksOfOneFolder) {
    const char* const cases[][3] = {
        {"free", "a>x b", "a=-,-+ b=-,-+"},
        {"chain", "a>b b>c c>d", "a=b,- b=c,a c=-,b+"},
        {"cycle", "a>b b>c c>a", "a=b,c b=c,a c=a,b"},
        {"swap", "a>b b>a", "a=b,b* b=a,a*"},
        {"swap, in another case", "a>B b>A", "a=b,b* b=a,a*"},
        {"change of case", "report.txt>REPORT.TXT", "report.txt=-,-+"},
        {"change of case onto another item", "a>A A>x", "a=A,- A=-,a+"},
        {"swap of case", "a>A A>a", "a=A,A* A=a,a*"},
        {"the very name first", "A>x a b>A", "A=-,b+ a=-,-+ b=A,-"},
        {"of several that differ in case the last", "Ab aB c>ab", "Ab=-,-+ aB=-,c+ c=aB,-"},
        {"held by one that stays", "a>b b", "a=b,- b=-,a+"},
        {"two want one name: the last is the one waited by", "a>c b>c c>x", "a=c,- b=c,- c=-,b+"},
        {"beyond ASCII, and composition counts", "\u00C9>x y>\u00E9 z>e\u0301",
         "\u00C9=-,y+ y=\u00C9,- z=-,-+"},
        {"apart from composition it keeps its name, and waits for nobody", "\u00E9>y e\u0301>\u00E9",
         "\u00E9=-,-+ e\u0301=-,-+"},
        {"a slash is a colon", "p:q>x y>p:q", "p:q=-,y+ y=p:q,-"},
        {"names that cannot be wait for nobody", "a> b>\xE9 c>..", "a=-,-+ b=-,-+ c=-,-+"},
    };
    for (const auto& [title, children, links] : cases) {
        SCOPED_TRACE(title);
        const std::vector<RowId> rows = insert(context.insertGhostNode(std::string("/") + title), children);
        prepare();
        std::vector<std::string> found;
        for (const RowId row : rows)
            found.push_back(linksOf(row));
        EXPECT_EQ(found, split(links));
    }
}

/// More than fits into one batch, of siblings and of folders.
TEST_F(Plan, SiblingsOfAHugeFolderAndOfManyFoldersAreLinked) {
    constexpr std::size_t childCount = 25000;
    const RowId ghost = context.insertGhostNode("/x");
    std::string names;
    for (std::size_t i = 0; i < childCount; ++i)
        names += std::to_string(i) + ">" + std::to_string((i + 1) % childCount) + " ";
    const std::vector<RowId> ring = insert(context.insertFile(ghost, "huge", false, true, 0), names);
    std::vector<RowId> small;
    for (int i = 0; i < 2100; ++i)
        small.push_back(
            insert(context.insertFile(ghost, "f" + std::to_string(i), false, true, 0), "a>b b").front());
    prepare();
    EXPECT_EQ(std::ranges::count_if(small, [&](RowId row) { return linksOf(row) == "a=b,-"; }), 2100);
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
