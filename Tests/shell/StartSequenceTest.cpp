#include "common/Variable.h"
#include "documents/DropletBundle.h"
#include "platform/propertylists/PropertyList.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;

class StartSequenceTest : public ShellFixture {
  protected:
    void handOver(PropertyDictionary record) {
        defaults.setProcessObject("droplet settings", std::move(record));
    }
    PropertyDictionary record(const PropertyDictionary& settings = {}) {
        return {{"composite action", chain({{"Add to end", {{"string", u"X"}}}})},
                {"global settings", settings},
                {"settings plist path", u"/d/Settings.plist"},
                {"Version", u"9.0.0"}};
    }
    void run() { controller().applicationDidFinishLaunching(); }
    /// The next start of the same user.
    void restart() {
        endController();
        loop.reopen();
        frontEnd.isTerminated = false;
    }
};

TEST_F(StartSequenceTest, ANormalStartGoesInItsOrderAndAsksForTheFirstPreview) {
    defaults.removeObject("firstLaunchVersion");
    defaults.setObject("composite action", chain({{"Add to end", {}}})); // a first launch forgets it
    defaults.setProcessObject("store", 1);
    EXPECT_FALSE(controller().hasFinishedInitializing());
    run();
    EXPECT_TRUE(controller().hasFinishedInitializing());
    EXPECT_EQ(controller().operationMode(), OperationMode::normal);
    EXPECT_EQ(stepNames(), std::vector<std::string>{"Produce numbered list"});
    EXPECT_TRUE(controller().previewControl().isPreviewPending());
    waitForPreview();
    EXPECT_EQ(frontEnd.finishedPreviews, 1);
    EXPECT_EQ(status(), "Please add files to be renamed to preview table above.");
    EXPECT_TRUE(data.kind("Data/Presets").has_value());
}

TEST_F(StartSequenceTest, ALaterStartHasWhatWasStored) {
    defaults.setObject("composite action", chain({{"Add to end", {{"string", u"X"}}}, {"Remove text", {}}}));
    defaults.setObject(
        "actions", PropertyDictionary{{"TVRN global settings",
                                       PropertyDictionary{{"multistep", 1}, {"automaticSorting", false}}}});
    defaults.setObject("actionListSeparatorPosition", 220.0);
    defaults.setObject("droplet settings", PropertyDictionary());
    start();
    EXPECT_EQ(controller().operationMode(), OperationMode::normal);
    EXPECT_EQ(stepNames(), (std::vector<std::string>{"Add to end", "Remove text"}));
    EXPECT_TRUE(controller().globalSettings().values().automaticSorting);
    EXPECT_EQ(defaults.objectForKey("location"), PropertyValue(u"/opt/tavrin"));
}

TEST_F(StartSequenceTest, AStoredChainThatIsNoGoodIsToldAndTheStartGoesOn) {
    defaults.setObject("composite action", chain({{"Fly", {}}}));
    start();
    ASSERT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_THAT(frontEnd.presented.front(), ::testing::HasSubstr("Fly"));
    EXPECT_EQ(stepNames().size(), 1u);
}

TEST_F(StartSequenceTest, ADropletWithFilesRenamesThemAndQuitsWithoutAWindow) {
    const std::string a = files.write("a.txt");
    PropertyDictionary droplet = record({{"interactiveMode", 0}});
    const std::string again = data.link("alias", files.path()) + "/a.txt";
    droplet.emplace("file list", PropertyArray{text::fromBytes(a), text::fromBytes(again)});
    handOver(std::move(droplet));
    defaults.setObject("composite action", chain({{"Remove text", {}}}));
    frontEnd.expect("alert summary");
    run();
    EXPECT_EQ(controller().operationMode(), OperationMode::dropletRun);
    ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isTerminated; }));
    EXPECT_THAT(files.tree(), ElementsAre(std::pair("aX.txt", "")));
    EXPECT_EQ(frontEnd.alerts.back().title, "1 file name was changed.");
    EXPECT_THAT(frontEnd.presented, ElementsAre("Left out: It is the same item as " + a + ": " + again));
    EXPECT_THAT(frontEnd.events, ::testing::Not(::testing::Contains("showWindow")));
    // Nothing of the droplet reaches what the user has stored.
    EXPECT_EQ(defaults.objectForKey("composite action"), PropertyValue(chain({{"Remove text", {}}})));
    EXPECT_EQ(defaults.objectForKey("actions"), std::nullopt);
    EXPECT_EQ(defaults.integerForKey("version"), 0);
    EXPECT_EQ(defaults.objectForKey("droplet settings"), PropertyValue(PropertyDictionary()));
}

TEST_F(StartSequenceTest, ASilentDropletThatCannotBeginEndsWithoutAWord) {
    const PropertyDictionary off{{"processFiles", 0}, {"processFolders", 0}, {"silentDroplet", 1}};
    for (const bool hasSteps : {true, false}) {
        PropertyDictionary droplet = record(hasSteps ? off : PropertyDictionary{{"silentDroplet", 1}});
        droplet.insert_or_assign("composite action", chain({{"Add to end", {{"active", hasSteps ? 1 : 0}}}}));
        droplet.insert_or_assign("file list", PropertyArray{text::fromBytes(files.write("a")),
                                                            text::fromBytes(files.path("gone"))});
        handOver(std::move(droplet));
        run();
        EXPECT_TRUE(loop.runUntil([this] { return frontEnd.isTerminated; }));
        EXPECT_TRUE(files.kind("a").has_value());
        restart();
    }
}

TEST_F(StartSequenceTest, ADropletOfTheOldFormIsUpgradedWhenItIsOpened) {
    const Variable folder("XDG_DATA_HOME", data.path().c_str());
    const DropletBundle bundle(files.path("Old.app"));
    const std::pair<std::string, const char*> cases[] = {
        {bundle.settingsPath(), "Your droplet has been successfully upgraded."},
        {files.path("x/y/z/Settings.plist"), "Your droplet could not be upgraded."}};
    (void)files.write("x/y/z/Settings.plist", "mine");
    (void)files.write("Old.app/Contents/Resources/Settings.plist",
                      PropertyList::toXml(PropertyDictionary{
                          {"Droplet Settings", PropertyDictionary()},
                          {"Host Application Settings",
                           PropertyDictionary{{"composite action", chain({{"Add to end", {}}})}}}}));
    for (const auto& [settingsPath, title] : cases) {
        PropertyDictionary droplet = record();
        droplet.erase("Version");
        droplet.insert_or_assign("settings plist path", text::fromBytes(settingsPath));
        defaults.setObject("droplet settings", droplet);
        frontEnd.expect("alert dropletUpgrade");
        frontEnd.expect("alert dropletUpgrade", ScriptedFrontEnd::Held());
        run();
        EXPECT_EQ(frontEnd.alerts.back().title, title);
        EXPECT_FALSE(frontEnd.isTerminated);
        frontEnd.answerHeld(AlertAnswer());
        EXPECT_TRUE(frontEnd.isTerminated);
        EXPECT_EQ(defaults.objectForKey("droplet settings"), std::nullopt);
        restart();
    }
    EXPECT_EQ(files.read("x/y/z/Settings.plist"), "mine");
}

TEST_F(StartSequenceTest, ADropletThatIsNoGoodRenamesNothing) {
    PropertyDictionary droplet{{"composite action", chain({{"Fly", {}}})},
                               {"file list", PropertyArray{text::fromBytes(files.write("a"))}}};
    handOver(std::move(droplet));
    start();
    EXPECT_EQ(controller().operationMode(), OperationMode::normal);
    ASSERT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_THAT(frontEnd.presented.front(), ::testing::HasSubstr("there is no action \"Fly\""));
    EXPECT_TRUE(table().empty());
    EXPECT_TRUE(files.kind("a").has_value());
}

TEST_F(StartSequenceTest, NothingOfTheUsersIsTouchedWhenSoWished) {
    options.usesUserFolders = false;
    start();
    EXPECT_TRUE(data.tree().empty());
}

TEST_F(StartSequenceTest, TheEndStoresChainAndSettings) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}});
    set("showPath", 1);
    controller().terminate();
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_EQ(defaults.integerForKey("version"), 80001);
    const auto stored = defaults.objectForKey("composite action");
    ASSERT_TRUE(stored);
    EXPECT_EQ(*stored, PropertyValue(controller().compositeAction().getFlatParameterList()));
    const auto actions = defaults.objectForKey("actions");
    ASSERT_TRUE(actions && actions->asDictionary());
    EXPECT_EQ(*find(*find(*actions->asDictionary(), "TVRN global settings")->asDictionary(), "showPath"),
              PropertyValue(1));
    // A window that closes on the way out ends nothing twice.
    controller().windowWillClose();
}

TEST_F(StartSequenceTest, CancelChecksTheListFirst) {
    start();
    setSteps({{"Add to end", {{"active", 0}}}});
    frontEnd.expect("alert noActiveActions");
    controller().cancel();
    EXPECT_FALSE(frontEnd.isTerminated);
    controller().actionListCommands().resetToDefaults();
    controller().cancel();
    EXPECT_TRUE(frontEnd.isTerminated);
}

} // namespace
} // namespace tavrin::test
