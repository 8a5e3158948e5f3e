#include "actions/ActionError.h"
#include "actions/CatalogueFixture.h"
#include "common/ManualRunLoop.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include <functional>
#include <thread>

namespace tavrin::test {
namespace {

using Settings = TVRNGlobalPreferencesPseudoAction;

class SettingsTest : public CatalogueFixture {};

TEST_F(SettingsTest, StartFromValuesThatMeanSomething) {
    const Settings settings;
    EXPECT_EQ(settings.defaultParameters(), settings.parameterList());
    EXPECT_FALSE(settings.parameterList().contains("conflictResolutionDontChangeFirst"));
    const PropertyDictionary known = Settings::knownSettings();
    EXPECT_TRUE(known.contains("conflictResolutionDontChangeFirst"));
    for (const auto& [key, value] : known) {
        EXPECT_EQ(Settings::problemOf(key, value), "") << key;
        EXPECT_EQ(Settings::problemOf(key, -1).empty(), value.asText() != nullptr) << key;
    }
    EXPECT_EQ(Settings::problemOf("unheard of", -1), "");
}

TEST_F(SettingsTest, OddValuesReadAsEachAccessorTells) {
    struct Case {
        const char* key;
        PropertyValue value;
        std::function<int(const Settings&)> read;
        int expected;
    };
    const std::vector<Case> cases{
        {"interactiveMode", 2, [](const Settings& s) { return s.shouldInteract(); }, 0},
        {"interactiveMode", u"1", [](const Settings& s) { return s.shouldInteract(); }, 1},
        {"showSummary", 2, [](const Settings& s) { return s.shouldShowSummary(); }, 0},
        {"quitAfterRename", 7, [](const Settings& s) { return s.shouldQuitAfterRename(); }, 7},
        {"processFiles", u"3", [](const Settings& s) { return s.shouldProcessFiles(); }, 3},
        {"silentDroplet", -1, [](const Settings& s) { return s.shouldCreateSilentDroplets(); }, -1},
        {"lockedDroplet", 1, [](const Settings& s) { return s.shouldPreventDropletEditing(); }, 1},
        {"previewConflictResolution", 0,
         [](const Settings& s) { return s.shouldPreviewConflictResolution(); }, 0},
        {"quickLookThumbnail", u"YES", [](const Settings& s) { return s.shouldShowQuickLookThumbnail(); }, 1},
        {"quickLookThumbnail", PropertyArray(),
         [](const Settings& s) { return s.shouldShowQuickLookThumbnail(); }, 0},
        {"conflictResolutionDontChangeFirst", true,
         [](const Settings& s) { return s.conflictResolutionDontChangeFirst(); }, 1},
    };
    for (const Case& each : cases) {
        Settings settings;
        settings.setValue(each.value, each.key);
        EXPECT_EQ(each.read(settings), each.expected) << each.key << " = " << description(each.value);
    }
}

TEST_F(SettingsTest, AbsentKeysReadAsEachAccessorTells) {
    const Settings bare{PropertyDictionary()};
    EXPECT_EQ(bare.getRenameMode(), 2);
    EXPECT_EQ(bare.shouldShowCurrentName(), 1);
    EXPECT_EQ(bare.shouldProcessFiles(), 1);
    EXPECT_EQ(bare.shouldProcessFolders(), 1);
    EXPECT_EQ(bare.shouldProcessSubfolders(), 0);
    EXPECT_EQ(bare.shouldCopyFileComments(), 1);
    EXPECT_EQ(bare.shouldCalculateAccurateFolderSize(), 1);
    EXPECT_EQ(bare.lastAddDirectory(), "");
    const std::vector<std::int32_t> zero{bare.getPreviewPaneWidthAsInt(),
                                         bare.getPreviewModeAsInt(),
                                         bare.shouldCreateSilentDroplets(),
                                         bare.shouldQuitAfterRename(),
                                         bare.shouldShowMultistepDrawer(),
                                         bare.shouldShowPath(),
                                         bare.shouldInteract(),
                                         bare.shouldShowSummary(),
                                         bare.automaticSorting(),
                                         bare.shouldContinueAfterRename(),
                                         bare.shouldPreviewConflictResolution(),
                                         bare.shouldPreventDropletEditing(),
                                         bare.shouldShowQuickLookThumbnail(),
                                         bare.shouldRetrieveEXIFInformation(),
                                         bare.shouldPreventAccidentalITunesLibraryDamage(),
                                         bare.shouldPreventAccidentalIPhotoLibraryDamage(),
                                         bare.conflictResolutionScheme()};
    EXPECT_EQ(zero, std::vector<std::int32_t>(zero.size(), 0));
    const ItemFilter filter = bare.itemFilter();
    EXPECT_TRUE(filter.shouldProcessFiles && filter.shouldProcessFolders && !filter.shouldProcessSubfolders);
}

TEST_F(SettingsTest, NothingStoredOverAValueEmptiesIt) {
    Settings settings;
    settings.setValue(std::nullopt, "lastAddDirectory");
    settings.setValue(std::nullopt, "conflictResolutionScheme");
    EXPECT_EQ(settings.lastAddDirectory(), "");
    EXPECT_EQ(settings.conflictResolutionScheme(), 0);
}

TEST_F(SettingsTest, ALoadTurnsAutomaticSortingOnAndKeepsWhatItDoesNotTell) {
    for (const PropertyDictionary& list :
         {PropertyDictionary{{"showPath", 1}},
          PropertyDictionary{{"showPath", 1}, {"automaticSorting", false}},
          PropertyDictionary{{"showPath", 1}, {"automatic sorting", false}}}) {
        Settings settings;
        settings.setAutomaticSorting(false);
        EXPECT_FALSE(settings.automaticSorting());
        settings.setParameterList(list);
        EXPECT_TRUE(settings.automaticSorting());
        EXPECT_EQ(settings.shouldShowPath(), 1);
        EXPECT_EQ(settings.getPreviewPaneWidthAsInt(), 450);
        EXPECT_EQ(settings.valueForKey("automaticSorting"), PropertyValue(true));
    }
}

TEST_F(SettingsTest, SurviveAStoreAndALoad) {
    Settings settings;
    settings.setShouldProcessSubfolders(1);
    settings.setLastAddDirectory("/tmp/a\xFF");
    catalogue.saveActionParametersToPreferences(settings);
    Settings loaded;
    catalogue.loadActionParametersFromPreferences(loaded);
    EXPECT_EQ(loaded.parameterList(), settings.parameterList());
    EXPECT_EQ(loaded.lastAddDirectory(), "/tmp/a\xFF");
}

TEST_F(SettingsTest, ObserversSeeEachSetterButOneWithTheNewValueInPlace) {
    struct Watcher : RecordingObserver {
        void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                    const std::optional<PropertyValue>& oldValue,
                                    const std::optional<PropertyValue>& newValue) override {
            RecordingObserver::observeValueForKeyPath(keyPath, object, oldValue, newValue);
            // What a worker would read at this moment.
            std::thread([&] { seenByWorker = static_cast<Settings&>(object).valueForKey(keyPath); }).join();
            EXPECT_EQ(seenByWorker, newValue) << keyPath;
        }
        std::optional<PropertyValue> seenByWorker;
    };
    Settings settings;
    Watcher watcher;
    const auto observation = settings.registerObserverForAllValues(watcher);
    settings.setAutomaticSorting(false);
    settings.setLastAddDirectory("/tmp");
    settings.setShouldContinueAfterRename(false);
    settings.setShouldProcessFiles(0);
    EXPECT_FALSE(settings.shouldContinueAfterRename());
    EXPECT_EQ(watcher.keys(),
              (std::vector<std::string>{"automaticSorting", "lastAddDirectory", "processFiles"}));
    EXPECT_EQ(watcher.changes.front(), (RecordingObserver::Change{"automaticSorting", true, false}));

    watcher.changes.clear();
    settings.setParameterList({{"showPath", 1}});
    EXPECT_EQ(watcher.changes.size(), settings.parameterList().size());
}

TEST_F(SettingsTest, TheFilterHoldsTheThreeSettings) {
    Settings settings;
    settings.setShouldProcessFiles(0);
    settings.setShouldProcessSubfolders(2);
    const ItemFilter filter = settings.itemFilter();
    EXPECT_FALSE(filter.shouldProcessFiles);
    EXPECT_TRUE(filter.shouldProcessFolders);
    EXPECT_TRUE(filter.shouldProcessSubfolders);
}

TEST_F(SettingsTest, WorkersReadWhileTheMainThreadWrites) {
    Settings settings;
    settings.setShouldProcessSubfolders(1);
    std::atomic<bool> isOver{false};
    std::thread worker([&] {
        while (!isOver) {
            const ItemFilter filter = settings.itemFilter();
            // Both are always set together: one moment never shows one without the other.
            EXPECT_FALSE(filter.shouldProcessFiles && !filter.shouldProcessSubfolders);
        }
    });
    for (int round = 0; round < 300; ++round) {
        settings.setParameterList({{"processFiles", round % 2}, {"processSubfolders", round % 2}});
        settings.setLastAddDirectory(std::to_string(round));
    }
    isOver = true;
    worker.join();
}

TEST_F(SettingsTest, AWorkersChangeIsMadeOnTheMainThread) {
    ManualRunLoop loop;
    Settings settings;
    std::thread([&] { EXPECT_THROW(settings.setLionMode(), ActionError); }).join();
    settings.setRunLoop(&loop);
    settings.setValue(1, "renameMode");
    std::atomic<bool> isDone{false};
    std::thread worker([&] {
        settings.setLionMode();
        isDone = true;
        loop.post([] {});
    });
    EXPECT_TRUE(loop.runUntil([&] { return isDone.load(); }));
    worker.join();
    EXPECT_EQ(settings.getRenameMode(), 0);
}

} // namespace
} // namespace tavrin::test
