#include "store/contexts/StoreContext.h"

#include "store/StoreTestData.h"
#include "store/rows/FileMO.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace tavrin::test {
namespace {

class StoreContextTest : public testing::TestWithParam<Backing> {
  protected:
    TemporaryFolder folder;
    ItemStore store{optionsFor(GetParam(), folder.path())};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
    StoreContext other{store, StoreContext::MergePolicy::contextWins};

    /// Marks what the request yields, batch by batch, until nothing is left; the number of rows.
    std::size_t markAll(
        const FetchRequest& request, PassMarker marker, const std::function<void()>& afterBatch = [] {}) {
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

TEST_P(StoreContextTest, KeepsEveryKindOfName) {
    struct Case {
        std::string component;
        std::u16string name;
    };
    const std::vector<Case> cases = {
        {"plain.txt", u"plain.txt"},
        {"a:b", u"a/b"},
        {"caf\xC3\xA9", u"café"},
        {"caf\xE9", {u'c', u'a', u'f', char16_t(0xDCE9)}},
    };
    const RowId ghost = context.insertGhostNode("/x/y");
    std::vector<RowId> rows;
    for (const Case& one : cases)
        rows.push_back(context.insertFile(ghost, one.component, true, false, 0));
    context.commit();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(other.name(rows[i]), cases[i].name);
        EXPECT_EQ(other.finalName(rows[i]), cases[i].name);
        EXPECT_EQ(other.fullPath(rows[i]), "/x/y/" + cases[i].component);
        EXPECT_EQ(other.fileWithPath("/x/y/" + cases[i].component), rows[i]);
    }
    EXPECT_EQ(other.fullPath(ghost), "/x/y");
    EXPECT_EQ(other.name(ghost), u"y");
}

TEST_P(StoreContextTest, KeepsEveryFinalNameToTheUnit) {
    const RowId ghost = fillFolder(context, 1);
    const RowId row = context.children(ghost).front();
    const std::vector<std::u16string> names = {
        u"",
        u"file 1.txt",
        u"longer than before.txt",
        u"a/b:c",
        {u'x', char16_t(0xD83D)}, // half of a pair
        {char16_t(0xDCE9)},
        {char16_t(0xDCC3), char16_t(0xDCA9)},
        std::u16string(3000, u'é'),
        u"short",
    };
    for (const std::u16string& name : names) {
        context.setFinalName(row, name);
        EXPECT_EQ(context.finalName(row), name);
        context.commit();
        context.reset();
        EXPECT_EQ(context.finalName(row), name);
    }
    context.setFinalNameToName(row);
    EXPECT_EQ(context.finalName(row), u"file 1.txt");
}

TEST_P(StoreContextTest, ShowsChangesToOthersOnlyAfterTheCommit) {
    const RowId ghost = fillFolder(context, 3);
    const RowId row = context.children(ghost).front();
    context.change(row).depth = 7;
    context.setFinalName(row, u"new");
    context.setStageFlag(row, 42);
    context.change(row).diff = true;
    EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), 1u);
    EXPECT_EQ(other.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), 0u);
    EXPECT_EQ(other.row(row).depth, 0);

    context.reset();
    EXPECT_EQ(context.row(row).depth, 0);
    EXPECT_EQ(context.finalName(row), u"file 1.txt");
    EXPECT_EQ(context.stageFlag(row), unmarked);

    context.change(row).depth = 8;
    context.commit();
    other.reset();
    EXPECT_EQ(other.row(row).depth, 8);
}

TEST_P(StoreContextTest, CommitsOnlyWhatAContextHasChanged) {
    const RowId row = context.children(fillFolder(context, 2)).front();
    context.change(row).depth = 5;
    context.change(row).root = true;
    other.change(row).manualOrder = 99;
    other.commit();
    context.commit();
    context.reset();
    EXPECT_EQ(context.row(row).depth, 5);
    EXPECT_EQ(context.row(row).manualOrder, 99);
    EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::root)), 1u);
}

TEST_P(StoreContextTest, WritingToADeletedRowChangesNothing) {
    const RowId ghost = fillFolder(context, 2);
    const RowId row = context.children(ghost).front();
    context.setFinalName(row, u"late");
    other.deleteRow(row);
    other.commit();
    context.commit();
    EXPECT_FALSE(context.exists(row));
    context.reset();
    EXPECT_EQ(context.fullPath(row), "");
    EXPECT_EQ(context.children(ghost).size(), 1u);
}

TEST_P(StoreContextTest, DeletesByCascadeAndFindsFoldersByPath) {
    const RowId ghost = context.insertGhostNode("/t");
    const RowId sub = context.insertFile(ghost, "sub", true, true, 0);
    EXPECT_EQ(context.nodeWithPath("/t/sub"), sub) << "rows that are not committed yet are found";
    const RowId deep = context.insertFile(sub, "deep", false, true, 1);
    for (int i = 0; i < 1000; ++i)
        context.insertFile(deep, "f" + std::to_string(i), false, false, 2 + i);
    const RowId sibling = context.insertFile(ghost, "z", true, false, 5000);
    context.commit();
    EXPECT_EQ(other.nodeWithPath("/t/sub/deep"), deep);
    EXPECT_EQ(other.childCount(deep), 1000u);

    context.deleteRow(sub);
    context.commit();
    EXPECT_EQ(context.count(FetchEntity::node, Predicate::always()), 2u);
    EXPECT_EQ(context.children(ghost), std::vector<RowId>{sibling});
    EXPECT_EQ(context.childCount(ghost), 1u);
    EXPECT_EQ(context.nodeWithPath("/t/sub/deep"), noRow);
}

TEST_P(StoreContextTest, BulkDeletionEmptiesTheStoreInBatches) {
    fillFolder(context, 9000);
    std::vector<std::size_t> batches;
    while (const std::size_t count = context.deleteNodes(2000)) {
        batches.push_back(count);
        context.commit();
        context.reset();
    }
    EXPECT_EQ(batches, (std::vector<std::size_t>{2000, 2000, 2000, 2000, 1001}));
    EXPECT_EQ(context.count(FetchEntity::node, Predicate::always()), 0u);
    const RowId ghost = fillFolder(context, 10);
    EXPECT_EQ(context.children(ghost).size(), 10u);
}

TEST_P(StoreContextTest, APassByMarkerSeesEveryRowOnceWhateverIsInsertedMeanwhile) {
    const RowId ghost = fillFolder(context, 9500);
    bool hasInserted = false;
    const auto insertOne = [&] {
        if (!std::exchange(hasInserted, true))
            other.insertFile(ghost, "late", false, false, 0);
        other.commit();
    };
    EXPECT_EQ(markAll({FetchEntity::file, Predicate::notMarked(7), {}, 1000}, 7, insertOne), 9501u);
}

TEST_P(StoreContextTest, PassesGoOnWhereTheyStoppedAndWrapRound) {
    fillFolder(context, 3000);
    struct Case {
        std::vector<SortDescriptor> order;
        std::u16string first, second;
        PassMarker marker;
    };
    for (const Case& one : {Case{{}, u"file 1.txt", u"file 1001.txt", 8},
                            Case{{{NodeKey::name, false}}, u"file 999.txt", u"file 1899.txt", 9}}) {
        const FetchRequest request{FetchEntity::file, Predicate::notMarked(one.marker), one.order, 1000};
        const std::vector<RowId> first = context.fetch(request);
        ASSERT_EQ(first.size(), 1000u);
        EXPECT_EQ(context.name(first.front()), one.first);
        // Only half of the batch is marked: the rest must come again after all others.
        for (std::size_t i = 0; i < 500; ++i)
            context.setStageFlag(first[i], one.marker);
        context.commit();
        context.reset();
        const std::vector<RowId> second = context.fetch(request);
        ASSERT_EQ(second.size(), 1000u);
        EXPECT_EQ(context.name(second.front()), one.second);
        EXPECT_EQ(markAll(request, one.marker), 2500u);
    }
}

TEST_P(StoreContextTest, AWalkOutOfIdOrderSeesMarksChangesAndDeletions) {
    const RowId ghost = context.insertGhostNode("/w");
    constexpr int count = 5000;
    for (int i = 0; i < count; ++i) // later ids have earlier names
        context.insertFile(ghost, "n" + std::to_string(99999 - i), true, false, i);
    context.commit();
    context.reset();
    const FetchRequest request{FetchEntity::file, Predicate::notMarked(5), {{NodeKey::name, true}}, 1000};
    std::vector<RowId> batch = context.fetch(request);
    ASSERT_EQ(batch.size(), 1000u);
    EXPECT_EQ(context.component(batch[0]), "n95000");
    EXPECT_EQ(context.row(batch[1]).manualOrder, count - 2);

    context.setStageFlag(batch[0], 5);
    EXPECT_EQ(context.stageFlag(batch[0]), 5);
    context.reset();
    EXPECT_EQ(context.stageFlag(batch[0]), unmarked) << "a mark that was not committed is dropped";

    other.setFinalName(batch[2], u"changed");
    other.setRegexColumns(batch[2], {u"1", u"", {char16_t(0xD83D)}, std::u16string(400, u'x'), u"", u"6"});
    other.deleteRow(batch[3]);
    other.commit();
    context.reset();
    EXPECT_EQ(context.finalName(batch[2]), u"changed");
    const StoreContext::RegexColumns columns = context.regexColumns(batch[2]).value();
    EXPECT_EQ(columns[2] + columns[5] + columns[4], (std::u16string{0xD83D, u'6'}));
    EXPECT_EQ(columns[3].size(), 400u);
    EXPECT_EQ(context.regexColumns(batch[1]), std::nullopt);
    EXPECT_EQ(context.fullPath(batch[3]), "");

    EXPECT_EQ(markAll(request, 5), std::size_t{count - 1});
}

TEST_P(StoreContextTest, RowsStagedFarApartAreCommittedOnTheWayWhereTheyWouldPage) {
    const RowId ghost = fillFolder(context, 120000);
    const std::vector<RowId> rows = context.children(ghost);
    std::size_t changed = 0;
    bool hasCommitted = false;
    for (std::size_t i = 0; i < rows.size() && !hasCommitted; i += 300, ++changed) {
        context.change(rows[i]).depth = 1;
        hasCommitted = context.commitIfMuchIsStaged();
    }
    EXPECT_EQ(hasCommitted, GetParam() != Backing::memory);
    EXPECT_EQ(context.hasChanges(), !hasCommitted);
    EXPECT_EQ(other.row(rows[0]).depth, hasCommitted ? 1 : 0);
}

TEST_P(StoreContextTest, ReadsMetadataOnceAlsoWhenThereIsNone) {
    const RowId ghost = fillFolder(context, 1);
    const RowId row = context.children(ghost).front();
    int reads = 0;
    const auto reader = [&reads](const std::string& path) {
        EXPECT_EQ(path, "/tree/file 1.txt");
        ++reads;
        return FileMetadata{};
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
    EXPECT_EQ(reads, 1);
}

} // namespace
} // namespace tavrin::test
