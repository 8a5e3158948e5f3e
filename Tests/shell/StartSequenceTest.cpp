#include "documents/DropletBundle.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class StartSequenceTest : public ShellFixture {
  protected:
    /// What a droplet leaves to the program: these parts besides its chain, its settings' file and its
    /// version.
    void handOver(PropertyDictionary record) {
        record.merge(PropertyDictionary{{"composite action", chain({{"Add to end", {{"string", u"X"}}}})},
                                        {"settings plist path", u"/d/Settings.plist"},
                                        {"Version", u"9.0.0"}});
        defaults.setProcessObject("droplet settings", std::move(record));
    }
    void runToTheEnd() {
        controller().applicationDidFinishLaunching();
        ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isTerminated; }));
    }
};

TEST_F(StartSequenceTest, AFirstStartIsCleanAndALaterOneHasWhatTheEndHasStored) {
    defaults.removeObject("firstLaunchVersion");
    defaults.setObject("composite action", chain({{"Add to end", {}}})); // a first launch forgets it
    defaults.setProcessObject("store", 1);
    controller().applicationDidFinishLaunching();
    EXPECT_TRUE(controller().hasFinishedInitializing());
    EXPECT_THAT(stepNames(), ElementsAre("Produce numbered list"));
    waitForPreview();
    EXPECT_EQ(frontEnd.finishedPreviews, 1);
    EXPECT_TRUE(data.kind("Data/Presets").has_value());

    setSteps({{"Add to end", {{"string", u"X"}, {"active", 0}}}, {"Remove text", {{"active", 0}}}});
    set("showPath", 1);
    frontEnd.expect("alert manualSorting");
    set("automaticSorting", false);
    frontEnd.expect("alert noActiveActions");
    controller().cancel();
    EXPECT_FALSE(frontEnd.isTerminated);
    controller().compositeAction().actionAtIndex(1).setValue(1, "active");
    const PropertyDictionary steps = controller().compositeAction().getFlatParameterList();
    controller().cancel();
    EXPECT_TRUE(frontEnd.isTerminated);
    controller().windowWillClose(); // on the way out ends nothing twice
    EXPECT_EQ(defaults.integerForKey("version"), 80001);
    restart();
    defaults.setObject("droplet settings", PropertyDictionary());
    start();
    EXPECT_EQ(controller().operationMode(), OperationMode::normal);
    EXPECT_EQ(controller().compositeAction().getFlatParameterList(), steps);
    EXPECT_EQ(settings().shouldShowPath, 1);
    EXPECT_TRUE(settings().automaticSorting);
}

TEST_F(StartSequenceTest, AHandedOverChainThatIsNoGoodIsToldAndRenamesNothing) {
    handOver({{"composite action", chain({{"Fly", {}}})},
              {"file list", PropertyArray{text::fromBytes(files.write("a"))}}});
    start();
    EXPECT_EQ(controller().operationMode(), OperationMode::normal);
    EXPECT_THAT(frontEnd.presented, ElementsAre(HasSubstr("Fly")));
    EXPECT_EQ(stepNames().size(), 1u);
    EXPECT_TRUE(table().empty());
    EXPECT_TRUE(files.kind("a").has_value());
}

TEST_F(StartSequenceTest, ADropletWithFilesRenamesThemAndQuitsWithoutAWindow) {
    const std::string a = files.write("a.txt");
    const std::string again = data.link("alias", files.path()) + "/a.txt";
    handOver({{"file list", PropertyArray{text::fromBytes(a), text::fromBytes(again)}},
              {"global settings", PropertyDictionary{{"interactiveMode", 0}}}});
    defaults.setObject("composite action", chain({{"Remove text", {}}}));
    frontEnd.expect("alert summary");
    runToTheEnd();
    EXPECT_EQ(controller().operationMode(), OperationMode::dropletRun);
    EXPECT_THAT(files.tree(), ElementsAre(std::pair("aX.txt", "")));
    EXPECT_EQ(frontEnd.alerts.back().title, "1 file name was changed.");
    EXPECT_THAT(frontEnd.presented, ElementsAre("Left out: It is the same item as " + a + ": " + again));
    EXPECT_THAT(frontEnd.events, Not(Contains("showWindow")));
    // Nothing of the droplet reaches what the user has stored.
    EXPECT_EQ(defaults.objectForKey("composite action"), PropertyValue(chain({{"Remove text", {}}})));
    EXPECT_EQ(defaults.objectForKey("actions"), std::nullopt);
    EXPECT_EQ(defaults.integerForKey("version"), 0);
    EXPECT_EQ(defaults.objectForKey("droplet settings"), PropertyValue(PropertyDictionary()));
}

TEST_F(StartSequenceTest, ASilentDropletThatCannotBeginEndsWithoutAWord) {
    for (const int processes : {0, 1}) {
        handOver({{"composite action", chain({{"Add to end", {{"active", 1 - processes}}}})},
                  {"global settings", PropertyDictionary{{"processFiles", processes},
                                                         {"processFolders", processes},
                                                         {"silentDroplet", 1}}},
                  {"file list",
                   PropertyArray{text::fromBytes(files.write("a")), text::fromBytes(files.path("gone"))}}});
        runToTheEnd();
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
                      PropertyList::toXml(dropletThatAdds(u"X", {})));
    for (const auto& [settingsPath, title] : cases) {
        defaults.setObject("droplet settings",
                           PropertyDictionary{{"composite action", chain({{"Add to end", {}}})},
                                              {"settings plist path", text::fromBytes(settingsPath)}});
        frontEnd.expect("alert dropletUpgrade");
        frontEnd.expect("alert dropletUpgrade", ScriptedFrontEnd::Held());
        controller().applicationDidFinishLaunching();
        EXPECT_EQ(frontEnd.alerts.back().title, title);
        EXPECT_FALSE(frontEnd.isTerminated);
        frontEnd.answerHeld(AlertAnswer());
        EXPECT_TRUE(frontEnd.isTerminated);
        EXPECT_EQ(defaults.objectForKey("droplet settings"), std::nullopt);
        restart();
    }
    EXPECT_EQ(files.read("x/y/z/Settings.plist"), "mine");
}

TEST_F(StartSequenceTest, InADropletThatIsEditedTheButtonSaves) {
    const std::string settingsPath = files.path("later/Settings.plist");
    handOver({{"composite action", chain({{"Add to end", {{"active", 0}}}})},
              {"settings plist path", text::fromBytes(settingsPath)}});
    defaults.setObject("don't show droplet edit information again", true);
    start();
    controller().ok();
    EXPECT_THAT(frontEnd.presented, ElementsAre(StartsWith("The droplet could not be saved. ")));
    EXPECT_FALSE(frontEnd.isTerminated);
    (void)files.makeFolder("later");
    controller().ok();
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_TRUE(std::holds_alternative<Recipe>(RecipeFile::read(settingsPath)));
    EXPECT_EQ(defaults.objectForKey("composite action"), std::nullopt);
}

TEST_F(StartSequenceTest, NothingOfTheUsersIsTouchedWhenSoWished) {
    options.usesUserFolders = false;
    start();
    EXPECT_TRUE(data.tree().empty());
}

} // namespace
} // namespace tavrin::test
