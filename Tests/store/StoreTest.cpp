#include "common/FailingVfs.h"
#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/TextRegion.h"
#include "store/queries/FilterManager.h"
#include "store/rows/FileMO.h"
#include "store/sources/SourceItemManager.h"

namespace tavrin::test {
namespace {

constexpr int manyRows = 20000;

/// Renames all rows in batches, as a stage does; none is missing then.
void renameAll(StoreContext& context, RowId ghost, const std::u16string& suffix) {
    const auto data = [](RowId row) {
        return std::vector<std::uint8_t>(100, static_cast<std::uint8_t>(row));
    };
    const std::vector<RowId> rows = context.children(ghost);
    ASSERT_EQ(rows.size(), std::size_t{manyRows});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        context.setFinalName(rows[i], context.name(rows[i]) + suffix);
        context.change(rows[i]).diff = true;
        context.setRegexColumns(rows[i], {context.name(rows[i]), suffix, u"", u"", u"", u""});
        context.setTagData(rows[i], {data(rows[i])});
        if (i % 1000 == 999) {
            context.commit();
            context.refault();
        }
    }
    context.reset();
    EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), std::size_t{manyRows});
    for (std::size_t i = 0; i < rows.size(); i += 97) {
        const std::u16string name = context.name(rows[i]);
        EXPECT_EQ(context.finalName(rows[i]), name + suffix);
        const auto columns = context.regexColumns(rows[i]).value();
        EXPECT_EQ(columns[0] + columns[1] + columns[5], name + suffix);
        ASSERT_EQ(context.tagData(rows[i]), PropertyData{data(rows[i])});
    }
}

TEST(ItemStoreTest, WhicheverWriteFailsNothingIsLostAndItIsToldOnce) {
    FailingVfs vfs;
    TemporaryFolder folder;
    int writes = 1;
    for (int k = 1; k <= writes; k += 1 + writes / 20) {
        for (const bool isFullThen : {false, true}) {
            SCOPED_TRACE(k);
            ItemStore::Options options = optionsFor(Backing::tightFile, folder.path());
            options.vfs = vfs.name();
            int told = 0;
            options.fileRefused = [&](const std::string& reason) {
                ++told;
                EXPECT_NE(reason.find("disk is full"), std::string::npos) << reason;
            };
            ItemStore store(options);
            StoreContext context(store, StoreContext::MergePolicy::contextWins);
            const bool counts = k == 1 && !isFullThen; // the first round
            vfs.failWrite(counts ? 0 : k, isFullThen);
            const RowId ghost = fillFolder(context, manyRows);
            renameAll(context, ghost, u"!");
            if (counts)
                writes = std::max(vfs.writes(), 2);
            EXPECT_EQ(told, counts ? 0 : 1);
            renameAll(context, ghost, u"?");
        }
    }
}

TEST(ItemStoreTest, TwoInstancesInOneFolderNeverMeetAndLeaveNothing) {
    TemporaryFolder folder;
    const auto options = optionsFor(Backing::tightFile, folder.path());
    ItemStore second(options);
    StoreContext secondContext(second, StoreContext::MergePolicy::contextWins);
    RowId secondGhost = fillFolder(secondContext, 100, "/few");
    EXPECT_TRUE(folder.tree().empty()) << "what fits into memory needs no file";
    secondContext.deleteRow(secondGhost);
    {
        ItemStore first(options);
        const ItemStore unused(options);
        StoreContext firstContext(first, StoreContext::MergePolicy::contextWins);
        const RowId firstGhost = fillFolder(firstContext, manyRows, "/first");
        secondGhost = fillFolder(secondContext, manyRows, "/second");
        renameAll(firstContext, firstGhost, u".1");
        renameAll(secondContext, secondGhost, u".2");
    }
    EXPECT_EQ(folder.tree().size(), 1u) << "the second one's file and nothing else";
    EXPECT_TRUE(second.migrateToMemory());
    EXPECT_TRUE(folder.tree().empty());
    EXPECT_FALSE(second.migrateToMemory()) << "it is there";
}

TEST(ItemStoreTest, AStartSweepsWhatEarlierProcessesLeft) {
    TemporaryFolder folder;
    const pid_t dead = ::fork();
    if (dead == 0)
        ::_exit(0);
    ASSERT_EQ(::waitpid(dead, nullptr, 0), dead);
    folder.write(fmt::format("tvrn9.db.{}.00c0ffee", dead), "x");
    folder.write(fmt::format("tvrn9.db.{}.00c0ffee", ::getpid()), "of one that lives");
    folder.write("tvrn9.db", "left by a crash, and no database");
    folder.write("tvrn9.db.note", "the user's own");
    const ItemStore store(optionsFor(Backing::file, folder.path()));
    EXPECT_EQ(store.openError(), std::nullopt);
    EXPECT_EQ(folder.tree().size(), 2u);
    EXPECT_EQ(folder.read("tvrn9.db.note"), "the user's own");
}

TEST(ItemStoreTest, TextsThatAreCutAreRefused) {
    TextRegion region(3);
    region.set(0, {"abc", false});
    region.set(2, {"de", true});
    std::string blob;
    region.appendBlob(blob);
    for (std::size_t size = 0; size <= blob.size(); ++size)
        EXPECT_EQ(TextRegion().readBlob(std::string_view(blob).substr(0, size), 3), size == blob.size())
            << size;
}

TEST(ItemStoreTest, AFolderThatTakesNoFileMakesAStoreInMemory) {
    TemporaryFolder folder;
    ItemStore store(optionsFor(Backing::file, folder.path("not there")));
    ASSERT_TRUE(store.openError());
    EXPECT_NE(store.openError()->find("No such file"), std::string::npos);
    EXPECT_EQ(store.kind(), ItemStore::Kind::memory);
}

class StoreContextTest : public testing::TestWithParam<Backing> {
  protected:
    TemporaryFolder folder;
    ItemStore store{optionsFor(GetParam(), folder.path())};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
    StoreContext other{store, StoreContext::MergePolicy::contextWins};

    /// Marks what the request yields, batch by batch, until nothing is left; the number of rows.
    std::size_t markAll(const FetchRequest& request, PassMarker marker,
                        const std::function<void()>& afterBatch) {
        std::size_t seen = 0;
        for (std::vector<RowId> batch; !(batch = context.fetch(request)).empty(); seen += batch.size()) {
            for (const RowId row : batch) {
                EXPECT_NE(context.stageFlag(row), marker);
                context.setStageFlag(row, marker);
            }
            context.commit();
            context.reset();
            afterBatch();
        }
        return seen;
    }
};

INSTANTIATE_TEST_SUITE_P(Backings, StoreContextTest,
                         testing::Values(Backing::memory, Backing::file, Backing::tightFile));

TEST_P(StoreContextTest, CommitsOnlyWhatAContextHasChangedAndNothingOfADeletedRow) {
    const RowId ghost = fillFolder(context, 2);
    const std::vector<RowId> rows = context.children(ghost);
    for (const RowId row : rows) {
        context.change(row).depth = 5;
        context.change(row).root = true;
        context.setFinalName(row, u"late");
    }
    other.change(rows[0]).manualOrder = 99;
    other.deleteRow(rows[1]);
    other.commit();
    context.commit();
    context.reset();
    EXPECT_EQ(context.row(rows[0]).depth, 5);
    EXPECT_EQ(context.row(rows[0]).manualOrder, 99);
    EXPECT_EQ(context.fetch({FetchEntity::file, Predicate::isTrue(NodeKey::root), {}, 0}),
              std::vector<RowId>{rows[0]});
    EXPECT_EQ(context.fullPath(rows[1]), "");
    EXPECT_EQ(context.children(ghost), std::vector<RowId>{rows[0]});
}

TEST_P(StoreContextTest, BulkDeletionEmptiesTheStoreInBatches) {
    fillFolder(context, 9000);
    for (const std::size_t batch : {2000, 2000, 2000, 2000, 1001, 0}) {
        EXPECT_EQ(context.deleteNodes(2000), batch);
        context.commit();
        context.reset();
    }
    EXPECT_EQ(context.count(FetchEntity::node, Predicate::always()), 0u);
    EXPECT_EQ(context.children(fillFolder(context, 10)).size(), 10u);
}

TEST_P(StoreContextTest, PassesGoOnWhereTheyStoppedWrapRoundAndSeeWhatIsInsertedMeanwhile) {
    const RowId ghost = fillFolder(context, 3000);
    bool hasInserted = false;
    const auto insertOne = [&] {
        if (!std::exchange(hasInserted, true))
            other.insertFile(ghost, "a late one", false, false, 0);
        other.commit();
    };
    for (const bool byName : {false, true}) {
        FetchRequest request{FetchEntity::file, Predicate::notMarked(8 + byName), {}, 1000};
        if (byName)
            request.order = {{NodeKey::name, false}};
        const std::vector<RowId> first = context.fetch(request);
        ASSERT_EQ(first.size(), 1000u);
        EXPECT_EQ(context.name(first.front()), byName ? u"file 999.txt" : u"file 1.txt");
        // Only half of the batch is marked: the rest must come again after all others.
        for (std::size_t i = 0; i < 500; ++i)
            context.setStageFlag(first[i], 8 + byName);
        context.commit();
        context.reset();
        const std::vector<RowId> second = context.fetch(request);
        ASSERT_EQ(second.size(), 1000u);
        EXPECT_EQ(context.name(second.front()), byName ? u"file 2799.txt" : u"file 1001.txt");
        EXPECT_EQ(markAll(request, 8 + byName, insertOne), 2501u);
    }
}

TEST_P(StoreContextTest, RowsStagedFarApartAreCommittedOnTheWayWhereTheyWouldPage) {
    const RowId ghost = fillFolder(context, 120000);
    const std::vector<RowId> rows = context.children(ghost);
    bool hasCommitted = false;
    for (std::size_t i = 0; i < rows.size() && !hasCommitted; i += 300) {
        context.change(rows[i]).depth = 1;
        hasCommitted = context.commitIfMuchIsStaged();
    }
    EXPECT_EQ(hasCommitted, GetParam() != Backing::memory);
    EXPECT_EQ(context.hasChanges(), !hasCommitted);
    EXPECT_EQ(other.row(rows[0]).depth, hasCommitted ? 1 : 0);
}

TEST_P(StoreContextTest, ReadsMetadataOnceAlsoWhenThereIsNone) {
    const RowId ghost = fillFolder(context, 2);
    int reads = 0;
    for (const RowId row : context.children(ghost)) {
        const PropertyDictionary tags =
            reads == 0 ? PropertyDictionary{{"Title", u"Sea"}} : PropertyDictionary{};
        const auto reader = [&](const std::string& path) {
            EXPECT_EQ(path, context.fullPath(row));
            ++reads;
            return FileMetadata{tags};
        };
        FileMO failing(context, row);
        failing.loadTagDictionary([](const std::string&) { return FileMetadata{.failure = "gone"}; });
        EXPECT_EQ(failing.tagFailure(), "gone");
        FileMO first(context, row); // a failure is not kept
        first.loadTagDictionary(reader);
        first.loadTagDictionary(reader);
        context.commit();
        FileMO second(other, row);
        second.loadTagDictionary(reader);
        EXPECT_EQ(second.tagDictionary(), tags);
    }
    EXPECT_EQ(reads, 2);
}

/// A store whose commits are merged into a main context, as the application does it.
class MergeTest : public testing::Test {
  protected:
    MergeTest() {
        store.setDidSaveHandler([this](const StoreChanges& changes) {
            std::scoped_lock lock(main.mutex());
            main.merge(changes);
            committer = changes.committer;
        });
        ghost = fillFolder(worker, 1000);
        rows = main.children(ghost);
    }

    ItemStore store{ItemStore::Options{}};
    StoreContext main{store, StoreContext::MergePolicy::storeWins};
    StoreContext worker{store, StoreContext::MergePolicy::contextWins};
    const StoreContext* committer = nullptr;
    RowId ghost = noRow;
    std::vector<RowId> rows;
};

TEST_F(MergeTest, WhatTheStoreHoldsWinsOverThePendingChangeOfTheMainContext) {
    worker.setFinalName(rows[3], u"third");
    worker.commit();
    EXPECT_EQ(main.finalName(rows[3]), u"third");
    main.change(rows[1]).manualOrder = 500;
    main.change(rows[2]).manualOrder = 501;
    worker.change(rows[0]).depth = 3;
    worker.change(rows[1]).depth = 3;
    worker.commit();
    EXPECT_EQ(committer, &worker);
    EXPECT_EQ(main.finalName(rows[3]), u"third") << "in a block with pending changes";
    main.commit();
    EXPECT_EQ(committer, &main) << "so that it does not merge its own";
    EXPECT_EQ(main.row(rows[1]).manualOrder, 2) << "its row had moved on";
    EXPECT_EQ(main.row(rows[1]).depth, 3);
    EXPECT_EQ(main.row(rows[2]).manualOrder, 501);
    worker.deleteRow(rows[4]);
    worker.commit();
    std::string path = "the one before";
    main.fullPath(rows[4], path);
    EXPECT_EQ(path, "");
}

TEST(ItemStoreTest, OrdersRowsByAllThatAListShowsAndKnowsTheirFolders) {
    ItemStore store(ItemStore::Options{});
    StoreContext context(store, StoreContext::MergePolicy::contextWins);
    struct {
        const char* folder;
        const char* name;
        const char16_t* finalName;
        NameProblem problem;
    } const rows[] = {{"/r/b c", "1", u"x10", NameProblem::none},
                      {"/r/b/a", "2", u"x9", NameProblem::link},
                      {"/r/b", "3", u"x9", NameProblem::empty},
                      {"/r/b10", "4", u"4", NameProblem::none},
                      {"/r/b9", "5", u"y", NameProblem::none}};
    std::map<std::string, RowId> folders;
    for (const auto& [folder, name, finalName, problem] : rows) {
        if (!folders.contains(folder))
            folders[folder] = context.insertGhostNode(folder);
        const RowId row = context.insertFile(folders[folder], name, true, false, 0);
        context.setFinalName(row, finalName);
        context.change(row).problem = problem;
    }
    context.commit();
    const auto names = [&](std::vector<SortDescriptor> order) {
        std::string result;
        for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), std::move(order)}))
            result += context.component(row);
        return result;
    };
    EXPECT_EQ(names({{NodeKey::finalName}, {NodeKey::name, false}}), "43215");
    EXPECT_EQ(names({{NodeKey::finalName, false}, {NodeKey::name}}), "51234");
    EXPECT_EQ(names({{NodeKey::folder}}), "32154");
    EXPECT_EQ(names({{NodeKey::problem}, {NodeKey::name}}), "32145");
    const auto foldersOf = [&](const Predicate& predicate) {
        return context.foldersOf({FetchEntity::file, predicate, {}});
    };
    EXPECT_EQ(foldersOf(Predicate::always()), (RowFolders{5, "/r"}));
    EXPECT_EQ(foldersOf(Predicate::isTrue(NodeKey::problem)), (RowFolders{2, "/r/b"}));
    EXPECT_EQ(foldersOf(Predicate::isTrue(NodeKey::treatAsFolder)), RowFolders());
}

TEST_F(MergeTest, OnlyWhatAListDependsOnVoidsIt) {
    const RowId row = rows[5];
    const FetchRequest byDate{FetchEntity::file, Predicate::isTrue(NodeKey::root), {{NodeKey::modDate}}};
    const FetchRequest byNewName{FetchEntity::file, Predicate::always(), {{NodeKey::finalName}}};
    const std::tuple<const char*, std::function<void()>, bool, bool> cases[] = {
        {"final name", [&] { worker.setFinalName(row, u"x"); }, false, true},
        {"diff", [&] { worker.change(row).diff = true; }, false, true},
        {"marker", [&] { worker.setStageFlag(row, 4); }, false, false},
        {"depth", [&] { worker.change(row).depth = 4; }, false, false},
        {"date", [&] { worker.change(row).modDate = 4; }, true, false},
        {"root", [&] { worker.change(row).root = !worker.row(row).root; }, true, false},
        {"insert", [&] { worker.insertFile(ghost, "new", false, false, 0); }, true, true},
        {"deletion", [&] { worker.deleteRow(row); }, true, true},
    };
    for (const auto& [name, change, isVoid, isVoidByName] : cases) {
        const std::pair before{main.versionOf(byDate), main.versionOf(byNewName)};
        change();
        worker.commit();
        EXPECT_EQ(main.versionOf(byDate) != before.first, isVoid) << name;
        EXPECT_EQ(main.versionOf(byNewName) != before.second, isVoidByName) << name;
        worker.reset();
    }
}

TEST_F(MergeTest, CountersAndErrorsReachTheMainContext) {
    worker.changeEngineControl().numberOfFolders = 12;
    worker.insertProcessingError({"title", "message", "/p\xE9"});
    EXPECT_EQ(main.engineControl().numberOfFolders, 0);
    EXPECT_TRUE(main.processingErrors().empty());
    worker.commit();
    EXPECT_EQ(main.engineControl().numberOfFolders, 12);
    ASSERT_EQ(main.processingErrors().size(), 1u);
    EXPECT_EQ(main.processingErrors()[0].path, "/p\xE9");
    EXPECT_EQ(worker.deleteProcessingErrors(2000), 1u);
    EXPECT_EQ(worker.deleteProcessingErrors(2000), 0u);
    worker.commit();
    EXPECT_TRUE(main.processingErrors().empty());
}

TEST_F(MergeTest, AReaderNeverSeesHalfABatch) {
    std::atomic<bool> isOver{false};
    std::thread writer([&] {
        for (int round = 0; round < 60; ++round) {
            for (const RowId row : rows) {
                worker.change(row).depth = round;
                worker.setFinalName(row, round % 2 == 0 ? u"even" : u"odd");
            }
            worker.commit();
            worker.reset();
        }
        isOver = true;
    });
    while (!isOver) {
        std::scoped_lock lock(main.mutex());
        // Rows of one block are read together, so they must agree.
        const std::int32_t depth = main.row(rows[0]).depth;
        for (std::size_t i = 1; i < 100; ++i)
            ASSERT_EQ(main.row(rows[i]).depth, depth);
    }
    writer.join();
}

class SourceItemManagerTest : public testing::Test {
  protected:
    /// Puts a new file on the list and makes its row as reading does.
    RowId addAndRead(const std::string& name) {
        EXPECT_TRUE(manager.addSourceItem(folder.write(name)));
        RowId holder = context.nodeWithPath(folder.path());
        if (holder == noRow)
            holder = context.insertGhostNode(folder.path());
        const RowId row = context.insertFile(holder, name, true, false, 0);
        context.setSourceItemRead(folder.path(name), true, true);
        context.commit();
        return row;
    }
    /// The list in its order, with "+" behind what has been read.
    std::string list() {
        std::string names;
        for (const SourceItem& item : context.sourceItems())
            names += item.path.substr(folder.path().size() + 1) + (item.readInRoot ? "+ " : " ");
        return names;
    }

    TemporaryFolder folder;
    ItemStore store{ItemStore::Options{}};
    StoreContext context{store, StoreContext::MergePolicy::storeWins};
    SourceItemManager manager{[this]() -> StoreContext& { return context; }};
};

TEST_F(SourceItemManagerTest, KeepsItemsOutOfItems) {
    for (const char* name : {"a/b.txt", "a/sub/c.txt", "ab", "d/x"})
        folder.write(name);
    folder.makeFolder("e");
    folder.link("dangling", "nowhere");
    folder.link("linked", folder.path("e"));
    const std::pair<const char*, bool> cases[] = {
        {"a/sub/c.txt", true}, {"a", false},       {"a/sub", false}, {"a/b.txt", true},
        {"a/b.txt", false},    {"missing", false}, {"ab", true},     {"d", true},
        {"dangling", false},   {"linked", true},   {"e", true},
    };
    for (const auto& [name, isAdded] : cases)
        EXPECT_EQ(manager.addSourceItem(folder.path(name)), isAdded) << name;
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d")));
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d/deeper/still")));
    EXPECT_TRUE(manager.checkPathValidity(folder.path("a")));
    EXPECT_TRUE(manager.checkPathValidity("/"));
    EXPECT_EQ(list(), "a/sub/c.txt a/b.txt ab d linked e ");
}

TEST_F(SourceItemManagerTest, RemovesTheGhostWithItsLastChild) {
    const RowId one = addAndRead("one");
    const RowId two = addAndRead("two");
    const RowId ghost = context.row(one).parent;
    manager.removeItem(folder.path("not on the list"));
    manager.removeItem(folder.path("one"));
    EXPECT_FALSE(context.exists(one));
    EXPECT_TRUE(context.exists(ghost));
    manager.removeItem(folder.path("two"));
    EXPECT_FALSE(context.exists(two));
    EXPECT_FALSE(context.exists(ghost));
    EXPECT_TRUE(manager.isEmpty());
}

TEST_F(SourceItemManagerTest, AChangedItemGoesToTheEndAndIsUnread) {
    addAndRead("one");
    addAndRead("two");
    EXPECT_TRUE(manager.changeTo(folder.path("one"), folder.write("three")));
    EXPECT_EQ(list(), "two+ three ");
    manager.resetCache();
    EXPECT_EQ(list(), "two three ");
}

TEST_F(SourceItemManagerTest, TheFilterIsThreeSettings) {
    const RowId ghost = context.insertGhostNode("/g");
    context.insertFile(ghost, "file", true, false, 0);
    const RowId sub = context.insertFile(ghost, "folder", true, true, 1);
    const RowId inner = context.insertFile(sub, "inner", false, false, 2);
    context.insertFile(sub, "inner folder", false, true, 3);
    context.commit();
    for (unsigned bits = 0; bits < 8; ++bits) {
        const bool files = (bits & 1) != 0;
        const bool folders = (bits & 2) != 0;
        const bool subfolders = (bits & 4) != 0;
        const ItemFilter filter{files, folders, subfolders};
        const auto countOf = [&](const Predicate& one) { return context.count(FetchEntity::file, one); };
        const unsigned ofEachKind = subfolders ? 2 : 1;
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicate(filter)), ofEachKind * (files + folders));
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(filter)),
                  2 * ofEachKind);
        EXPECT_EQ(filter.admits(context.row(sub)), folders);
        EXPECT_EQ(filter.admits(context.row(inner)), files && subfolders);
    }
}

} // namespace
} // namespace tavrin::test
