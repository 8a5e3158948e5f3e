#include "RenameBench.h"
#include "common/Testing.h"
#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "support/text/KQStringUtilities.h"

namespace tavrin::test {
namespace {

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
            row.sortingInformationLoaded = true;
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

} // namespace
} // namespace tavrin::test
