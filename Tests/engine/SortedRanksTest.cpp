#include "RenameBench.h"
#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace tavrin::test {
namespace {

constexpr int noOrder = 14;

/// Numbers given by the naming stage to rows made straight in the store, whose values repeat and lie far from
/// the order of the ids; in memory, in a file, and in one that keeps two segments in memory.
class SortedRanksTest : public ::testing::TestWithParam<std::size_t> {
  protected:
    SortedRanksTest() {
        host.set("processSubfolders", 1);
        host.set("processFolders", 0);
        host.actionList.setAutomaticSorting(false); // an order by hand lasts
    }

    void makeRows(int count) {
        std::mt19937 random(20261121);
        const auto one = [&random](auto... values) {
            const std::array choice{values...};
            return choice[random() % choice.size()];
        };
        std::vector<RowId> folders{context.insertGhostNode("/r")};
        for (int i = 0; i < count; ++i) {
            const bool isFolder = i % 10 == 0;
            const RowId id =
                context.insertFile(folders[random() % folders.size()],
                                   one("x", "y", "x9", "x10", "x09", "X:", "\xC3\xBC", isFolder ? "d" : "z") +
                                       std::string(1, 'a'),
                                   false, isFolder, count - i);
            NodeRow& row = context.change(id);
            row.modDate = one(-1.5, 0.0, 1.5);
            row.crDate = one(1e9, 2e9, 2e9 + 1e-4);
            row.exif = one(0.0, -63114076800.0, 7e8);
            row.size = one(0U, 9U, 10U, 1U << 31);
            row.sortingInformationLoaded = true;
            if (isFolder && folders.size() < 9)
                folders.push_back(id);
            rows.push_back(id);
        }
        context.commit();
        context.reset();
    }

    std::vector<std::string> number(int mode, int mode2, bool byFolder) {
        setSteps(host, fmt::format("Produce numbered list prefix= padding=1 sortingMode={} sortingMode2={} "
                                   "sortEachFolderSeparately={:d}",
                                   mode, mode2, byFolder));
        ComputeProvisionalNamesStage stage(host.engine);
        stage.setSettings(host.settings.values());
        stage.setManagedObjectContext(&context);
        EXPECT_TRUE(stage.process());
        context.commit();
        context.reset();
        std::vector<std::string> names;
        for (const RowId id : rows)
            names.push_back(text::toUtf8(context.finalName(id)));
        return names;
    }

    /// The value that a mode sorts by, and nothing for a mode without an order.
    std::pair<double, std::string> valueFor(int mode, RowId id) {
        const NodeRow row = context.row(id);
        const std::u16string name = context.name(id);
        const std::pair<double, std::string> values[] = {
            {0, text::toUtf8(name)},
            {row.modDate, ""},
            {row.crDate, ""},
            {row.size, ""},
            {row.exif, ""},
            {0, text::toUtf8(KQStringUtilities::expandNumberBlocks(name))},
            {mode == 12 ? places.at(id) : row.manualOrder, ""},
        };
        return mode < 0 || mode >= noOrder ? std::pair(0.0, std::string()) : values[mode / 2];
    }

    /// The final names that a plain stable sort would give, by place in `rows`.
    std::vector<std::string> expected(int mode, int mode2, bool byFolder) {
        for (const RowId row : context.fetch({FetchEntity::file, {}, {{NodeKey::random, true}}, 0}))
            places.emplace(row, places.size());
        struct Item {
            std::pair<double, std::string> first, second;
            std::size_t place;
            RowId parent;
            bool isFolder;
        };
        std::vector<Item> items;
        std::vector<std::string> names;
        for (const RowId id : rows) {
            const NodeRow row = context.row(id);
            items.push_back({valueFor(mode, id), valueFor(mode2, id), names.size(),
                             byFolder ? row.parent : noRow, row.treatAsFolder});
            names.push_back(text::toUtf8(context.name(id)));
        }
        const auto isOrder = [](int one) { return one >= 0 && one < noOrder; };
        if (isOrder(mode) || isOrder(mode2))
            std::reverse(items.begin(), items.end()); // by hand: the last first
        const auto before = [](int order, const auto& a, const auto& b) {
            return order == 12 || (order < 12 && order % 2 == 1) ? b < a : a < b;
        };
        std::stable_sort(items.begin(), items.end(), [&](const Item& a, const Item& b) {
            return a.first != b.first ? before(mode, a.first, b.first) : before(mode2, a.second, b.second);
        });
        std::map<RowId, int> counts;
        for (const Item& item : items) {
            if (!item.isFolder)
                names[item.place] = std::to_string(++counts[item.parent]);
        }
        return names;
    }

    TemporaryFolder folder;
    EngineTestHost host{GetParam() == 0 ? ItemStore::Options{}
                                        : EngineTestHost::inFile(folder.path(), GetParam())};
    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};
    std::vector<RowId> rows;
    std::map<RowId, double> places; ///< in the random order
};

INSTANTIATE_TEST_SUITE_P(Budgets, SortedRanksTest, ::testing::Values(0, 64U << 20, 1U << 20));

TEST_P(SortedRanksTest, EveryModeAndTieBreakOrdersAsAPlainSortDoes) {
    makeRows(200);
    for (int mode = -1; mode <= noOrder; ++mode) {
        for (const int mode2 : {0, 3, 6, 11, 99}) {
            for (const bool byFolder : {false, true}) {
                SCOPED_TRACE(std::to_string(mode) + ", " + std::to_string(mode2) +
                             (byFolder ? " by folder" : ""));
                EXPECT_EQ(number(mode, mode2, byFolder), expected(mode, mode2, byFolder));
            }
        }
    }
}

/// So many rows that a pass commits and pages on its way.
TEST_P(SortedRanksTest, ALongPassKeepsRanks) {
    makeRows(24000);
    for (const bool byFolder : {false, true})
        EXPECT_EQ(number(12, 0, byFolder), expected(12, 0, byFolder));
}

} // namespace
} // namespace tavrin::test
