#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

// Random work on the store against a plain model of it.

namespace tavrin::test {
namespace {

/// What a row is to be.
struct ModelRow {
    NodeRow row;
    std::string component, path;
    std::u16string finalName;
    PassMarker flag = unmarked;
    std::u16string regex;
    std::vector<std::uint8_t> tags;
};
using Model = std::map<RowId, ModelRow>;
using Value = std::pair<double, std::string>;

std::u16string shownName(const std::string& component) {
    std::u16string name = text::fromBytes(component);
    text::replaceUnit(name, u':', u'/');
    return name;
}

const std::map<NodeKey, std::function<Value(const ModelRow&)>> values = {
    {NodeKey::name,
     [](const auto& one) {
         return Value{0, *text::toBytes(shownName(one.component))};
     }},
    {NodeKey::smartName,
     [](const auto& one) {
         return Value{0,
                      *text::toBytes(KQStringUtilities::expandNumberBlocks(text::fromBytes(one.component)))};
     }},
    {NodeKey::modDate,
     [](const auto& one) {
         return Value{one.row.modDate, ""};
     }},
    {NodeKey::exif,
     [](const auto& one) {
         return Value{one.row.exif, ""};
     }},
    {NodeKey::size,
     [](const auto& one) {
         return Value{static_cast<double>(one.row.size), ""};
     }},
    {NodeKey::depth,
     [](const auto& one) {
         return Value{one.row.depth, ""};
     }},
    {NodeKey::treatAsFolder,
     [](const auto& one) {
         return Value{one.row.treatAsFolder, ""};
     }},
    {NodeKey::manualOrder,
     [](const auto& one) {
         return Value{one.row.manualOrder, ""};
     }},
};

const std::vector<std::pair<Predicate, std::function<bool(const ModelRow&)>>> predicates = {
    {Predicate::always(), [](const auto&) { return true; }},
    {Predicate::isTrue(NodeKey::diff).with(Predicate::isFalse(NodeKey::treatAsFolder)),
     [](const auto& one) { return one.row.diff && !one.row.treatAsFolder; }},
    {Predicate::notMarked(1).with(Predicate::isTrue(NodeKey::root)),
     [](const auto& one) { return one.row.root && one.flag != 1; }},
    {Predicate::isTrue(NodeKey::root).with(Predicate::isFalse(NodeKey::root)),
     [](const auto&) { return false; }},
};

const std::vector<std::vector<SortDescriptor>> orders = {
    {{NodeKey::name, true}},
    {{NodeKey::smartName, false}, {NodeKey::size, true}},
    {{NodeKey::modDate, false}, {NodeKey::name, false}},
    {{NodeKey::exif, true}, {NodeKey::modDate, true}, {NodeKey::smartName, true}},
    {{NodeKey::depth, false}, {NodeKey::manualOrder, true}},
    {{NodeKey::treatAsFolder, false}, {NodeKey::size, false}},
};

/// Two contexts of one store, one that works and one that looks on, and what each is to see.
class StoreOracleTest : public testing::TestWithParam<Backing> {
  protected:
    std::size_t below(std::size_t bound) { return random() % bound; }
    template <typename Values> const auto& oneOf(const Values& from) { return from[below(from.size())]; }

    std::string someName() {
        static const std::vector<std::string> parts = {"a", "B", "10",   "9",    "007", "99999999999",
                                                       " ", ":", "\xE9", ".txt", "img", "\xC3\xBC"};
        std::string name;
        for (std::size_t count = 1 + below(4); count > 0; --count)
            name += oneOf(parts);
        return name;
    }
    std::u16string someFinalName(const ModelRow& one) {
        static const std::vector<std::u16string> names = {
            u"",      u"short",        u"a/b:c", std::u16string(3000, u'é'), {u'x', char16_t(0xD83D)},
            {0xDCE9}, {0xDCC3, 0xDCA9}};
        return below(4) == 0 ? shownName(one.component) : oneOf(names);
    }
    RowId someRow() {
        auto found = staged.lower_bound(static_cast<RowId>(below(staged.rbegin()->first)));
        return found->first;
    }

    void insertBelow(RowId parent) {
        ModelRow one;
        one.row.parent = parent;
        one.row.treatAsFolder = below(9) == 0;
        one.row.root = below(2) == 0;
        one.row.manualOrder = static_cast<std::int32_t>(below(50));
        one.component = someName() + std::to_string(++made);
        one.path = staged.at(parent).path + "/" + one.component;
        one.finalName = shownName(one.component);
        const RowId id = context.insertFile(parent, one.component, one.row.root, one.row.treatAsFolder,
                                            one.row.manualOrder);
        EXPECT_TRUE(staged.emplace(id, one).second) << "an id is given once";
        EXPECT_TRUE(!one.row.treatAsFolder || context.nodeWithPath(one.path) == id) << "at once";
    }
    void insert() {
        const RowId near = someRow();
        insertBelow(staged.at(near).row.treatAsFolder ? near : staged.at(near).row.parent);
    }
    void change() {
        const RowId id = someRow();
        ModelRow& one = staged.at(id);
        NodeRow& row = context.change(id);
        row.diff = one.row.diff = below(2) == 0;
        row.modDate = one.row.modDate = static_cast<double>(below(5)) - 2.5;
        row.exif = one.row.exif = below(2) == 0 ? -63114076800.0 : 0.0;
        row.size = one.row.size = below(3);
        row.depth = one.row.depth = static_cast<std::int32_t>(below(4)) - 2;
        row.mustBeRenamedBefore = one.row.mustBeRenamedBefore = static_cast<RowId>(below(9));
    }
    void rename() {
        const RowId id = someRow();
        ModelRow& one = staged.at(id);
        one.finalName = someFinalName(one);
        context.setFinalName(id, one.finalName);
        EXPECT_EQ(context.finalName(id), one.finalName);
    }
    void describe() {
        const RowId id = someRow();
        ModelRow& one = staged.at(id);
        one.regex = someFinalName(one);
        context.setRegexColumns(id, {u"x", one.regex, u"", u"", one.regex, u""});
        one.tags.assign(1 + below(300), static_cast<std::uint8_t>(id));
        context.setTagData(id, {one.tags});
    }
    void mark() {
        const RowId id = someRow();
        staged.at(id).flag = static_cast<PassMarker>(below(3));
        context.setStageFlag(id, staged.at(id).flag);
    }
    /// With all that lies below.
    void erase() {
        commit();
        const RowId id = someRow();
        if (id == ghost)
            return;
        const std::string path = staged.at(id).path;
        context.deleteRow(id);
        EXPECT_FALSE(context.exists(id));
        EXPECT_TRUE(onlooker.exists(id));
        std::erase_if(staged,
                      [&](const auto& one) { return (one.second.path + "/").starts_with(path + "/"); });
        commit();
        EXPECT_EQ(context.nodeWithPath(path), noRow);
        EXPECT_EQ(context.fullPath(id), "");
        context.change(id).depth = 1; // changes nothing
    }
    void commit() {
        context.commit();
        committed = staged;
        onlooker.refault();
    }
    void reset() {
        context.reset();
        staged = committed;
    }

    static void expectRow(StoreContext& by, RowId id, const ModelRow& one) {
        SCOPED_TRACE(one.path);
        EXPECT_EQ(by.component(id), one.component);
        EXPECT_EQ(by.finalName(id), one.finalName);
        EXPECT_EQ(by.name(id), shownName(one.component));
        EXPECT_EQ(by.fullPath(id), one.path);
        EXPECT_EQ(by.stageFlag(id), one.flag);
        const NodeRow row = by.row(id);
        EXPECT_EQ(std::tie(row.parent, row.treatAsFolder, row.root, row.manualOrder, row.diff, row.modDate),
                  std::tie(one.row.parent, one.row.treatAsFolder, one.row.root, one.row.manualOrder,
                           one.row.diff, one.row.modDate));
        EXPECT_EQ(std::tie(row.exif, row.size, row.depth, row.mustBeRenamedBefore),
                  std::tie(one.row.exif, one.row.size, one.row.depth, one.row.mustBeRenamedBefore));
        const auto columns = by.regexColumns(id);
        ASSERT_EQ(columns.has_value(), !one.tags.empty());
        EXPECT_EQ(columns.value_or(StoreContext::RegexColumns{})[4], one.regex);
        EXPECT_EQ(by.tagData(id).value_or(PropertyData{}).bytes, one.tags);
    }

    /// Single rows, also by their paths, and one fetch without an order.
    void expectRows(StoreContext& by, const Model& model) {
        for (std::size_t i = 0; i < 60; ++i) {
            const auto& [id, one] = *model.lower_bound(static_cast<RowId>(below(model.rbegin()->first)));
            expectRow(by, id, one);
        }
        const auto& [predicate, isWanted] = oneOf(predicates);
        std::vector<RowId> wanted;
        for (const auto& [id, one] : model) {
            if (id != ghost && isWanted(one))
                wanted.push_back(id);
        }
        EXPECT_EQ(by.fetch({FetchEntity::file, predicate, {}, 0}), wanted);
        EXPECT_EQ(by.count(FetchEntity::file, predicate), wanted.size());
    }

    /// Lists and look-ups, which go by what is committed.
    void expectLists(StoreContext& by) {
        std::map<RowId, std::vector<RowId>> children;
        for (const auto& [id, one] : committed)
            children[one.row.parent].push_back(id);
        for (const auto& [parent, rows] : children) {
            if (parent == noRow)
                continue;
            ASSERT_EQ(by.children(parent), rows);
            EXPECT_EQ(by.childCount(parent), rows.size());
            EXPECT_EQ(by.nodeWithPath(committed.at(rows.front()).path), rows.front());
            EXPECT_EQ(by.fileWithPath(committed.at(rows.back()).path), rows.back());
        }
        const auto& order = oneOf(orders);
        const auto& [predicate, isWanted] = oneOf(predicates);
        std::vector<std::pair<std::vector<Value>, RowId>> wanted;
        for (const auto& [id, one] : committed) {
            if (id == ghost || !isWanted(one))
                continue;
            auto& [keys, row] = wanted.emplace_back(std::vector<Value>(), id);
            for (const SortDescriptor& descriptor : order)
                keys.push_back(values.at(descriptor.key)(one));
        }
        std::sort(wanted.begin(), wanted.end(), [&](const auto& a, const auto& b) {
            for (std::size_t i = 0; i < order.size(); ++i) {
                if (a.first[i] != b.first[i])
                    return (a.first[i] < b.first[i]) == order[i].ascending;
            }
            const auto manual = [&](const auto& one) { return committed.at(one.second).row.manualOrder; };
            return std::pair(manual(a), a.second) < std::pair(manual(b), b.second);
        });
        std::vector<RowId> rows;
        for (const auto& [keys, id] : wanted)
            rows.push_back(id);
        EXPECT_EQ(by.fetch({FetchEntity::file, predicate, order, 0, below(2) == 0}), rows);
        for (std::size_t i = 0; i < std::min(rows.size(), std::size_t{300}); ++i)
            expectRow(by, rows[i], committed.at(rows[i]));
        std::vector<RowId> sorted = rows;
        std::sort(sorted.begin(), sorted.end());
        by.sort(sorted, order);
        EXPECT_EQ(sorted, rows);
    }

    std::mt19937 random{20261121};
    TemporaryFolder folder;
    ItemStore store{optionsFor(GetParam(), folder.path())};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
    StoreContext onlooker{store, StoreContext::MergePolicy::storeWins};
    Model staged, committed;
    RowId ghost = noRow;
    int made = 0;
};

INSTANTIATE_TEST_SUITE_P(Backings, StoreOracleTest,
                         testing::Values(Backing::memory, Backing::file, Backing::tightFile));

TEST_P(StoreOracleTest, RandomWorkLeavesWhatTheModelSays) {
    ghost = context.insertGhostNode("/r");
    ModelRow& root = staged[ghost];
    root.path = "/r";
    root.component = "r";
    root.finalName = u"r";
    root.row.treatAsFolder = true;
    for (int i = 0; i < 12000; ++i)
        insertBelow(ghost);
    commit();
    for (int round = 0; round < 40 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        for (std::size_t i = below(60); i > 0; --i) {
            switch (below(5)) {
            case 0:
                insert();
                break;
            case 1:
                change();
                break;
            case 2:
                rename();
                break;
            case 3:
                describe();
                break;
            default:
                mark();
            }
        }
        expectRows(context, staged);
        expectRows(onlooker, committed);
        switch (below(4)) {
        case 0:
            reset();
            break;
        case 1:
            erase();
            break;
        default:
            commit();
        }
        if (round % 3 == 0) {
            expectLists(context);
            expectLists(onlooker);
        }
    }
}

TEST_P(StoreOracleTest, ARandomOrderStaysAndIsNoneOfTheOthers) {
    const RowId parent = fillFolder(context, 5000);
    std::vector<RowId> shuffled = context.children(parent);
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
