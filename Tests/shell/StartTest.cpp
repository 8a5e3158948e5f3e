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

class UpdateCheckTest : public ShellFixture {
  protected:
    ~UpdateCheckTest() override { made.reset(); }

    static std::string feed(const std::string& version, const std::string& rest = "") {
        return fmt::format("<rss xmlns:s='urn:feed'><channel><item>{}<enclosure url='x' s:version='{}'/>"
                           "</item></channel></rss>",
                           rest, version);
    }
    void setFeed(const std::string& location) { defaults.setObject("SUFeedURL", text::fromUtf8(location)); }
    void offer(const std::string& version, const std::string& rest = "") {
        setFeed(files.write("feed.xml", feed(version, rest)));
    }
    UpdateCheck& updates() {
        if (made)
            return *made;
        // The services of the application are its own.
        MainController& all = controller();
        shared.emplace(ShellServices{frontEnd, loop, defaults, catalogue, all.globalSettings(),
                                     all.compositeAction(), all.progressInfo(), all.renameEngine(),
                                     SourceItemManager::sharedInstance(), mode});
        made = std::make_unique<UpdateCheck>(
            *shared, UpdateCheck::Options{.version = "9.0.0",
                                          .mayInterrupt = [this] { return isIdle; },
                                          .now = [this] { return loop.now() + 1e9; }});
        return *made;
    }

    bool isIdle = true;
    std::atomic<OperationMode> mode{OperationMode::normal};
    std::optional<ShellServices> shared;
    std::unique_ptr<UpdateCheck> made;
    const std::chrono::hours day{24};
};

TEST_F(UpdateCheckTest, TellsWhoAsksWhatTheFeedHasAndOpensItsPageOnRequestAlone) {
    const std::string page = "<s:shortVersionString>9.1\nfine</s:shortVersionString>"
                             "<link>https://example.org/9.1</link>";
    const std::string unsafe =
        "<link>file:///etc/passwd</link><s:releaseNotesLink>javascript:x</s:releaseNotesLink>";
    const char* const choice = "Tavrin 9.1fine is available. Show Page, Skip This Version, Later";
    const std::tuple<const char*, std::string, std::size_t, const char*, const char*> cases[] = {
        {"9.1", page, 2, choice, ""},
        {"9.1", page, 0, choice, "open https://example.org/9.1"},
        {"9.1", unsafe, 0, "Tavrin 9.1 is available. OK", ""},
        {"9.0.7", page, 0, "There is no newer version. OK", ""}};
    for (const auto& [version, rest, answer, told, opened] : cases) {
        offer(version, rest);
        frontEnd.expect(version == std::string("9.1") ? "alert updateAvailable" : "alert noUpdate",
                        AlertAnswer{answer});
        updates().checkForUpdatesNow();
        const Alert& alert = frontEnd.alerts.back();
        EXPECT_EQ(fmt::format("{} {}", alert.title, fmt::join(alert.buttons, ", ")), told);
        std::erase_if(frontEnd.events, [](const std::string& event) { return event.starts_with("asked"); });
        EXPECT_EQ(fmt::format("{}", fmt::join(std::exchange(frontEnd.events, {}), " ")), opened);
    }
    const std::pair<std::string, const char*> failures[] = {{"", "no address is set"},
                                                            {"feed.xml", "this is no address of a feed"},
                                                            {"/nowhere/feed.xml", "No such file"},
                                                            {files.write("text.xml", "no feed"), "line 1"}};
    for (const auto& [location, reason] : failures) {
        setFeed(location);
        updates().checkForUpdatesNow();
        EXPECT_THAT(std::exchange(frontEnd.presented, {}), ElementsAre(HasSubstr(reason)));
    }
}

TEST_F(UpdateCheckTest, AsksTheNetworkOnceForAllWhoWait) {
    const std::string fetch = "fetch https://example.org/feed.xml";
    setFeed("https://example.org/feed.xml");
    frontEnd.expect(fetch, ScriptedFrontEnd::Held());
    updates().checkForUpdatesNow();
    updates().checkForUpdatesNow();
    frontEnd.expect("alert updateAvailable");
    frontEnd.answerHeld(FetchedAddress{feed("10.0")});
    frontEnd.expect(fetch, FetchedAddress{std::nullopt, "no route"});
    updates().checkForUpdatesNow();
    EXPECT_THAT(frontEnd.presented, ElementsAre(HasSubstr("no route")));
    frontEnd.expect(fetch, ScriptedFrontEnd::Held());
    updates().checkForUpdatesNow();
    made.reset();
    frontEnd.answerHeld(FetchedAddress{feed("10.0")});
}

TEST_F(UpdateCheckTest, AsksByItselfAtTheIntervalAndSaysNothingWithoutNewsOrDuringARun) {
    defaults.setObject("SUScheduledCheckInterval", 86400);
    const auto expectOffer = [this](std::size_t answer, std::chrono::milliseconds wait) {
        frontEnd.expect("alert updateAvailable", AlertAnswer{answer});
        loop.advance(wait);
        EXPECT_TRUE(frontEnd.isScriptOver());
    };
    offer("9.0");
    updates().start();
    loop.advance(day);
    setFeed("/nowhere");
    loop.advance(day);
    EXPECT_TRUE(frontEnd.events.empty() && frontEnd.presented.empty());
    offer("9.2");
    expectOffer(0, day);
    offer("9.2", "<link>https://example.org</link>");
    expectOffer(1, day);
    loop.advance(2 * day); // a version that is passed over comes up no more
    offer("9.3");
    isIdle = false;
    loop.advance(2 * day);
    isIdle = true;
    expectOffer(0, std::chrono::minutes(11));
}

TEST_F(UpdateCheckTest, CountsFromTheLastCheckAndAsksNothingWithoutFeedOrInterval) {
    offer("9.2");
    // Both in seconds, the last one ago, in an earlier start.
    for (const auto& [interval, last, isDue] : {std::tuple{0.0, 1e9, false},
                                                {-1.0, 1e9, false},
                                                {std::numeric_limits<double>::quiet_NaN(), 1e9, false},
                                                {3600.0, 7200.0, true},
                                                {3600.0, 60.0, false},
                                                {3600.0, -1e8, true}}) {
        made.reset();
        defaults.setObject("SUScheduledCheckInterval", interval);
        defaults.setObject("SULastCheckTime", PropertyDate{1e9 + loop.now() - last});
        if (isDue)
            frontEnd.expect("alert updateAvailable");
        updates().start();
        loop.advance(std::chrono::minutes(interval > 0 ? 1 : 5000));
        EXPECT_TRUE(frontEnd.isScriptOver()) << last;
    }
    defaults.removeObject("SUFeedURL");
    updates().setUpdateCheckInterval(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(updates().isOn());
    loop.advance(3 * day);
}

} // namespace
} // namespace tavrin::test
