#include "actions/CatalogueFixture.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"

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

} // namespace
} // namespace tavrin::test
