#include "StageTest.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "support/text/Text.h"

#include <map>
#include <ostream>
#include <random>
#include <set>

namespace tavrin::test {
namespace {

/// Children of one folder as "name>final name" ("/" in front marks a folder), and their final names after.
struct ConflictCase {
    const char* name;
    PropertyDictionary settings;
    std::vector<std::string> children;
    std::vector<std::string> finalNames;
};

std::ostream& operator<<(std::ostream& out, const ConflictCase& test) { return out << test.name; }

class ConflictsTest : public StageTest {
  protected:
    /// A ghost and its children, in this order. Each is newer than the one before.
    RowId insert(const std::string& path, const std::vector<std::string>& children) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        const RowId parent = context.insertGhostNode(path);
        double date = 1e6;
        for (const std::string& line : children) {
            const bool isFolder = line.starts_with("/");
            const std::string names = line.substr(isFolder ? 1 : 0);
            const std::size_t arrow = names.find('>');
            const RowId id = context.insertFile(parent, names.substr(0, arrow), true, isFolder,
                                                host.engine.nextManualOrder());
            const std::u16string finalName = text::fromBytes(names.substr(arrow + 1));
            context.setFinalName(id, finalName);
            NodeRow& row = context.change(id);
            row.diff = names.substr(0, arrow) != names.substr(arrow + 1);
            row.modDate = date++;
        }
        context.changeEngineControl().needToRedoConflictResolution = true;
        context.commit();
        return parent;
    }
    std::vector<std::string> finalNames(RowId parent) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
        std::vector<std::string> names;
        for (const RowId id : context.children(parent)) {
            names.push_back(text::toUtf8(context.finalName(id)));
            EXPECT_EQ(context.row(id).diff, !text::canonicallyEqual(context.finalName(id), context.name(id)))
                << names.back();
        }
        return names;
    }
};

class ConflictCases : public ConflictsTest, public ::testing::WithParamInterface<ConflictCase> {};

TEST_P(ConflictCases, MakesNamesDistinct) {
    const ConflictCase& test = GetParam();
    for (const auto& [key, value] : test.settings)
        host.set(key, value);
    const RowId parent = insert("/somewhere", test.children);
    ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
    EXPECT_EQ(finalNames(parent), test.finalNames);
    EXPECT_FALSE(host.counters().needToRedoConflictResolution);
}

const PropertyDictionary keepFirst{{"conflictResolutionDontChangeFirst", true}};

PropertyDictionary with(PropertyDictionary settings, const std::string& key, PropertyValue value) {
    settings.insert_or_assign(key, std::move(value));
    return settings;
}

const ConflictCase conflictCases[] = {
    {"no conflict", {}, {"a>a", "b>b", "c>.a"}, {"a", "b", ".a"}},
    {"case is no difference", {}, {"1>a.txt", "2>A.TXT"}, {"aa.txt", "Ab.TXT"}},
    {"case outside ASCII is none either", {}, {"1>\u00c4", "2>\u00e4"}, {"\u00c4a", "\u00e4b"}},
    {"composition is a difference", {}, {"1>\u00e9", "2>e\u0301"}, {"\u00e9", "e\u0301"}},
    {"the first may stay", keepFirst, {"1>a.txt", "2>A.TXT"}, {"a.txt", "Aa.TXT"}},
    {"the others count from the start",
     with(keepFirst, "conflictResolutionScheme", 1),
     {"1>x", "2>x", "3>x"},
     {"x", "x(0)", "x(1)"}},
    {"a taken name is skipped",
     {{"conflictResolutionScheme", 0}},
     {"1>a.txt", "2>a.txt", "3>A(1).txt"},
     {"a(2).txt", "a(3).txt", "A(1).txt"}},
    {"a name given out is taken for later groups",
     {{"conflictResolutionScheme", 7}},
     {"1>x", "2>x", "3>x1", "4>X1"},
     {"x2", "x3", "x11", "X12"}},
    {"a group's own name stays in use",
     {{"conflictResolutionScheme", 7}},
     {"1>x1", "2>x1", "3>x", "4>x"},
     {"x11", "x12", "x2", "x3"}},
    {"in front of the last dot",
     {},
     {"1>r.final.txt", "2>r.final.txt", "3>.x", "4>.x", "5>e.", "6>e."},
     {"r.finala.txt", "r.finalb.txt", "a.x", "b.x", "ea.", "eb."}},
    {"empty names", {}, {"1>", "2>"}, {"a", "b"}},
    {"by the orders of the settings",
     {{"conflictResolutionOrder1", 3}},
     {"1>x", "2>x", "3>x"},
     {"xc", "xb", "xa"}},
    {"by name from Z to A", {{"conflictResolutionOrder1", 1}}, {"a>x", "c>x", "b>x"}, {"xc", "xa", "xb"}},
    {"orders that are none leave the order read",
     {{"conflictResolutionOrder1", 14}, {"conflictResolutionOrder2", -1}, {"conflictResolutionOrder3", 99}},
     {"b>x", "a>x"},
     {"xa", "xb"}},
    {"what is not processed keeps its name", {{"processFiles", 0}}, {"/d>x", "x>x"}, {"xa", "x"}},
    {"also a folder", {{"processFolders", 0}}, {"1>x", "/x>x"}, {"xa", "x"}},
    {"but only one of them", {{"processFiles", 0}}, {"x>x", "X>X"}, {"x", "Xa"}},
    {"nothing is processed", {{"processFiles", 0}, {"processFolders", 0}}, {"/x>x", "X>X"}, {"xa", "X"}},
    {"a scheme that is none", {{"conflictResolutionScheme", 14}}, {"1>x", "2>x"}, {"xa", "xb"}},
    {"an unchanged name collides too", {}, {"x>x", "y>x"}, {"xa", "xb"}},
};

INSTANTIATE_TEST_SUITE_P(Rules, ConflictCases, ::testing::ValuesIn(conflictCases));

TEST_F(ConflictsTest, EachSchemeHasItsDistinguishersAndStartsAnewInEachFolder) {
    const std::vector<std::string> schemes = {
        "(1) (2) (3)",       "(0) (1) (2)",       "(a) (b) (c)", "(01) (02) (03)", "(00) (01) (02)",
        "(001) (002) (003)", "(000) (001) (002)", "1 2 3",       "0 1 2",          "a b c",
        "01 02 03",          "00 01 02",          "001 002 003", "000 001 002",
    };
    for (std::size_t scheme = 0; scheme < schemes.size(); ++scheme) {
        host.set("conflictResolutionScheme", static_cast<int>(scheme));
        const RowId parent = insert("/folder" + std::to_string(scheme), {"1>", "2>", "3>"});
        ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
        EXPECT_EQ(fmt::format("{}", fmt::join(finalNames(parent), " ")), schemes[scheme]);
    }
}

TEST_F(ConflictsTest, LettersArePositionalDigits) {
    const std::map<std::int64_t, std::string> letters{{0, "A"},   {25, "Z"},   {26, "BA"},
                                                      {27, "BB"}, {675, "ZZ"}, {676, "BAA"}};
    for (const auto& [number, text] : letters)
        EXPECT_EQ(ResolveFileNameConflictsStage::uNumToAlpha(number), text);
}

TEST_F(ConflictsTest, WorksOnceForAReading) {
    const RowId parent = insert("/a", {"1>x", "2>y"});
    ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
    {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        context.setFinalName(context.children(parent).front(), u"y");
        context.commit();
    }
    ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
    EXPECT_EQ(finalNames(parent), (std::vector<std::string>{"y", "y"}));
}

TEST_F(ConflictsTest, OnlyGhostsAreLookedAtWithoutSubfolders) {
    const RowId ghost = insert("/a", {"/d>d"});
    RowId inner = noRow;
    {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        inner = context.children(ghost).front();
        for (const char* name : {"x", "y"})
            context.setFinalName(context.insertFile(inner, name, false, false, 9), u"same");
        context.commit();
    }
    ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    EXPECT_EQ(context.finalName(context.children(inner).front()), u"same");
}

TEST_F(ConflictsTest, AFolderWithoutCollisionsChangesNoName) {
    const RowId parent = insert("/a", {"1>x", "2>y"});
    std::vector<RowId> changed;
    std::uint8_t classes = 0;
    host.persistentStoreCoordinator()->setDidSaveHandler([&](const StoreChanges& changes) {
        changed.insert(changed.end(), changes.updated.begin(), changes.updated.end());
        classes |= changes.columnClasses;
    });
    ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
    EXPECT_EQ(classes & static_cast<std::uint8_t>(ColumnClass::naming), 0);
    for (const RowId id : changed)
        EXPECT_EQ(id, parent) << "only the folder's marker";
}

/// Groups whose distinguishers can build the same name ("x" with "11", "x1" with "1"), and names that are
/// there already, in any case and number, large and small.
TEST_F(ConflictsTest, NamesAreDistinctAcrossGroupsInEveryScheme) {
    std::mt19937 random(7);
    const std::vector<std::string> stems{"x",  "X",   "x1",  "x0",   "x01",   "x001", "xa",
                                         "xA", "x11", "xaa", "x(1)", "x(01)", "x(a)", "x1001"};
    for (int scheme = 0; scheme < 14; ++scheme) {
        host.set("conflictResolutionScheme", scheme);
        host.set("conflictResolutionDontChangeFirst", scheme % 2);
        for (const std::size_t count : {8U, 60U, 2400U}) {
            SCOPED_TRACE(std::to_string(scheme) + ", " + std::to_string(count));
            std::vector<std::string> children;
            for (std::size_t i = 0; i < count; ++i) {
                const std::string stem = i % 2 == 0 ? "x" : stems[random() % stems.size()];
                children.push_back(std::to_string(i) + ">" + stem + (random() % 8 == 0 ? ".t" : ""));
            }
            const RowId parent = insert("/" + std::to_string(scheme) + "/" + std::to_string(count), children);
            ASSERT_TRUE(run<ResolveFileNameConflictsStage>());
            std::set<std::string> seen;
            for (const std::string& name : finalNames(parent)) {
                std::string lowered;
                text::lowercaseBytes(name, lowered);
                EXPECT_TRUE(seen.insert(lowered).second) << name;
            }
        }
    }
}

} // namespace
} // namespace tavrin::test
