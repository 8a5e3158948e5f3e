#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/rows/NodeKey.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

// Random work on the store against plain, slow evaluation through key-value access.

namespace tavrin::test {
namespace {

using Random = std::mt19937;

int below(Random& random, int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

std::string randomName(Random& random) {
    static const std::vector<std::string> parts = {"a", "B", "10",   "9",    "007", "99999999999", " ",
                                                   ":", "ü", "\xE9", ".txt", "img", "0",           "/"};
    std::string name;
    for (int count = 1 + below(random, 4); count > 0; --count) {
        const std::string& part =
            parts[static_cast<std::size_t>(below(random, static_cast<int>(parts.size()) - 1))];
        name += part;
    }
    return name;
}

/// Negative, zero or positive: the slow comparison of one attribute of two rows.
int compareValues(const PropertyValue& a, const PropertyValue& b) {
    if (const auto* text = a.asText()) {
        // Code points order as their bytes do, undecodable ones included.
        const std::string left = *text::toBytes(*text);
        const std::string right = *text::toBytes(*b.asText());
        return left.compare(right);
    }
    if (const auto* real = a.asReal())
        return *real < *b.asReal() ? -1 : *real > *b.asReal() ? 1 : 0;
    return intValue(a) < intValue(b) ? -1 : intValue(a) > intValue(b) ? 1 : 0;
}

bool slowLess(StoreContext& context, const std::vector<SortDescriptor>& order, RowId a, RowId b) {
    for (const SortDescriptor& descriptor : order) {
        int difference =
            compareValues(*context.valueForKey(a, descriptor.key), *context.valueForKey(b, descriptor.key));
        if (!descriptor.ascending)
            difference = -difference;
        if (difference != 0)
            return difference < 0;
    }
    const auto manual = [&](RowId row) { return context.row(row).manualOrder; };
    return manual(a) != manual(b) ? manual(a) < manual(b) : a < b;
}

bool slowMatch(StoreContext& context, const Predicate& predicate, RowId row) {
    return std::all_of(predicate.tests().begin(), predicate.tests().end(), [&](const Predicate::Test& test) {
        const auto value = context.valueForKey(row, test.key);
        bool isEqual = false;
        if (value && std::holds_alternative<bool>(test.operand))
            isEqual = *value->asBoolean() == std::get<bool>(test.operand);
        else if (value && std::holds_alternative<std::int64_t>(test.operand))
            isEqual = intValue(*value) == std::get<std::int64_t>(test.operand);
        else if (value)
            isEqual = intValue(*value) == static_cast<std::int64_t>(std::get<RowId>(test.operand));
        return isEqual == (test.operation == Predicate::Operation::equals);
    });
}

class StoreOracleTest : public testing::TestWithParam<Backing> {
  protected:
    void grow(Random& random) {
        const RowId parent =
            folders[static_cast<std::size_t>(below(random, static_cast<int>(folders.size())))];
        if (!context.exists(parent))
            return;
        const bool isFolder = below(random, 8) == 0;
        const RowId row =
            context.insertFile(parent, randomName(random), below(random, 2) == 0, isFolder, order++);
        NodeRow& changed = context.change(row);
        changed.modDate = below(random, 5) - 2.5;
        changed.size = static_cast<std::uint64_t>(below(random, 3));
        changed.exif = below(random, 2) * -63114076800.0;
        if (isFolder)
            folders.push_back(row);
        rows.push_back(row);
    }

    void mutate(Random& random) {
        const RowId row = rows[static_cast<std::size_t>(below(random, static_cast<int>(rows.size())))];
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
        static const std::vector<Predicate> predicates = {
            Predicate::always(),
            Predicate::isTrue(NodeKey::diff).with(Predicate::isFalse(NodeKey::treatAsFolder)),
            Predicate::isTrue(NodeKey::root).with(Predicate::notMarked(1)),
            Predicate::notMarked(2),
            Predicate::equals(NodeKey::manualOrder, std::int64_t{7}),
        };
        static const std::vector<std::vector<SortDescriptor>> orders = {
            {{NodeKey::name, true}},
            {{NodeKey::smartName, true}},
            {{NodeKey::smartName, false}, {NodeKey::size, true}},
            {{NodeKey::modDate, false}, {NodeKey::name, false}},
            {{NodeKey::exif, true}, {NodeKey::modDate, true}, {NodeKey::smartName, true}},
            {{NodeKey::random, false}},
            {{NodeKey::manualOrder, true}},
            {{NodeKey::treatAsFolder, false}, {NodeKey::size, false}},
        };
        const Predicate& predicate = predicates[static_cast<std::size_t>(below(random, 5))];
        const auto& sort = orders[static_cast<std::size_t>(below(random, 8))];
        std::vector<RowId> expected;
        for (const RowId row : rows) {
            if (context.exists(row) && slowMatch(context, predicate, row))
                expected.push_back(row);
        }
        EXPECT_EQ(context.fetch({FetchEntity::file, predicate, {}, 0}), expected);
        EXPECT_EQ(context.count(FetchEntity::file, predicate), expected.size());
        std::sort(expected.begin(), expected.end(),
                  [&](RowId a, RowId b) { return slowLess(context, sort, a, b); });
        EXPECT_EQ(context.fetch({FetchEntity::file, predicate, sort, 0}), expected);
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

TEST_P(StoreOracleTest, NaturalOrderIsThatOfTheExpandedNames) {
    const RowId ghost = context.insertGhostNode("/n");
    Random random(7);
    for (int i = 0; i < 400; ++i)
        rows.push_back(context.insertFile(ghost, randomName(random), true, false, i));
    context.commit();
    const std::vector<RowId> sorted = context.fetch({FetchEntity::file, {}, {{NodeKey::smartName, true}}, 0});
    ASSERT_EQ(sorted.size(), rows.size());
    const auto expanded = [&](RowId row) {
        return *text::toBytes(KQStringUtilities::expandNumberBlocks(text::fromBytes(context.component(row))));
    };
    for (std::size_t i = 1; i < sorted.size(); ++i)
        EXPECT_LE(expanded(sorted[i - 1]), expanded(sorted[i]));
}

} // namespace
} // namespace tavrin::test
