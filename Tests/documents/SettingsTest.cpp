#include "actions/CatalogueFixture.h"
#include "common/FailingFileSystem.h"
#include "common/Recipes.h"
#include "common/Testing.h"
#include "documents/DropletHandOver.h"
#include "documents/FirstLaunchManager.h"
#include "documents/SoftwareUpdater.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "documents/UpdateFeed.h"
#include "platform/propertylists/UserDefaults.h"

namespace tavrin::test {
namespace {

class SettingsTest : public CatalogueFixture {
  protected:
    TVRNGlobalPreferencesPseudoAction action;
};

TEST_F(SettingsTest, StartFromValuesThatMeanSomething) {
    EXPECT_EQ(action.defaultParameters(), action.parameterList());
    EXPECT_FALSE(action.parameterList().contains("conflictResolutionDontChangeFirst"));
    const PropertyDictionary known = Settings::knownSettings();
    EXPECT_TRUE(known.contains("conflictResolutionDontChangeFirst"));
    for (const auto& [key, value] : known) {
        EXPECT_EQ(Settings::problemOf(key, value), "") << key;
        EXPECT_EQ(Settings::problemOf(key, -1).empty(), value.asText() != nullptr) << key;
    }
    EXPECT_EQ(Settings::problemOf("unheard of", -1), "");
}

TEST_F(SettingsTest, AbsentAndOddValuesAreReadAsTheirKindIs) {
    const Settings bare = Settings::of({});
    EXPECT_EQ(bare.shouldCalculateAccurateFolderSize, 1);
    EXPECT_TRUE(bare.shouldKeepHistory() && !bare.shouldInteract() && !bare.shouldShowSummary());
    EXPECT_TRUE(!bare.automaticSorting && !bare.shouldPreviewConflictResolution);

    const auto of = [](const char* key, PropertyValue value) {
        return Settings::of({{key, std::move(value)}});
    };
    EXPECT_FALSE(of("interactiveMode", 2).shouldInteract()) << "only 1 counts";
    EXPECT_TRUE(of("interactiveMode", u"1").shouldInteract());
    EXPECT_FALSE(of("showSummary", 2).shouldShowSummary());
    EXPECT_EQ(of("processFiles", u"3").shouldProcessFiles, 3);
    EXPECT_TRUE(of("processSubfolders", 2).itemFilter().shouldProcessSubfolders);
    EXPECT_TRUE(of("quickLookThumbnail", u"YES").shouldShowQuickLookThumbnail);
    EXPECT_FALSE(of("quickLookThumbnail", PropertyArray()).shouldShowQuickLookThumbnail);
}

TEST_F(SettingsTest, ALoadTurnsAutomaticSortingOnAndKeepsWhatItDoesNotTell) {
    for (const char* key : {"showPath", "automaticSorting", "automatic sorting"}) {
        PropertyDictionary list{{"showPath", 1}};
        list.emplace(key, false);
        action.setAutomaticSorting(false);
        action.setParameterList(list);
        EXPECT_TRUE(action.values().automaticSorting);
        EXPECT_EQ(action.values().shouldShowPath, 1);
        EXPECT_EQ(action.values().previewPaneWidth, 450);
    }
}

TEST_F(SettingsTest, SurviveAStoreAndALoad) {
    action.setShouldProcessSubfolders(1);
    action.setLastAddDirectory("/tmp/a\xFF");
    catalogue.saveActionParametersToPreferences(action);
    TVRNGlobalPreferencesPseudoAction loaded;
    catalogue.loadActionParametersFromPreferences(loaded);
    EXPECT_EQ(loaded.parameterList(), action.parameterList());
    EXPECT_EQ(loaded.lastAddDirectory(), "/tmp/a\xFF");
    loaded.setValue(std::nullopt, "lastAddDirectory");
    loaded.setValue(std::nullopt, "conflictResolutionScheme");
    EXPECT_EQ(loaded.lastAddDirectory(), "");
    EXPECT_EQ(loaded.values().conflictResolutionScheme, 0);
}

TEST_F(SettingsTest, ObserversSeeEachSetterButOneWithTheNewValuesInPlace) {
    RecordingObserver watcher;
    Settings seen;
    watcher.then = [&] { seen = action.values(); };
    const auto observation = action.registerObserverForAllValues(watcher);
    action.setAutomaticSorting(false);
    action.setLastAddDirectory("/tmp");
    action.setShouldContinueAfterRename(false);
    EXPECT_FALSE(action.values().shouldContinueAfterRename);
    action.setShouldProcessFiles(0);
    EXPECT_EQ(seen.shouldProcessFiles, 0);
    EXPECT_EQ(watcher.keys(),
              (std::vector<std::string>{"automaticSorting", "lastAddDirectory", "processFiles"}));
    EXPECT_EQ(watcher.changes.front(), (RecordingObserver::Change{"automaticSorting", true, false}));
    action.setParameterList({{"showPath", 1}});
    EXPECT_EQ(watcher.changes.size(), 3 + action.parameterList().size());
}

TEST_F(SettingsTest, WorkersReadOneMomentWhileTheMainThreadWrites) {
    action.setShouldProcessSubfolders(1);
    std::atomic<bool> isOver{false};
    std::thread worker([&] {
        while (!isOver) {
            const ItemFilter filter = action.values().itemFilter();
            EXPECT_FALSE(filter.shouldProcessFiles && !filter.shouldProcessSubfolders);
        }
    });
    for (int round = 0; round < 300; ++round)
        action.setParameterList({{"processFiles", round % 2}, {"processSubfolders", round % 2}});
    isOver = true;
    worker.join();
}

UpdateFeedItem item(const std::string& version, const std::string& minimum = "") {
    return {{}, version, {}, minimum, {}, {}};
}

TEST(SoftwareUpdaterTest, ChoosesTheNewestThatTheSystemCanRunAndKnowsWhatIsNewerThanItself) {
    // The items of a feed, and the place of the best among them; -1 for none.
    const std::pair<std::vector<UpdateFeedItem>, int> cases[] = {
        {{}, -1},
        {{item("9.1", "10.9")}, -1},
        {{item("9.1", "10.8.5")}, 0},
        {{item("9.1"), item("9.2"), item("9.0")}, 1},
        {{item("9.1"), item("9.2", "11"), item("9.0")}, 0},
        {{item("9.1.5"), item("9.1.6"), item("9.1.4")}, 2}, // of equal finals the later one
        {{item(""), item("9.1"), item("")}, 1},
    };
    const SoftwareUpdater updater("9.0", "10.8.5");
    for (const auto& [items, place] : cases) {
        const UpdateFeedItem* best = updater.bestValidUpdateInAppcast(items);
        EXPECT_EQ(best ? best - items.data() : -1, place) << items.size();
    }
    for (const auto& [offered, isNewer] : {std::pair{"9.2", true}, {"9.0.9", false}, {"8.9", false}})
        EXPECT_EQ(updater.isNewer(item(offered)), isNewer) << offered;
    EXPECT_FALSE(SoftwareUpdater("9.1b2", "1").isNewer(item("9.1b2")));
}

TEST(UpdateFeedTest, KnowsPathsAndAddresses) {
    using Place = UpdateFeed::Place;
    const std::vector<std::tuple<const char*, Place, const char*>> cases{
        {" \t\n", Place::none, ""},
        {"/a b/feed.xml", Place::file, "/a b/feed.xml"},
        {"file:///a%20b/%E4%zz%4", Place::file, "/a b/\xE4%zz%4"},
        {"FILE://localhost/x", Place::file, "/x"},
        {" https://example.org/f?x=%20 ", Place::web, "https://example.org/f?x=%20"},
        {"HTTP://example.org", Place::web, "HTTP://example.org"},
        {"https://", Place::unknown, "https://"},
        {"https://exa mple.org", Place::unknown, "https://exa mple.org"},
        {"file://other/x", Place::unknown, "file://other/x"},
        {"file://", Place::unknown, "file://"},
        {"feed.xml", Place::unknown, "feed.xml"},
        {"ftp://example.org/f", Place::unknown, "ftp://example.org/f"},
    };
    for (const auto& [given, place, location] : cases) {
        const UpdateFeed feed = UpdateFeed::at(given);
        EXPECT_EQ(feed.place, place) << given;
        EXPECT_EQ(feed.location, location) << given;
    }
    UserDefaults defaults;
    defaults.setObject("SUFeedURL", 7);
    EXPECT_EQ(UpdateFeed::ofDefaults(defaults).place, Place::none);
    defaults.setObject("SUFeedURL", u"/f");
    EXPECT_EQ(UpdateFeed::ofDefaults(defaults).location, "/f");
}

TEST(UpdateFeedTest, ReadsNoMoreThanAFeed) {
    const TemporaryFolder folder;
    const std::string most(UpdateFeedReader::sizeLimit, 'x');
    const auto read = UpdateFeed::readFile(folder.write("most", most));
    EXPECT_EQ(std::get<std::string>(read).size(), most.size());
    for (const std::string& path :
         {folder.write("more", most + "x"), folder.path(), folder.path("none"), std::string("/dev/zero")})
        EXPECT_TRUE(std::holds_alternative<UpdateFeedError>(UpdateFeed::readFile(path))) << path;
}

TEST(FirstLaunch, AFirstLaunchBeginsCleanAndIsRememberedOnDisk) {
    for (const int version : {80000, 80002, 0}) {
        SCOPED_TRACE(version);
        const TemporaryFolder folder;
        PropertyDictionary stored{{"actions", PropertyDictionary{{"Add to end", PropertyDictionary()}}}};
        if (version > 0)
            stored.emplace("firstLaunchVersion", version);
        const std::string bytes = PropertyList::toXml(stored);
        const std::string path = folder.write("defaults.plist", bytes);
        UserDefaults defaults(path);
        FirstLaunchManager manager(defaults, "/opt/tavrin");
        EXPECT_TRUE(manager.callOnlyOnceIsFirstLaunch());
        manager.doIt();
        EXPECT_TRUE(manager.isFirstLaunch() && !manager.callOnlyOnceIsFirstLaunch());
        EXPECT_FALSE(defaults.objectForKey("actions") || defaults.objectForKey("location"));
        const std::string copy = "defaults.plist.saved-" + std::to_string(version);
        EXPECT_EQ(folder.read(copy), bytes);
        ASSERT_TRUE(manager.otherSettings());
        EXPECT_EQ(manager.otherSettings()->copy, folder.path(copy));
        EXPECT_EQ(manager.otherSettings()->isNewer, version > 80001);

        UserDefaults next(path);
        EXPECT_EQ(next.objectForKey("actions"), std::nullopt);
        next.setObject("actions", u"kept");
        FirstLaunchManager second(next, "/opt/tavrin");
        second.doIt();
        EXPECT_FALSE(second.isFirstLaunch());
        EXPECT_FALSE(second.otherSettings());
        EXPECT_EQ(next.objectForKey("actions"), PropertyValue(u"kept"));
        EXPECT_EQ(UserDefaults(path).objectForKey("location"), PropertyValue(u"/opt/tavrin"));

        // The newer version comes back, and this one once more: no copy takes the place of another.
        folder.write("defaults.plist", bytes + "\n");
        UserDefaults third(path);
        FirstLaunchManager(third, "/opt/tavrin").doIt();
        EXPECT_EQ(folder.read(copy), bytes);
        EXPECT_EQ(folder.read(copy + "-2"), bytes + "\n");
    }
}

TEST(FirstLaunch, WhatCannotBeCopiedStaysAsItIs) {
    for (const FileCall call : {FileCall::read, FileCall::write, FileCall::rename}) {
        const TemporaryFolder folder;
        const PropertyDictionary stored{{"firstLaunchVersion", 90000}};
        UserDefaults defaults(folder.write("defaults.plist", PropertyList::toXml(stored)));
        const auto tree = folder.tree();
        FailingFileSystem failing;
        failing.failKind(call, ENOSPC);
        FirstLaunchManager manager(defaults, "/opt/tavrin");
        manager.doIt();
        failing.reset();
        EXPECT_EQ(manager.otherSettings()->error, "No space left on device");
        EXPECT_EQ(defaults.integerForKey("firstLaunchVersion"), 80001);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_EQ(folder.tree(), tree);
    }
}

using DropletHandOverTest = CatalogueFixture;

TEST_F(DropletHandOverTest, IsReadOnceFromEitherLayer) {
    const PropertyDictionary record{{"file list", PropertyArray{u"/a", u"/b"}}};
    EXPECT_FALSE(DropletHandOver::isPresent(defaults));
    for (const bool isOfThisProcess : {false, true}) {
        if (isOfThisProcess)
            defaults.setProcessObject("droplet settings", record);
        else
            defaults.setObject("droplet settings", record);
        ASSERT_TRUE(DropletHandOver::isPresent(defaults));
        const auto handOver = std::get<DropletHandOver>(DropletHandOver::read(defaults));
        EXPECT_EQ(handOver.fileList, (std::vector<std::string>{"/a", "/b"}));
        EXPECT_FALSE(handOver.compositeAction || handOver.globalSettings || handOver.hasVersion);
        DropletHandOver::clear(defaults);
        EXPECT_FALSE(DropletHandOver::isPresent(defaults));
    }
}

TEST_F(DropletHandOverTest, WrongPartsAreErrors) {
    const std::pair<PropertyValue, std::string> cases[] = {
        {u"x", ": expected a dictionary"},
        {PropertyDictionary{{"composite action", chain({{"Fly", {}}})}},
         ".composite action.composite actions array[0].action name: there is no action \"Fly\""},
        {PropertyDictionary{{"file list", PropertyArray{u"/a", 2}}}, ".file list[1]: expected a path"}};
    for (const auto& [record, message] : cases) {
        defaults.setProcessObject("droplet settings", record);
        const auto error = std::get<RecipeError>(DropletHandOver::read(defaults));
        EXPECT_EQ(error.message, "droplet settings" + message);
    }
}

} // namespace
} // namespace tavrin::test
