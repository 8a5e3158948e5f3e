#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "common/RandomChains.h"
#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/CleanUpStages.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "platform/files/FileSystem.h"
#include "store/rows/FileMO.h"
#include "support/text/KQStringUtilities.h"

namespace tavrin::test {
namespace {

class ComputeNamesTest : public StageTest {};

/// Names on disk (with "/" for folders), those on the list, the steps, the new names, how many rows are to be
/// renamed, and settings.
TEST(ComputeNames, OfChains) {
    struct Case {
        const char *name, *onDisk, *listed, *steps, *finalNames;
        int toRename;
        const char* settings = "";
    };
    const Case cases[] = {
        {"one step", "a.txt B", "a.txt B", "Make uppercase fragmentSelection=0", "B=B a.txt=A.TXT", 1},
        {"each step works on the result of the one before, inactive ones are left out", "a", "a",
         "Add to end string=x; Make uppercase active=0; Add to end string=y; Make lowercase active=2",
         "a=axy", 1},
        {"back to the name", "a", "a", "Make uppercase fragmentSelection=0; Make lowercase", "a=a", 0},
        {"no step is active", "a", "a", "Make uppercase active=0", "a=a", 0},
        {"a colon becomes a slash", "a", "a", "Add to end string=:b", "a=a/b", 1},
        {"a colon on disk is a slash to the actions", "a:b", "a:b",
         "Replace text searchTerm=/ replacementTerm=-", "a:b=a-b", 1},
        {"folders that are not processed take no rank", "b a/ c", "a b c",
         "Produce numbered list prefix= padding=1", "a=a b=1 c=2", 2, "processFolders=0"},
        {"composition alone is no difference", "e\u0301", "e\u0301",
         "Replace text searchTerm=e\u0301 replacementTerm=\u00e9", "e\u0301=\u00e9", 0},
        {"bytes that are no text go through", "\xFFx", "\xFFx", "Make uppercase fragmentSelection=0",
         "\xFFx=\xFFX", 1},
        {"ranks by name across folders", "t/a/2 t/b/1 t/3", "t",
         "Produce numbered list prefix= padding=1 sortingMode=0", "t=t t/3=3 t/a=a t/a/2=2 t/b=b t/b/1=1", 0,
         "processSubfolders=1 processFolders=0"},
        {"each folder counts by itself, also an empty one", "t/a/x t/a/y t/b/z t/e/", "t",
         "Produce numbered list prefix= padding=1 sortingMode=0 sortEachFolderSeparately=1",
         "t=1 t/a=1 t/a/x=1 t/a/y=2 t/b=2 t/b/z=1 t/e=3", 7, "processSubfolders=1"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        RenameBench bench;
        setAll(bench.host, "processSubfolders=0 previewConflictResolution=0");
        setAll(bench.host, test.settings);
        bench.make(split(test.onDisk));
        for (const std::string& name : split(test.listed))
            bench.host.add({bench.folder.path(name)});
        setSteps(bench.host, test.steps);
        for (int preview = 0; preview < 2; ++preview) { // the second starts from the names on disk too
            bench.host.preview();
            EXPECT_EQ(bench.shown(), split(test.finalNames));
            EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, test.toRename);
        }
    }
}

TEST_F(ComputeNamesTest, HiddenRowsAreNumberedByFolderAllTheSame) {
    folder.write("t/x");
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    host.preview();
    host.set("processSubfolders", 0);
    setSteps(host, "Produce numbered list prefix= padding=1 sortEachFolderSeparately=1");
    host.preview();
    EXPECT_EQ(shown(), split("t=1 t/x=1"));
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, 1);
    EXPECT_EQ(host.counters().totalNumberOfFiles, 1);
    EXPECT_EQ(host.counters().totalNumberOfFilesSelectedOrNot, 2);
}

TEST_F(ComputeNamesTest, AListThatIsLostBeforeTheRunChangesNoName) {
    const std::string list = folder.write("list", "b\n");
    host.add({folder.write("a")});
    setSteps(host, "Rename from list listFilePath=" + list + "; Add to end string=x");
    host.preview();
    EXPECT_EQ(shown(), split("a=bx"));
    folder.remove("list");
    host.preview();
    EXPECT_EQ(shown(), split("a=a"));
    ASSERT_EQ(host.errors().size(), 1U);
    EXPECT_NE(host.errors().front().find(list + ": File does not exist."), std::string::npos);
}

/// Each stage counts as many items as it announces.
TEST_F(ComputeNamesTest, ProgressEndsAtItsTotal) {
    for (const char* name : {"t/a/x", "t/a/y", "t/b/x", "t/z"})
        folder.write(name);
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    run<ReadItemsIntoDatabaseStage>();
    const auto expectAll = [&](int count) {
        host.progress.forceUpdate();
        EXPECT_EQ(host.progress.itemText(), fmt::format("{0} out of {0} items", count));
        host.progress.updateCurrentItemNumber(0);
    };
    run<AddFileSortingDataStage>();
    expectAll(6); // what is seen of the given folder when it is read is enough
    for (const char* steps : {"Make uppercase active=0", "Completely rename newName=x"}) {
        setSteps(host, steps);
        run<ComputeProvisionalNamesStage>();
        expectAll(7);
    }
    run<ResolveFileNameConflictsStage>();
    expectAll(7);
}

/// Whatever the steps: a row that goes through several of them at once, and from the one in hand on where
/// nothing in front was changed, is named as by a pass for each. A list of which nothing is loaded names
/// nothing, and wants a pass that begins with it.
TEST(ComputeNames, StepsInOnePassNameAsAPassForEach) {
    RandomChains chains(13);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        RenameBench bench({}, RenameBench::inMemory());
        const std::vector<std::string> listed{"IMG_1.jpg", "b:c.txt", "B", "e\u0301", "\xFFx", "f"};
        bench.make({"IMG_1.jpg", "b:c.txt", "B", "e\u0301", "\xFFx", "f/", "f/2", "f/\u212A.JPG"});
        for (const std::string& name : listed)
            bench.host.add({bench.folder.path(name)});
        bench.host.set("processSubfolders", static_cast<int>(chains.below(2)));
        bench.host.set("processFolders", static_cast<int>(chains.below(2)));
        std::vector<Step> together(2 + chains.below(4));
        std::ranges::generate(together, [&] { return chains.knownStep(); });
        const auto namesOf = [&](const std::vector<Step>& steps, std::size_t inHand) {
            PropertyDictionary list = chain(steps);
            list.insert_or_assign("currentActionIndex", static_cast<int>(inHand));
            bench.host.composite.setFlatParameterList(list);
            bench.host.preview();
            return std::tuple(bench.shown(), bench.host.errors(),
                              bench.host.counters().numberOfFilesThatNeedRenaming);
        };
        if (round % 2 == 0)
            bench.host.engine.expectManyPreviews();
        const std::size_t inHand = chains.below(together.size());
        static_cast<void>(namesOf(together, inHand));
        if (chains.below(4) == 0)
            bench.host.engine.rereadAtNextPreview();
        if (chains.below(4) == 0)
            bench.host.set("processFolders", static_cast<int>(chains.below(2)));
        together[chains.below(3) == 0 ? chains.below(together.size()) : inHand] = chains.knownStep();
        std::vector<Step> apart;
        for (const Step& step : together)
            apart.insert(apart.end(), {step, Step{"Rename from list", {}}});
        const auto changed = namesOf(together, inHand);
        EXPECT_EQ(changed, namesOf(apart, 0));
    }
}

/// Dates, sizes and their absence, from the disk into the rows.
TEST_F(ComputeNamesTest, SortingDataIsReadOncePerRow) {
    folder.write("d/.hidden/x", "123");
    folder.write("d/y", "1234");
    host.add({folder.write("f", "12345"), folder.path("d"), folder.write("gone")});
    folder.remove("gone");
    host.set("accurateFolderSize", 1);
    setSteps(host, "Produce numbered list sortingMode=6");
    host.preview();
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    const auto rowOf = [&](const char* name) {
        context.reset();
        return context.row(context.fileWithPath(folder.path(name)));
    };
    FileStatus status;
    ASSERT_EQ(FileSystem::sharedInstance().status(folder.path("f"), status), 0);
    EXPECT_EQ(rowOf("f").modDate, status.modificationDate);
    EXPECT_EQ(rowOf("f").crDate, status.creationDate);
    EXPECT_EQ(rowOf("f").size, 5U);
    EXPECT_EQ(FileMO(context, context.fileWithPath(folder.path("f"))).exifDate(), std::nullopt);
    EXPECT_EQ(rowOf("d").size, 7U);
    EXPECT_EQ(rowOf("gone").modDate, 0.0);
    EXPECT_EQ(rowOf("gone").size, 0U);

    folder.write("f", "1234567");
    setAll(host, "retrieveEXIFInformation=0 accurateFolderSize=0");
    host.add({folder.makeFolder("e"), folder.write("g.jpg")});
    host.preview();
    EXPECT_EQ(rowOf("f").size, 5U) << "what has its values is not read again";
    EXPECT_EQ(rowOf("e").size, 0U);
    EXPECT_EQ(rowOf("g.jpg").exif, 0.0);
}

/// Of an image: "s" its status, "t" the moment it was taken; of a folder: "f" the size of what is in it. A
/// preview of other steps comes first, which may have left values to be read. When they are read changes no
/// name.
TEST(ComputeNames, ValuesAreReadWhenTheyAreWanted) {
    struct Case {
        const char *steps, *settings, *wanted;
    };
    const Case cases[] = {
        {"Make lowercase", "", ""},
        {"Produce numbered list sortingMode=10; Rename to date mode=2", "", ""},
        {"Produce numbered list sortingMode=0 sortingMode2=2", "", "s"},
        {"Produce numbered list sortingMode=3", "", "s"},
        {"Produce numbered list sortingMode=7", "", "sf"},
        {"Produce numbered list sortingMode=7", "accurateFolderSize=0", "sf"},
        {"Make lowercase; Produce numbered list sortingMode=6 sortingMode2=8", "", "stf"},
        {"Produce numbered list sortingMode=9 active=0", "", "st"},
        {"Produce numbered list sortingMode=9", "retrieveEXIFInformation=0", "st"},
        {"Add tag to end pattern=<ModDateDay>", "", "s"},
        {"Add tag to end pattern=x<CreationDateDay><ShootingDateDay>", "", "st"},
        {"Add tag to end pattern=<ShootingDateDay> active=0", "", ""},
        {"Make lowercase", "conflictResolutionOrder2=3", ""},
        {"Completely rename newName=x", "conflictResolutionOrder1=2 conflictResolutionOrder2=0", "s"},
        {"Completely rename newName=x fragmentSelection=0", "conflictResolutionOrder1=8", "st"},
        {"Make lowercase", "onConflict=1", "s"},
    };
    std::map<std::string, std::vector<std::string>> names;
    for (const bool showsProblems : {false, true})
        for (const auto& [steps, settings, wanted] : cases) {
            SCOPED_TRACE(fmt::format("{}, {}, {}", steps, settings, showsProblems));
            RenameBench bench;
            bench.make({"t/i.jpg", "t/j.jpg", "t/d/x"});
            auto when = std::filesystem::file_time_type::clock::now();
            for (const char* path : {"t/i.jpg", "t/j.jpg", "t/d/x", "t/d", "t"})
                std::filesystem::last_write_time(bench.folder.path(path), when -= std::chrono::hours(1));
            bench.host.engine.setShowsProblems(showsProblems);
            bench.host.add({bench.folder.path("t")});
            setAll(bench.host, "accurateFolderSize=1 retrieveEXIFInformation=1");
            setAll(bench.host, settings);
            FailingFileSystem disk;
            std::size_t looks = 0;
            disk.before = [&](const FileEvent& event) {
                looks += event.call == FileCall::status && event.name == "i.jpg" ? 1 : 0;
                return 0;
            };
            for (const char* each : {"Make uppercase", steps, steps}) {
                setSteps(bench.host, each);
                bench.host.preview();
            }
            StoreContext context(*bench.host.persistentStoreCoordinator(),
                                 StoreContext::MergePolicy::storeWins);
            const RowValues image = context.row(context.fileWithPath(bench.folder.path("t/i.jpg"))).loaded;
            const RowValues inner = context.row(context.fileWithPath(bench.folder.path("t/d"))).loaded;
            std::string loaded;
            for (const auto& [set, value, letter] : {std::tuple(image, RowValues::ofStatus, 's'),
                                                     {image, RowValues::shootingDate, 't'},
                                                     {inner, RowValues::folderSize, 'f'}})
                if (holds(set, value))
                    loaded += letter;
            EXPECT_EQ(bench.shown(),
                      names.try_emplace(fmt::format("{} {}", steps, settings), bench.shown()).first->second);
            const std::string_view seen = wanted;
            EXPECT_EQ(loaded, showsProblems && seen.empty() ? "s" : wanted);
            if (!showsProblems && *settings == '\0' && !seen.ends_with('f')) {
                EXPECT_EQ(looks, seen.empty() ? 0U : 1U);
            }
        }
}

/// A list of 2500 rows, so that every pass needs more than one batch, on both kinds of store.
TEST(ComputeNames, EveryPassReachesEveryRow) {
    constexpr int files = 2500;
    for (const bool inFile : {false, true}) {
        const TemporaryFolder data;
        StageBench bench(inFile ? EngineTestHost::inFile(data.path(), 0) : ItemStore::Options());
        for (int i = 0; i < files; ++i)
            bench.folder.write("t/d" + std::to_string(i % 7) + "/f" + std::to_string(i));
        bench.host.add({bench.folder.path("t")});
        bench.host.set("processSubfolders", 1);
        setSteps(bench.host, "Add to end string=!; Produce numbered list sortEachFolderSeparately=1");
        bench.host.preview();
        EXPECT_EQ(bench.host.counters().totalNumberOfFiles, files + 8);
        EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, files + 8);
        setSteps(bench.host, "Add to end active=0");
        bench.host.preview();
        EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, 0);
        bench.host.saveList(1, false, data.path("list"));
        EXPECT_EQ(std::ranges::count(data.read("list"), '\n'), files + 8);
        StoreContext context(*bench.host.persistentStoreCoordinator(),
                             StoreContext::MergePolicy::contextWins);
        for (int i = 0; i < files; ++i)
            context.insertProcessingError({"t", "m", ""});
        context.commit();
        EXPECT_TRUE(bench.run<CleanUpProcessingErrorsStage>());
        EXPECT_TRUE(bench.host.errors().empty());
        EXPECT_TRUE(bench.run<CleanUpFilesStage>());
        EXPECT_TRUE(bench.host.finalNames().empty());
    }
}

constexpr int noOrder = 14;

/// Numbers given by the naming stage to rows made straight in the store, whose values repeat and lie far from
/// the order of the ids; in memory, in a file, and in one that keeps two segments in memory.
class SortedRanksTest : public ::testing::TestWithParam<std::size_t> {
  protected:
    using Value = std::pair<double, std::string>;

    void makeRows(int count) {
        std::mt19937 random(20261121);
        const auto one = [&random](auto... values) {
            const std::array choice{values...};
            return choice[random() % choice.size()];
        };
        const RowId parent = context.insertGhostNode("/r");
        for (int i = 0; i < count; ++i) {
            rows.push_back(context.insertFile(parent,
                                              one("xa", "ya", "x9a", "x10a", "x09a", "X:a", "\u00FCa", "za"),
                                              true, false, count - i));
            NodeRow& row = context.change(rows.back());
            row.modDate = one(-1.5, 0.0, 1.5);
            row.crDate = one(1e9, 2e9, 2e9 + 1e-4);
            row.exif = one(0.0, -63114076800.0, 7e8);
            row.size = one(0U, 9U, 10U, 1U << 31);
            row.loaded = RowValues::all;
        }
        context.commit();
        for (const RowId row : context.fetch({FetchEntity::file, {}, {{NodeKey::random, true}}, 0}))
            places.emplace(row, places.size());
    }

    /// The value that a mode sorts by, and nothing for a mode without an order.
    Value valueFor(int mode, RowId id) {
        const NodeRow row = context.row(id);
        const std::u16string name = context.name(id);
        const Value values[] = {
            {0, text::toUtf8(name)},
            {row.modDate, ""},
            {row.crDate, ""},
            {row.size, ""},
            {row.exif, ""},
            {0, text::toUtf8(KQStringUtilities::expandNumberBlocks(name))},
            {mode == 12 ? places.at(id) : row.manualOrder, ""},
        };
        return mode < 0 || mode >= noOrder ? Value() : values[mode / 2];
    }

    /// The numbers are those that a plain stable sort gives.
    void expectRanks(int mode, int mode2) {
        SCOPED_TRACE(fmt::format("{}, {}", mode, mode2));
        setSteps(host, fmt::format("Produce numbered list prefix= padding=1 sortingMode={} sortingMode2={}",
                                   mode, mode2));
        ComputeProvisionalNamesStage stage(host.engine);
        stage.setSettings(host.settings.values());
        stage.setManagedObjectContext(&context);
        EXPECT_TRUE(stage.process());
        context.commit();
        context.reset();
        struct Item {
            Value first, second;
            std::string finalName;
        };
        std::vector<Item> items;
        for (const RowId id : rows)
            items.push_back({valueFor(mode, id), valueFor(mode2, id), text::toUtf8(context.finalName(id))});
        const auto isOrder = [](int one) { return one >= 0 && one < noOrder; };
        if (isOrder(mode) || isOrder(mode2))
            std::reverse(items.begin(), items.end()); // by hand: the last first
        const auto before = [](int order, const Value& a, const Value& b) {
            return order == 12 || (order < 12 && order % 2 == 1) ? b < a : a < b;
        };
        std::stable_sort(items.begin(), items.end(), [&](const Item& a, const Item& b) {
            return a.first != b.first ? before(mode, a.first, b.first) : before(mode2, a.second, b.second);
        });
        for (std::size_t i = 0; i < items.size(); ++i)
            ASSERT_EQ(items[i].finalName, std::to_string(i + 1));
    }

    TemporaryFolder folder;
    EngineTestHost host{GetParam() == 0 ? ItemStore::Options{}
                                        : EngineTestHost::inFile(folder.path(), GetParam())};
    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};
    std::vector<RowId> rows;
    std::map<RowId, double> places; ///< in the random order
};

INSTANTIATE_TEST_SUITE_P(Budgets, SortedRanksTest, ::testing::Values(0, 64U << 20, 1U << 20));

TEST_P(SortedRanksTest, AreThoseOfAPlainSort) {
    host.actionList.setAutomaticSorting(false); // an order by hand lasts
    makeRows(200);
    for (int mode = -1; mode <= noOrder; ++mode) {
        for (const int mode2 : {0, 3, 6, 11, 99})
            expectRanks(mode, mode2);
    }
}

/// So many rows that a pass commits and pages on its way.
TEST_P(SortedRanksTest, AreKeptInALongPass) {
    host.actionList.setAutomaticSorting(false);
    makeRows(24000);
    expectRanks(12, 0);
}

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
            context.change(id).loaded = RowValues::all;
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
    const TemporaryFolder folder;
    folder.write("1");
    folder.write("2");
    ConflictBench bench;
    const RowId parent = bench.insert(folder.path(), "1>x 2>y /d>d");
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

class SaveListTest : public StageTest {
  protected:
    std::string save(int format, bool onlyAffected) {
        host.saveList(format, onlyAffected, folder.path("list.txt"));
        return folder.read("list.txt");
    }
};

TEST_F(SaveListTest, WritesTheFormats) {
    EXPECT_EQ(save(0, false), "") << "without items";
    host.add({folder.write("b/B"), folder.write("b/a")});
    setSteps(host, "Make uppercase");
    host.preview();
    struct Case {
        int format;
        bool onlyAffected;
        std::string text;
    };
    const Case cases[] = {
        {0, false, "B\tB\na\tA\n"},
        {1, false, "B\nA\n"},
        {2, false, folder.path("b/B") + "\tB\n" + folder.path("b/a") + "\tA\n"},
        {0, true, "a\tA\n"},
        {1, true, "A\n"},
        {2, true, folder.path("b/a") + "\tA\n"},
        {3, false, ""},
        {-1, false, ""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(save(test.format, test.onlyAffected), test.text) << test.format << test.onlyAffected;
    EXPECT_EQ(folder.tree().count("b/a"), 1U) << "nothing is renamed";
}

TEST_F(SaveListTest, SettlesConflictsFirstAndFollowsTheFilter) {
    host.add({folder.write("1"), folder.write("2"), folder.makeFolder("3")});
    setAll(host, "previewConflictResolution=0 processFolders=0");
    setSteps(host, "Completely rename newName=x");
    host.preview();
    EXPECT_EQ(save(0, false), "1\txa\n2\txb\n");
}

TEST_F(SaveListTest, NamesArePrecomposedAndBytesAndLinksStay) {
    host.add({folder.write("e\u0301"), folder.write("\xFFz"), folder.write("tab\tin\nname")});
    host.preview();
    folder.write("real.txt", "old");
    (void)folder.link("list.txt", "real.txt");
    EXPECT_EQ(save(1, true), "");
    EXPECT_EQ(save(1, false), "\u00e9\ntab\tin\nname\n\xFFz\n");
    EXPECT_EQ(folder.read("real.txt"), folder.read("list.txt"));
    EXPECT_EQ(folder.kind("list.txt"), FileStatus::Kind::link);
}

TEST_F(SaveListTest, AFailureIsToldAndTheOldFileStays) {
    const std::string list = folder.write("list.txt", "old");
    host.add({folder.write("a")});
    host.preview();
    {
        FailingFileSystem files;
        files.failKind(FileCall::write, ENOSPC);
        EXPECT_EQ(save(0, false), "old");
        EXPECT_EQ(host.events.back(), "showFileListNotSaved " + list + ": No space left on device");
    }
    BrokenHost broken(folder.path());
    broken.host.saveList(0, false, list);
    EXPECT_TRUE(broken.host.events.back().starts_with("showFileListNotSaved " + list + ": segment "));
    EXPECT_EQ(folder.read("list.txt"), "old");
}

} // namespace
} // namespace tavrin::test
