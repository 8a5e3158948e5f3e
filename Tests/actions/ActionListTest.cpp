#include "actions/ActionError.h"
#include "actions/ActionLaws.h"
#include "actions/AddedAction.h"
#include "common/ManualRunLoop.h"
#include "platform/files/FileSystem.h"

#include <atomic>
#include <thread>

namespace tavrin::test {

namespace {

using Catalogue = CatalogueFixture;

class Nothing : public BaseRenameAction {};

TEST_F(Catalogue, MapsMenusToCategories) {
    using enum ActionCategory;
    const ActionList list({{"c", "C", move, newAction<Nothing>, {}},
                           {"a", "A", replace, newAction<Nothing>, {}},
                           {"b", "B", replace, newAction<Nothing>, {}}});
    EXPECT_EQ(list.nameArray(), (std::vector<std::string>{"a", "b", "", "c"}));
    EXPECT_EQ(list.popUpMenuItems(), (std::vector<std::u16string>{u"A", u"B", u"", u"C"}));
    EXPECT_EQ(list.categoryPopUpMenuItems(), (std::vector<std::u16string>{u"Replace", u"Move"}));
    EXPECT_EQ(list.categoryToActionMapping(), (std::vector<std::vector<std::int32_t>>{{0, 1}, {3}}));
    for (const auto& [index, category] : {std::pair(0, 0), {1, 0}, {2, 0}, {3, 1}})
        EXPECT_EQ(list.translateActionIndexToCategoryIndex(index), category);
    EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(1), 3);
    EXPECT_EQ(list.getItemNamesForCategory(0), (std::vector<std::u16string>{u"A", u"B"}));
    EXPECT_EQ(list.popUpMenuItemStringForName("c"), u"C");
    EXPECT_EQ(list.popUpMenuItemStringForName("no such action"), u"Error");
    EXPECT_EQ(list.popUpMenuIndexForName("c"), 3);
    EXPECT_EQ(list.popUpMenuIndexForName("no such action"), std::nullopt);
    EXPECT_EQ(list.nameForPopUpIndex(1), "b");
    for (const std::int32_t outside : {-1, 4, 2147483647}) {
        EXPECT_EQ(list.nameForPopUpIndex(outside), "");
        EXPECT_EQ(list.translateActionIndexToCategoryIndex(outside), std::nullopt);
        EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(outside), std::nullopt);
        EXPECT_TRUE(list.getItemNamesForCategory(outside).empty());
    }
}

TEST_F(Catalogue, HoldsActionsThatKeepItsLaws) {
    expectLaws(catalogue, allActions());
    for (const auto& entry : allActions())
        expectExamples(entry);
    EXPECT_EQ(catalogue.newActionForName("Replace at front")->userDescription(), u"Replace at start");
}

TEST_F(Catalogue, StartsAnActionWithTheParametersLastSaved) {
    const auto action = make("Add to end", {{"string", u"-x"}});
    const auto other = make("Add to front");
    catalogue.saveActionParametersToPreferences(*action);
    catalogue.saveActionParametersToPreferences(*other);
    EXPECT_EQ(make("Add to end")->parameterList(), action->parameterList());
    // An entry from before a parameter came in, in the key form of its time.
    defaults.setObject("actions",
                       PropertyDictionary{{"Add to end", PropertyDictionary{{"fragment selection", 3}}}});
    EXPECT_EQ(make("Add to end")->getParamInt("fragmentSelection", 9), 3);
    EXPECT_EQ(make("Add to end")->valueForKey("string"), PropertyValue(u""));
    for (const PropertyValue& wrong :
         {PropertyValue(u"text"), PropertyValue(PropertyDictionary{{"Add to end", 1}})}) {
        defaults.setObject("actions", wrong);
        EXPECT_EQ(make("Add to end")->parameterList(), other->parameterList());
    }
}

TEST_F(Catalogue, RefusesUnknownActions) {
    EXPECT_FALSE(catalogue.hasAction("no such action"));
    ActionList small({{"a", "A", ActionCategory::move, newAction<Nothing>, {}},
                      {"b", "B", ActionCategory::move, newAction<Nothing>, {}}});
    try {
        (void)small.newActionForName("no such action");
        FAIL();
    } catch (const UnknownActionError& error) {
        EXPECT_STREQ(error.what(), "!!!!Couldn't load new action 'no such action' from nib with "
                                   "nameToNibMapping: \"a\", \"b\"");
    }
}

TEST_F(Catalogue, ObservesOnlyWhatTheInterfaceEdits) {
    RecordingObserver observer;
    catalogue.setObserver(&observer);
    const auto edited = make("Add to end");
    const auto copy = catalogue.newActionForName("Add to end", ActionUse::privateRun);
    copy->setValue(u"a", "string");
    edited->setValue(u"b", "string");
    catalogue.setObserver(nullptr);
    edited->setValue(u"c", "string");
    EXPECT_EQ(observer.changes, (std::vector<RecordingObserver::Change>{{"string", u"", u"b"}}));
}

TEST_F(Catalogue, MakesActionsOnTheMainThread) {
    ManualRunLoop loop;
    static const auto mainThread = std::this_thread::get_id();
    static std::atomic<int> madeElsewhere;
    madeElsewhere = 0;
    constexpr auto create = []() -> std::unique_ptr<BaseRenameAction> {
        madeElsewhere += std::this_thread::get_id() != mainThread;
        return std::make_unique<Nothing>();
    };
    ActionList list({{"a", "A", ActionCategory::move, create, {}}});
    list.setRunLoop(&loop);
    int done = 0;
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i)
        workers.emplace_back([&] {
            EXPECT_EQ(list.newActionForName("a")->actionName(), "a");
            EXPECT_THROW((void)list.newActionForName("unknown"), UnknownActionError);
            loop.post([&] { ++done; });
        });
    // The main thread makes some too, while workers wait for it.
    EXPECT_TRUE(loop.runUntil([&] {
        EXPECT_NE(list.newActionForName("a"), nullptr);
        return done == 4;
    }));
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(madeElsewhere, 0);

    loop.close();
    std::thread late([&] { EXPECT_NE(list.newActionForName("a"), nullptr); });
    late.join();
}

// ---- what docs/adding-an-action.md shows is true

TEST_F(Catalogue, TakesTheActionOfThePageOnAddingOne) {
    auto entries = addedActions();
    ASSERT_EQ(entries.size(), 1U);
    for (const auto& entry : allActions())
        entries.push_back(entry);
    ActionList list(entries);
    expectLaws(list, entries);
    expectExamples(entries.front());
}

TEST_F(Catalogue, HoldsTheActionThatThePageShows) {
    auto& files = FileSystem::sharedInstance();
    std::string page, unit;
    ASSERT_EQ(files.readFile(TAVRIN_SOURCE_FOLDER "/docs/adding-an-action.md", page, 1U << 20), 0);
    ASSERT_EQ(files.readFile(TAVRIN_SOURCE_FOLDER "/Code/App/actions/characters/CharacterSetActions.cpp",
                             unit, 1U << 20),
              0);
    const std::string opening = "```cpp real\n";
    int count = 0;
    for (auto at = page.find(opening); at != page.npos; at = page.find(opening, at + 1), ++count) {
        const auto start = at + opening.size();
        const auto shown = page.substr(start, page.find("```", start) - start);
        EXPECT_NE(unit.find(shown), unit.npos) << shown;
    }
    EXPECT_EQ(count, 2);
}

} // namespace

} // namespace tavrin::test
