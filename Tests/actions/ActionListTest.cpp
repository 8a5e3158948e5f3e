#include "actions/ActionError.h"
#include "actions/CatalogueFixture.h"
#include "common/ManualRunLoop.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <atomic>
#include <fstream>
#include <set>
#include <thread>

namespace tavrin::test {

namespace {

using Catalogue = CatalogueFixture;

ActionList::Resources smallResources() {
    return {{"Add to front", "Add to end", "", "Replace text"}, {u"A", u"B", u"", u"C"}, {u"One", u"Two"}};
}

TEST_F(Catalogue, MapsMenusToCategories) {
    const ActionList list(smallResources());
    EXPECT_EQ(list.count(), 4);
    EXPECT_EQ(list.categoryToActionMapping(), (std::vector<std::vector<std::int32_t>>{{0, 1}, {3}}));
    std::vector<std::int32_t> categories;
    for (std::int32_t i = 0; i < list.count(); ++i)
        categories.push_back(list.translateActionIndexToCategoryIndex(i).value());
    EXPECT_EQ(categories, (std::vector<std::int32_t>{0, 0, 0, 1}));
    EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(1), 3);
    EXPECT_EQ(list.getItemNamesForCategory(0), (std::vector<std::u16string>{u"A", u"B"}));
    EXPECT_EQ(list.popUpMenuItemStringForName("Replace text"), u"C");
    EXPECT_EQ(list.popUpMenuItemStringForName("no such action"), u"Error");
    EXPECT_EQ(list.popUpMenuIndexForName("Replace text"), 3);
    EXPECT_EQ(list.popUpMenuIndexForName("no such action"), std::nullopt);
    EXPECT_EQ(list.nameForPopUpIndex(1), "Add to end");
    for (const std::int32_t outside : {-1, 4, 2147483647}) {
        EXPECT_EQ(list.nameForPopUpIndex(outside), "");
        EXPECT_EQ(list.translateActionIndexToCategoryIndex(outside), std::nullopt);
        EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(outside), std::nullopt);
        EXPECT_TRUE(list.getItemNamesForCategory(outside).empty());
    }
}

TEST_F(Catalogue, LeavesOutWhatCannotBeMade) {
    const struct {
        std::vector<std::string> given, kept;
        std::vector<std::u16string> categories;
    } cases[] = {
        {{"x", "", "Add to end", "y", "", "z", "", "Replace text"},
         {"Add to end", "", "Replace text"},
         {u"2", u"4"}},
        {{"Add to end", "", "x"}, {"Add to end"}, {u"1"}},
        {{"x"}, {}, {}},
        {{}, {}, {}},
    };
    for (const auto& each : cases) {
        ActionList::Resources given{each.given, {}, {u"1", u"2", u"3", u"4"}};
        for (const auto& name : each.given)
            given.labels.push_back(text::fromUtf8(name));
        const ActionList list(given);
        EXPECT_EQ(list.nameArray(), each.kept);
        EXPECT_EQ(list.categoryPopUpMenuItems(), each.categories);
        EXPECT_EQ(list.categoryToActionMapping().size(), each.categories.size());
        for (const auto& name : list.nameArray())
            EXPECT_EQ(list.popUpMenuItemStringForName(name), text::fromUtf8(name));
    }
}

TEST_F(Catalogue, HasMenusForEveryActionOfTheProgram) {
    const auto all = resources();
    EXPECT_EQ(all.labels.size(), all.names.size());
    std::set<std::string> names;
    std::set<std::u16string> labels;
    std::size_t separators = 0;
    for (std::size_t i = 0; i < all.names.size(); ++i) {
        ASSERT_EQ(all.names[i].empty(), all.labels[i].empty()) << i;
        separators += all.names[i].empty();
        EXPECT_TRUE(all.names[i].empty() || names.insert(all.names[i]).second) << all.names[i];
        EXPECT_TRUE(all.labels[i].empty() || labels.insert(all.labels[i]).second) << all.names[i];
    }
    EXPECT_EQ(names.size(), 93U);
    EXPECT_EQ(all.categories.size(), separators + 1);

    for (const auto& entry : allActions())
        EXPECT_TRUE(catalogue.popUpMenuIndexForName(entry.name)) << entry.name << " is in no menu";
    EXPECT_EQ(catalogue.categoryPopUpMenuItems().size(), catalogue.categoryToActionMapping().size());
    for (const auto& category : catalogue.categoryToActionMapping())
        EXPECT_FALSE(category.empty());
}

TEST_F(Catalogue, MakesActionsThatKeepItsLaws) {
    std::set<std::string_view> seen;
    for (const auto& entry : allActions()) {
        EXPECT_TRUE(seen.insert(entry.name).second) << entry.name;
        auto action = catalogue.newActionForName(std::string(entry.name));
        EXPECT_EQ(action->actionName(), entry.name);
        const auto defaultValues = action->defaultParameters();
        EXPECT_EQ(action->parameterList(), defaultValues) << entry.name;

        std::set<std::string_view> keys;
        for (const auto& row : action->parameters()) {
            SCOPED_TRACE(std::string(entry.name) + ": " + std::string(row.key));
            EXPECT_TRUE(keys.insert(row.key).second);
            EXPECT_FALSE(row.label.empty());
            EXPECT_NE(row.isText(), row.kind == ParameterKind::number || row.kind == ParameterKind::choice ||
                                        row.kind == ParameterKind::checkbox);
            EXPECT_EQ(row.whenNew.index(), row.whenAbsent.index());
            EXPECT_EQ(row.choices.empty(),
                      row.kind != ParameterKind::choice && row.kind != ParameterKind::checkbox);
            const auto isWhenNew = [&](const auto& choice) {
                return propertyValue(row.whenNew) == choice.value;
            };
            EXPECT_TRUE(row.choices.empty() ||
                        std::any_of(row.choices.begin(), row.choices.end(), isWhenNew));
        }

        const auto xml = PropertyList::toXml(PropertyValue(defaultValues));
        const auto read = PropertyList::fromBytes(xml);
        ASSERT_TRUE(std::holds_alternative<PropertyValue>(read)) << entry.name;
        action->setParameterList(*std::get<PropertyValue>(read).asDictionary());
        // What an action tells the user, it may tell anew when parameters are loaded.
        for (const auto& row : action->parameters())
            if (row.kind == ParameterKind::status)
                action->setValue(propertyValue(row.whenNew), std::string(row.key));
        EXPECT_EQ(action->parameterList(), defaultValues) << entry.name;
    }
}

TEST_F(Catalogue, StartsAnActionWithTheParametersLastSaved) {
    auto action = catalogue.newActionForName("Add to end");
    action->setValue(u"-x", "string");
    catalogue.saveActionParametersToPreferences(*action);
    auto other = catalogue.newActionForName("Add to front");
    catalogue.saveActionParametersToPreferences(*other);
    EXPECT_EQ(catalogue.newActionForName("Add to end")->parameterList(), action->parameterList());

    // An entry from before a parameter came in, in the key form of its time.
    defaults.setObject("actions",
                       PropertyDictionary{{"Add to end", PropertyDictionary{{"fragment selection", 3}}}});
    auto old = catalogue.newActionForName("Add to end");
    EXPECT_EQ(old->getParamInt("fragmentSelection", 9), 3);
    EXPECT_EQ(old->valueForKey("string"), PropertyValue(u""));

    for (const PropertyValue& wrong :
         {PropertyValue(u"text"), PropertyValue(PropertyDictionary{{"Add to end", 1}})}) {
        defaults.setObject("actions", wrong);
        EXPECT_EQ(catalogue.newActionForName("Add to end")->parameterList(), other->parameterList());
    }
}

TEST_F(Catalogue, RefusesUnknownAndMisnamedActions) {
    EXPECT_FALSE(catalogue.hasAction("no such action"));
    try {
        (void)catalogue.newActionForName("no such action");
        FAIL();
    } catch (const UnknownActionError& error) {
        EXPECT_TRUE(std::string(error.what())
                        .starts_with("!!!!Couldn't load new action 'no such action' from nib with "
                                     "nameToNibMapping: "))
            << error.what();
    }
    ActionList list({}, {{"promised", allActions().front().make}});
    try {
        (void)list.newActionForName("promised");
        FAIL();
    } catch (const ActionError& error) {
        EXPECT_STREQ(error.what(),
                     "action in nib file different from promised action name. Found Replace text. "
                     "Were promised: promised");
    }
}

TEST_F(Catalogue, ObservesOnlyWhatTheInterfaceEdits) {
    RecordingObserver observer;
    catalogue.setObserver(&observer);
    auto edited = catalogue.newActionForName("Add to end");
    auto copy = catalogue.newActionForName("Add to end", ActionUse::privateRun);
    copy->setValue(u"a", "string");
    EXPECT_TRUE(observer.changes.empty());
    edited->setValue(u"a", "string");
    EXPECT_EQ(observer.keys(), std::vector<std::string>{"string"});
    catalogue.setObserver(nullptr);
    edited->setValue(u"b", "string");
    EXPECT_EQ(observer.changes.size(), 1U);
}

TEST_F(Catalogue, MakesActionsOnTheMainThread) {
    ManualRunLoop loop;
    catalogue.setRunLoop(&loop);
    static std::atomic<std::thread::id> maker;
    ActionList list(smallResources(), {{"Add to front", [] {
                                            maker = std::this_thread::get_id();
                                            return allActions().front().make();
                                        }}});
    list.setRunLoop(&loop);
    int done = 0;
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i)
        workers.emplace_back([&] {
            EXPECT_EQ(catalogue.newActionForName("Add to end")->actionName(), "Add to end");
            EXPECT_THROW((void)list.newActionForName("Add to front"), ActionError);
            EXPECT_THROW((void)list.newActionForName("unknown"), UnknownActionError);
            loop.post([&] { ++done; });
        });
    // The main thread makes some too, while workers wait for it.
    EXPECT_TRUE(loop.runUntil([&] {
        EXPECT_NE(catalogue.newActionForName("Replace text"), nullptr);
        return done == 4;
    }));
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(maker.load(), std::this_thread::get_id());

    loop.close();
    std::thread late([&] { EXPECT_NE(catalogue.newActionForName("Add to end"), nullptr); });
    late.join();
    catalogue.setRunLoop(nullptr);
}

TEST_F(Catalogue, TellsWhatIsWrongWithItsResources) {
    const struct {
        const char* names;
        const char* message;
    } cases[] = {
        {"<array><string>a</string></array>", "differ in length"},
        {"<dict/>", "expected an array"},
        {"<array><string/><integer>1</integer></array>", "[1]: expected a text"},
        {"<array>", "popUpIndexToNameMapping.plist"},
    };
    for (const auto& each : cases) {
        TemporaryFolder folder;
        const auto write = [&](const char* name, const char* content) {
            std::ofstream(folder.path() + "/" + name + ".plist")
                << "<plist version=\"1.0\">" << content << "</plist>";
        };
        write("popUpIndexToNameMapping", each.names);
        write("actionPopUpMenuItems", "<array/>");
        write("categoryPopUpMenuItems", "<array/>");
        const auto read = ActionList::readResources(folder.path());
        const auto* error = std::get_if<PropertyListError>(&read);
        ASSERT_NE(error, nullptr) << each.names;
        EXPECT_NE(error->message.find(each.message), std::string::npos) << error->message;
    }
}

} // namespace

} // namespace tavrin::test
