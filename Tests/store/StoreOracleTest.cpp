#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/rows/NodeKey.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <utility>
#include <vector>

// Random work on the store against plain, slow evaluation.

namespace tavrin::test {
namespace {

using Random = std::mt19937;

int below(Random& random, int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

std::string randomName(Random& random) {
    static const std::vector<std::string> parts = {"a", "B", "10",   "9",    "007", "99999999999", " ",
                                                   ":", "ü", "\xE9", ".txt", "img", "0",           "/"};
    std::string name;
    for (int count = 1 + below(random, 4); count > 0; --count) {
        name += parts[static_cast<std::size_t>(below(random, static_cast<int>(parts.size()) - 1))];
    }
    return name;
}

/// What a row is sorted by, as a number or as text whose bytes order as its code points do.
std::pair<double, std::string> valueOf(StoreContext& context, NodeKey key, RowId id) {
    const NodeRow row = context.row(id);
    switch (key) {
    case NodeKey::name:
        return {0, *text::toBytes(context.name(id))};
    case NodeKey::smartName:
        return {
            0, *text::toBytes(KQStringUtilities::expandNumberBlocks(text::fromBytes(context.component(id))))};
    case NodeKey::modDate:
        return {row.modDate, ""};
    case NodeKey::exif:
        return {row.exif, ""};
    case NodeKey::size:
        return {static_cast<double>(row.size), ""};
    case NodeKey::treatAsFolder:
        return {row.treatAsFolder, ""};
    case NodeKey::depth:
        return {row.depth, ""};
    default:
        return {row.manualOrder, ""};
    }
}

bool slowLess(StoreContext& context, std::vector<SortDescriptor> order, RowId a, RowId b) {
    order.push_back({NodeKey::manualOrder, true});
    for (const auto& [key, ascending] : order) {
        const auto first = valueOf(context, key, a);
        const auto second = valueOf(context, key, b);
        if (first != second)
            return (first < second) == ascending;
    }
    return a < b;
}

struct Question {
    Predicate predicate;
    std::function<bool(const NodeRow& row, PassMarker marker)> slowMatch;
};

const std::vector<Question> questions = {
    {Predicate::always(), [](const NodeRow&, PassMarker) { return true; }},
    {Predicate::isTrue(NodeKey::diff).with(Predicate::isFalse(NodeKey::treatAsFolder)),
     [](const NodeRow& row, PassMarker) { return row.diff && !row.treatAsFolder; }},
    {Predicate::notMarked(1).with(Predicate::isTrue(NodeKey::root)),
     [](const NodeRow& row, PassMarker marker) { return row.root && marker != 1; }},
    {Predicate::notMarked(2), [](const NodeRow&, PassMarker marker) { return marker != 2; }},
    {Predicate::isTrue(NodeKey::root).with(Predicate::isFalse(NodeKey::root)),
     [](const NodeRow&, PassMarker) { return false; }},
};

const std::vector<std::vector<SortDescriptor>> orders = {
    {{NodeKey::name, true}},
    {{NodeKey::smartName, true}},
    {{NodeKey::smartName, false}, {NodeKey::size, true}},
    {{NodeKey::modDate, false}, {NodeKey::name, false}},
    {{NodeKey::exif, true}, {NodeKey::modDate, true}, {NodeKey::smartName, true}},
    {{NodeKey::depth, false}, {NodeKey::name, true}},
    {{NodeKey::manualOrder, true}},
    {{NodeKey::treatAsFolder, false}, {NodeKey::size, false}},
};

template <typename Values> const auto& oneOf(Random& random, const Values& values) {
    return values[static_cast<std::size_t>(below(random, static_cast<int>(values.size())))];
}

class StoreOracleTest : public testing::TestWithParam<Backing> {
  protected:
    void grow(Random& random) {
        const RowId parent = oneOf(random, folders);
        if (!context.exists(parent))
            return;
        const bool isFolder = below(random, 8) == 0;
        const RowId row =
            context.insertFile(parent, randomName(random), below(random, 2) == 0, isFolder, order++);
        NodeRow& changed = context.change(row);
        changed.modDate = below(random, 5) - 2.5;
        changed.size = static_cast<std::uint64_t>(below(random, 3));
        changed.exif = below(random, 2) * -63114076800.0;
        changed.depth = below(random, 4) - 2;
        if (isFolder)
            folders.push_back(row);
        rows.push_back(row);
    }

    void mutate(Random& random) {
        const RowId row = oneOf(random, rows);
        if (!context.exists(row))
            return;
        switch (below(random, 5)) {
        case 0:
            context.setFinalName(row, text::fromBytes(randomName(random)));
            break;
        case 1:
            context.change(row).diff = below(random, 2) == 0;
            break;
        case 2:
            context.setStageFlag(row, static_cast<PassMarker>(below(random, 3)));
            break;
        case 3:
            context.change(row).manualOrder = below(random, 50);
            break;
        default:
            if (below(random, 10) == 0)
                context.deleteRow(row);
        }
    }

    void check(Random& random) {
        const auto& [predicate, slowMatch] = oneOf(random, questions);
        const auto& sort = oneOf(random, orders);
        std::vector<RowId> expected;
        for (const RowId row : rows) {
            if (context.exists(row) && slowMatch(context.row(row), context.stageFlag(row)))
                expected.push_back(row);
        }
        EXPECT_EQ(context.fetch({FetchEntity::file, predicate, {}, 0}), expected);
        EXPECT_EQ(context.count(FetchEntity::file, predicate), expected.size());
        std::vector<RowId> sorted = expected;
        std::sort(expected.begin(), expected.end(),
                  [&](RowId a, RowId b) { return slowLess(context, sort, a, b); });
        EXPECT_EQ(context.fetch({FetchEntity::file, predicate, sort, 0}), expected);
        context.sort(sorted, sort);
        EXPECT_EQ(sorted, expected);
    }

    TemporaryFolder folder;
    ItemStore store{optionsFor(GetParam(), folder.path())};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
    std::vector<RowId> folders, rows;
    std::int32_t order = 0;
};

INSTANTIATE_TEST_SUITE_P(Backings, StoreOracleTest,
                         testing::Values(Backing::memory, Backing::file, Backing::tightFile));

TEST_P(StoreOracleTest, RandomWorkGivesWhatSlowEvaluationGives) {
    Random random(20261121);
    folders.push_back(context.insertGhostNode("/r"));
    for (int round = 0; round < 30; ++round) {
        for (int i = 0; i < 12; ++i)
            grow(random);
        for (int i = 0; i < 25; ++i)
            mutate(random);
        if (round % 3 != 0) {
            context.commit();
            if (round % 2 == 0)
                context.reset();
            check(random);
            check(random);
        }
    }
}

TEST_P(StoreOracleTest, ARandomOrderStaysAndIsNoneOfTheOthers) {
    const RowId ghost = fillFolder(context, 5000);
    std::vector<RowId> shuffled = context.children(ghost);
    const std::vector<RowId> byId = shuffled;
    context.sort(shuffled, {{NodeKey::random, false}});
    EXPECT_EQ(context.fetch({FetchEntity::file, {}, {{NodeKey::random, false}}, 0}), shuffled);
    EXPECT_TRUE(std::is_permutation(shuffled.begin(), shuffled.end(), byId.begin()));
    std::size_t rises = 0;
    for (std::size_t i = 1; i < shuffled.size(); ++i)
        rises += shuffled[i - 1] < shuffled[i] ? 1U : 0U;
    EXPECT_NEAR(static_cast<double>(rises), 2500, 150);
}

} // namespace
} // namespace tavrin::test
