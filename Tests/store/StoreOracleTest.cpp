#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "support/text/KQStringUtilities.h"

// Random work on the store against a plain model of it.

namespace tavrin::test {
namespace {

/// What a row is to be.
struct ModelRow {
    NodeRow row;
    std::string component, path;
    std::u16string finalName, regex;
    PassMarker flag = unmarked;
    std::vector<std::uint8_t> tags;
};
using Model = std::map<RowId, ModelRow>;
using Value = std::pair<double, std::string>;

std::u16string shownName(const std::string& component) {
    std::u16string name = text::fromBytes(component);
    text::replaceUnit(name, u':', u'/');
    return name;
}

Value valueOf(const ModelRow& one, NodeKey key) {
    if (key == NodeKey::name)
        return {0, *text::toBytes(shownName(one.component))};
    if (key == NodeKey::smartName)
        return {0, *text::toBytes(KQStringUtilities::expandNumberBlocks(text::fromBytes(one.component)))};
    const NodeRow& row = one.row;
    const std::map<NodeKey, double> numbers{{NodeKey::modDate, row.modDate},
                                            {NodeKey::exif, row.exif},
                                            {NodeKey::size, row.size},
                                            {NodeKey::depth, row.depth},
                                            {NodeKey::treatAsFolder, row.treatAsFolder},
                                            {NodeKey::manualOrder, row.manualOrder}};
    return {numbers.at(key), ""};
}

const std::pair<Predicate, std::function<bool(const ModelRow&)>> predicates[] = {
    {Predicate::always(), [](const auto&) { return true; }},
    {Predicate::isTrue(NodeKey::diff).with(Predicate::isFalse(NodeKey::treatAsFolder)),
     [](const auto& one) { return one.row.diff && !one.row.treatAsFolder; }},
    {Predicate::notMarked(1).with(Predicate::isTrue(NodeKey::root)),
     [](const auto& one) { return one.row.root && one.flag != 1; }},
    {Predicate::isTrue(NodeKey::root).with(Predicate::isFalse(NodeKey::root)),
     [](const auto&) { return false; }},
};

const std::vector<SortDescriptor> orders[] = {
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
    template <typename Values> const auto& oneOf(const Values& from) { return from[below(std::size(from))]; }

    std::string someName() {
        static const std::string parts[] = {"a", "B", "10",   "9",    "007", "99999999999",
                                            " ", ":", "\xE9", ".txt", "img", "\xC3\xBC"};
        std::string name;
        for (std::size_t count = 1 + below(4); count > 0; --count)
            name += oneOf(parts);
        return name;
    }
    std::u16string someFinalName(const ModelRow& one) {
        static const std::u16string names[] = {
            u"", u"short", u"a/b:c", std::u16string(3000, u'é'), {u'x', 0xD83D}, {0xDCE9}, {0xDCC3, 0xDCA9}};
        return below(4) == 0 ? shownName(one.component) : oneOf(names);
    }
    /// A row and what it is to be, to be changed alike.
    std::pair<const RowId, ModelRow>& someRow() {
        return *staged.lower_bound(static_cast<RowId>(below(staged.rbegin()->first)));
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
    void work() {
        auto& [id, one] = someRow();
        switch (below(5)) {
        case 0:
            return insertBelow(one.row.treatAsFolder ? id : one.row.parent);
        case 1: {
            NodeRow& row = context.change(id);
            row.diff = one.row.diff = below(2) == 0;
            row.modDate = one.row.modDate = static_cast<double>(below(5)) - 2.5;
            row.exif = one.row.exif = below(2) == 0 ? -63114076800.0 : 0.0;
            row.size = one.row.size = below(3);
            row.depth = one.row.depth = static_cast<std::int32_t>(below(4)) - 2;
            row.mustBeRenamedBefore = one.row.mustBeRenamedBefore = static_cast<RowId>(below(9));
            return;
        }
        case 2:
            one.finalName = someFinalName(one);
            context.setFinalName(id, one.finalName);
            EXPECT_EQ(context.finalName(id), one.finalName);
            return;
        case 3:
            one.regex = someFinalName(one);
            context.setRegexColumns(id, {u"x", one.regex, u"", u"", one.regex, u""});
            one.tags.assign(1 + below(300), static_cast<std::uint8_t>(id));
            return context.setTagData(id, {one.tags});
        default:
            one.flag = static_cast<PassMarker>(below(3));
            context.setStageFlag(id, one.flag);
        }
    }
    /// With all that lies below.
    void erase() {
        commit();
        const RowId id = someRow().first;
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
        const auto all = [](const NodeRow& of) {
            return std::tie(of.parent, of.treatAsFolder, of.root, of.manualOrder, of.diff, of.modDate,
                            of.exif, of.size, of.depth, of.mustBeRenamedBefore);
        };
        EXPECT_EQ(all(row), all(one.row));
        const auto columns = by.regexColumns(id);
        ASSERT_EQ(columns.has_value(), !one.tags.empty());
        EXPECT_EQ(columns.value_or(StoreContext::RegexColumns{})[4], one.regex);
        EXPECT_EQ(by.tagData(id).value_or(PropertyData{}).bytes, one.tags);
    }

    std::vector<RowId> admitted(const Model& model, const std::function<bool(const ModelRow&)>& isWanted) {
        std::vector<RowId> rows;
        for (const auto& [id, one] : model) {
            if (id != ghost && isWanted(one))
                rows.push_back(id);
        }
        return rows;
    }
    /// Single rows, also by their paths, and one fetch without an order.
    void expectRows(StoreContext& by, const Model& model) {
        for (std::size_t i = 0; i < 60; ++i) {
            const auto& [id, one] = *model.lower_bound(static_cast<RowId>(below(model.rbegin()->first)));
            expectRow(by, id, one);
        }
        const auto& [predicate, isWanted] = oneOf(predicates);
        const std::vector<RowId> wanted = admitted(model, isWanted);
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
        std::vector<RowId> rows = admitted(committed, isWanted);
        std::map<RowId, std::vector<Value>> keys;
        for (const RowId id : rows) {
            for (const SortDescriptor& descriptor : order)
                keys[id].push_back(valueOf(committed.at(id), descriptor.key));
            keys[id].emplace_back(committed.at(id).row.manualOrder, "");
        }
        std::stable_sort(rows.begin(), rows.end(), [&](RowId a, RowId b) {
            const auto [one, other] = std::ranges::mismatch(keys[a], keys[b]);
            const auto place = static_cast<std::size_t>(one - keys[a].begin());
            return one != keys[a].end() &&
                   (*one < *other) == (place == order.size() || order[place].ascending);
        });
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
    std::tie(root.path, root.component, root.finalName) = std::tuple("/r", "r", u"r");
    root.row.treatAsFolder = true;
    for (int i = 0; i < 12000; ++i)
        insertBelow(ghost);
    commit();
    for (int round = 0; round < 40 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        for (std::size_t i = below(60); i > 0; --i)
            work();
        expectRows(context, staged);
        expectRows(onlooker, committed);
        const std::size_t end = below(4);
        end == 0 ? reset() : end == 1 ? erase() : commit();
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
