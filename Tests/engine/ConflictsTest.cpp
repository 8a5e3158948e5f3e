#include "RenameBench.h"
#include "common/Testing.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"

namespace tavrin::test {
namespace {

struct ConflictBench : StageBench {
    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};

    /// A folder and its children, in this order, as "name>final name" ("/" in front marks a folder). Each is
    /// newer than the one before.
    RowId insert(const std::string& path, std::string_view children) {
        const RowId parent = context.insertGhostNode(path);
        double date = 1e6;
        for (const std::string& word : split(children)) {
            const bool isFolder = word.starts_with("/");
            const std::string names = word.substr(isFolder ? 1 : 0);
            const std::size_t arrow = names.find('>');
            const RowId id = context.insertFile(parent, names.substr(0, arrow), true, isFolder,
                                                host.engine.nextManualOrder());
            context.setFinalName(id, text::fromBytes(names.substr(arrow + 1)));
            context.change(id).diff = names.substr(0, arrow) != names.substr(arrow + 1);
            context.change(id).modDate = date++;
        }
        context.changeEngineControl().needToRedoConflictResolution = true;
        context.commit();
        return parent;
    }
    std::vector<std::string> resolve(RowId parent) {
        EXPECT_TRUE(run<ResolveFileNameConflictsStage>());
        EXPECT_FALSE(host.counters().needToRedoConflictResolution);
        context.reset();
        std::vector<std::string> names;
        for (const RowId id : context.children(parent)) {
            names.push_back(text::toUtf8(context.finalName(id)));
            EXPECT_EQ(context.row(id).diff, !text::canonicallyEqual(context.finalName(id), context.name(id)))
                << names.back();
        }
        return names;
    }
};

} // namespace

TEST(Conflicts, NamesBecomeDistinct) {
    const char* const cases[][4] = {
        {"no conflict", "", "a>a b>b c>.a", "a b .a"},
        {"case is no difference", "", "1>a.txt 2>A.TXT", "aa.txt Ab.TXT"},
        {"case outside ASCII is none either", "", "1>\u00c4 2>\u00e4", "\u00c4a \u00e4b"},
        {"composition is a difference", "", "1>\u00e9 2>e\u0301", "\u00e9 e\u0301"},
        {"the first may stay", "DontChangeFirst=1", "1>a.txt 2>A.TXT", "a.txt Aa.TXT"},
        {"the others count from the start", "DontChangeFirst=1 Scheme=1", "1>x 2>x 3>x", "x x(0) x(1)"},
        {"a taken name is skipped", "Scheme=0", "1>a.txt 2>a.txt 3>A(1).txt", "a(2).txt a(3).txt A(1).txt"},
        {"a name given out is taken for later groups", "Scheme=7", "1>x 2>x 3>x1 4>X1", "x2 x3 x11 X12"},
        {"a group's own name stays in use", "Scheme=7", "1>x1 2>x1 3>x 4>x", "x11 x12 x2 x3"},
        {"in front of the last dot", "", "1>r.final.txt 2>r.final.txt 3>.x 4>.x 5>e. 6>e.",
         "r.finala.txt r.finalb.txt a.x b.x ea. eb."},
        {"empty names", "", "1> 2>", "a b"},
        {"by the orders of the settings", "Order1=3", "1>x 2>x 3>x", "xc xb xa"},
        {"by name from Z to A", "Order1=1", "a>x c>x b>x", "xc xa xb"},
        {"orders that are none leave the order read", "Order1=14 Order2=-1 Order3=99", "b>x a>x", "xa xb"},
        {"what is not processed keeps its name", "processFiles=0", "/d>x x>x", "xa x"},
        {"also a folder", "processFolders=0", "1>x /x>x", "xa x"},
        {"but only one of them", "processFiles=0", "x>x X>X", "x Xa"},
        {"nothing is processed", "processFiles=0 processFolders=0", "/x>x X>X", "xa X"},
        {"a scheme that is none", "Scheme=14", "1>x 2>x", "xa xb"},
        {"an unchanged name collides too", "", "x>x y>x", "xa xb"},
    };
    for (const auto& [name, settings, children, finalNames] : cases) {
        SCOPED_TRACE(name);
        ConflictBench bench;
        for (const std::string& setting : split(settings))
            setAll(bench.host, (setting.starts_with("process") ? "" : "conflictResolution") + setting);
        EXPECT_EQ(bench.resolve(bench.insert("/somewhere", children)), split(finalNames));
    }
}

TEST(Conflicts, EachSchemeHasItsDistinguishersAndStartsAnewInEachFolder) {
    const char* const schemes[] = {
        "(1) (2) (3)",       "(0) (1) (2)",       "(a) (b) (c)", "(01) (02) (03)", "(00) (01) (02)",
        "(001) (002) (003)", "(000) (001) (002)", "1 2 3",       "0 1 2",          "a b c",
        "01 02 03",          "00 01 02",          "001 002 003", "000 001 002",
    };
    ConflictBench bench;
    for (int scheme = 0; scheme < 14; ++scheme) {
        bench.host.set("conflictResolutionScheme", scheme);
        EXPECT_EQ(bench.resolve(bench.insert("/folder" + std::to_string(scheme), "1> 2> 3>")),
                  split(schemes[scheme]));
    }
    std::string letters;
    for (const std::int64_t number : {0, 25, 26, 27, 675, 676})
        letters += ResolveFileNameConflictsStage::uNumToAlpha(number) + " ";
    EXPECT_EQ(letters, "A Z BA BB ZZ BAA ") << "letters are positional digits";
}

TEST(Conflicts, AreSettledOnceForAReadingAndInVisibleFoldersOnly) {
    ConflictBench bench;
    const RowId parent = bench.insert("/a", "1>x 2>y /d>d");
    const RowId inner = bench.context.children(parent).back();
    for (const char* name : {"x", "y"})
        bench.context.setFinalName(bench.context.insertFile(inner, name, false, false, 9), u"same");
    bench.context.commit();
    std::vector<RowId> changed;
    std::uint8_t classes = 0;
    bench.host.persistentStoreCoordinator()->setDidSaveHandler([&](const StoreChanges& changes) {
        changed.insert(changed.end(), changes.updated.begin(), changes.updated.end());
        classes |= changes.columnClasses;
    });
    bench.resolve(parent);
    EXPECT_EQ(bench.context.finalName(bench.context.children(inner).front()), u"same");
    EXPECT_EQ(classes & static_cast<std::uint8_t>(ColumnClass::naming), 0) << "where no names collide";
    for (const RowId id : changed)
        EXPECT_EQ(id, parent) << "only the folder's marker";
    bench.context.setFinalName(bench.context.children(parent).front(), u"y");
    bench.context.commit();
    EXPECT_EQ(bench.resolve(parent), split("y y d"));
}

/// Groups whose distinguishers can build the same name ("x" with "11", "x1" with "1"), and names that are
/// there already, in any case and number, large and small.
TEST(Conflicts, NamesAreDistinctAcrossGroupsInEveryScheme) {
    std::mt19937 random(7);
    const auto stems = split("x X x1 x0 x01 x001 xa xA x11 xaa x(1) x(01) x(a) x1001");
    ConflictBench bench;
    for (int scheme = 0; scheme < 14; ++scheme) {
        bench.host.set("conflictResolutionScheme", scheme);
        bench.host.set("conflictResolutionDontChangeFirst", scheme % 2);
        for (const std::size_t count : {8U, 60U, 2400U}) {
            SCOPED_TRACE(std::to_string(scheme) + ", " + std::to_string(count));
            std::string children;
            for (std::size_t i = 0; i < count; ++i) {
                const std::string stem = i % 2 == 0 ? "x" : stems[random() % stems.size()];
                children += std::to_string(i) + ">" + stem + (random() % 8 == 0 ? ".t " : " ");
            }
            std::set<std::string> seen;
            for (const std::string& name : bench.resolve(
                     bench.insert("/" + std::to_string(scheme) + "/" + std::to_string(count), children))) {
                std::string lowered;
                text::lowercaseBytes(name, lowered);
                EXPECT_TRUE(seen.insert(lowered).second) << name;
            }
        }
    }
}

} // namespace tavrin::test
