#include "shell/ShellFixture.h"

#include <fmt/format.h>

#include <limits>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class UpdateCheckTest : public ShellFixture {
  protected:
    ~UpdateCheckTest() override { made.reset(); }

    static std::string item(const std::string& version, const std::string& rest = "") {
        return fmt::format("<item><title>T</title>{}<enclosure url='x' s:version='{}'/></item>", rest,
                           version);
    }
    static std::string feed(const std::string& items) {
        return "<rss xmlns:s='urn:feed'><channel><title>C</title>" + items + "</channel></rss>";
    }
    void setFeed(const std::string& location) { defaults.setObject("SUFeedURL", text::fromUtf8(location)); }
    void setFeedFile(const std::string& items) { setFeed(files.write("feed.xml", feed(items))); }

    UpdateCheck& updates(const std::string& version = "9.0.0") {
        if (!made)
            made = std::make_unique<UpdateCheck>(
                services(), UpdateCheck::Options{.version = version,
                                                 .mayInterrupt = [this] { return isIdle; },
                                                 .now = [this] { return loop.now() + 1e9; }});
        return *made;
    }
    /// The services of the application are its own.
    ShellServices& services() {
        MainController& all = controller();
        shared.emplace(ShellServices{frontEnd, loop, defaults, catalogue, all.globalSettings(),
                                     all.compositeAction(), all.progressInfo(), all.renameEngine(),
                                     SourceItemManager::sharedInstance(), mode});
        return *shared;
    }
    static std::chrono::milliseconds hours(int count) { return std::chrono::hours(count); }

    bool isIdle = true;
    std::atomic<OperationMode> mode{OperationMode::normal};
    std::optional<ShellServices> shared;
    std::unique_ptr<UpdateCheck> made;
};

TEST_F(UpdateCheckTest, OffersANewerVersionAndOpensItsPageOnRequestAlone) {
    setFeedFile(item("9.1", "<s:shortVersionString>9.1\nfine</s:shortVersionString>"
                            "<link>https://example.org/9.1</link>"));
    frontEnd.expect("alert updateAvailable", AlertAnswer{2});
    updates().checkForUpdatesNow();
    EXPECT_EQ(frontEnd.alerts.back().title, "Tavrin 9.1fine is available.");
    EXPECT_THAT(frontEnd.alerts.back().buttons, ElementsAre("Show Page", "Skip This Version", "Later"));
    frontEnd.expect("alert updateAvailable", AlertAnswer{0});
    updates().checkForUpdatesNow();
    EXPECT_THAT(frontEnd.events, ElementsAre("asked alert updateAvailable", "asked alert updateAvailable",
                                             "open https://example.org/9.1"));
}

TEST_F(UpdateCheckTest, APageThatIsNotOnTheWebIsNotOffered) {
    setFeedFile(item("9.1", "<link>file:///etc/passwd</link>"
                            "<s:releaseNotesLink>javascript:x</s:releaseNotesLink>"));
    frontEnd.expect("alert updateAvailable");
    updates().checkForUpdatesNow();
    EXPECT_THAT(frontEnd.alerts.back().buttons, ElementsAre("OK"));
    EXPECT_THAT(frontEnd.events, ElementsAre("asked alert updateAvailable"));
}

TEST_F(UpdateCheckTest, NobodyIsToldOfWhatHeHas) {
    setFeedFile(item("9.0.7"));
    frontEnd.expect("alert noUpdate");
    updates().checkForUpdatesNow();
    EXPECT_EQ(frontEnd.alerts.back().text, "You have Tavrin 9.0.0.");
}

TEST_F(UpdateCheckTest, TellsWhyAFeedCannotBeRead) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "no address is set"},
        {"feed.xml", "this is no address of a feed"},
        {"/nowhere/feed.xml", "No such file"},
        {files.write("text.xml", "no feed"), "line 1"},
    };
    for (const auto& [location, reason] : cases) {
        setFeed(location);
        updates().checkForUpdatesNow();
        ASSERT_FALSE(frontEnd.presented.empty()) << location;
        EXPECT_THAT(frontEnd.presented.back(), HasSubstr(reason)) << location;
    }
}

TEST_F(UpdateCheckTest, AsksTheNetworkOnceForAllWhoWait) {
    setFeed("https://example.org/feed.xml");
    frontEnd.expect("fetch https://example.org/feed.xml", ScriptedFrontEnd::Held());
    updates().checkForUpdatesNow();
    updates().checkForUpdatesNow();
    frontEnd.expect("alert updateAvailable");
    frontEnd.answerHeld(FetchedAddress{feed(item("10.0"))});
    frontEnd.expect("fetch https://example.org/feed.xml", FetchedAddress{std::nullopt, "no route"});
    updates().checkForUpdatesNow();
    EXPECT_THAT(frontEnd.presented, ElementsAre(HasSubstr("no route")));
    frontEnd.expect("fetch https://example.org/feed.xml", ScriptedFrontEnd::Held());
    updates().checkForUpdatesNow();
    made.reset();
    frontEnd.answerHeld(FetchedAddress{feed(item("10.0"))});
}

TEST_F(UpdateCheckTest, AsksByItselfAtTheIntervalAndSaysNothingWithoutNews) {
    defaults.setObject("SUScheduledCheckInterval", 86400);
    setFeedFile(item("9.0"));
    updates().start();
    loop.advance(hours(24));
    setFeed("/nowhere");
    loop.advance(hours(24));
    EXPECT_THAT(frontEnd.events, IsEmpty());
    EXPECT_THAT(frontEnd.presented, IsEmpty());

    setFeedFile(item("9.2"));
    frontEnd.expect("alert updateAvailable");
    loop.advance(hours(24));
    frontEnd.expect("alert updateAvailable", AlertAnswer{1});
    setFeedFile(item("9.2", "<link>https://example.org</link>"));
    loop.advance(hours(24));
    loop.advance(hours(48));
    EXPECT_TRUE(frontEnd.isScriptOver());
    EXPECT_EQ(frontEnd.alerts.size(), 2u) << "a version that is passed over comes up no more";
    setFeedFile(item("9.3"));
    frontEnd.expect("alert updateAvailable");
    loop.advance(hours(24));
    EXPECT_TRUE(frontEnd.isScriptOver());
}

TEST_F(UpdateCheckTest, WaitsForTheEndOfARun) {
    setFeedFile(item("9.2"));
    isIdle = false;
    updates().start();
    loop.advance(hours(30));
    EXPECT_THAT(frontEnd.alerts, IsEmpty());
    isIdle = true;
    frontEnd.expect("alert updateAvailable");
    loop.advance(std::chrono::minutes(11));
    EXPECT_TRUE(frontEnd.isScriptOver());
}

TEST_F(UpdateCheckTest, AsksNothingWithoutFeedOrInterval) {
    const double never = 0;
    for (const double interval : {never, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        setFeedFile(item("9.2"));
        defaults.setObject("SUScheduledCheckInterval", interval);
        updates().start();
        loop.advance(hours(60));
    }
    defaults.removeObject("SUFeedURL");
    updates().setUpdateCheckInterval(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(updates().isOn());
    loop.advance(hours(60));
    EXPECT_THAT(frontEnd.events, IsEmpty());
    EXPECT_FALSE(defaults.objectForKey("SULastCheckTime"));
}

TEST_F(UpdateCheckTest, CountsFromTheLastCheckAlsoOfAnEarlierStart) {
    setFeedFile(item("9.2"));
    const std::vector<std::pair<double, bool>> cases{
        {1e9 - 7200, true}, {1e9 - 60, false}, {1e9 + 1e8, true}};
    for (const auto& [last, isDue] : cases) {
        made.reset();
        defaults.setObject("SUScheduledCheckInterval", 3600);
        defaults.setObject("SULastCheckTime", PropertyDate{last + loop.now()});
        if (isDue)
            frontEnd.expect("alert updateAvailable");
        updates().start();
        loop.advance(std::chrono::minutes(1));
        EXPECT_TRUE(frontEnd.isScriptOver()) << last;
    }
}

} // namespace
} // namespace tavrin::test
