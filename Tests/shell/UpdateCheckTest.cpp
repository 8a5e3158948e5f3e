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
    struct Case {
        const char* version;
        std::string rest;
        std::size_t answer;
        const char* told;
        std::vector<std::string> events;
    };
    const std::string offered = "asked alert updateAvailable";
    const char* const choice = "Tavrin 9.1fine is available. Show Page, Skip This Version, Later";
    for (const Case& each : {Case{"9.1", page, 2, choice, {offered}},
                             {"9.1", page, 0, choice, {offered, "open https://example.org/9.1"}},
                             {"9.1", unsafe, 0, "Tavrin 9.1 is available. OK", {offered}},
                             {"9.0.7", page, 0, "There is no newer version. OK", {"asked alert noUpdate"}}}) {
        offer(each.version, each.rest);
        frontEnd.expect(each.events.front().substr(6), AlertAnswer{each.answer});
        updates().checkForUpdatesNow();
        const Alert& alert = frontEnd.alerts.back();
        EXPECT_EQ(fmt::format("{} {}", alert.title, fmt::join(alert.buttons, ", ")), each.told);
        EXPECT_EQ(std::exchange(frontEnd.events, {}), each.events);
    }
    const std::pair<std::string, const char*> failures[] = {{"", "no address is set"},
                                                            {"feed.xml", "this is no address of a feed"},
                                                            {"/nowhere/feed.xml", "No such file"},
                                                            {files.write("text.xml", "no feed"), "line 1"}};
    for (const auto& [location, reason] : failures) {
        setFeed(location);
        updates().checkForUpdatesNow();
        ASSERT_FALSE(frontEnd.presented.empty()) << location;
        EXPECT_THAT(frontEnd.presented.back(), HasSubstr(reason));
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
    EXPECT_THAT(frontEnd.events, IsEmpty());
    EXPECT_THAT(frontEnd.presented, IsEmpty());
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

TEST_F(UpdateCheckTest, AsksNothingWithoutFeedOrInterval) {
    offer("9.2");
    for (const double interval : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        defaults.setObject("SUScheduledCheckInterval", interval);
        updates().start();
        loop.advance(3 * day);
    }
    defaults.removeObject("SUFeedURL");
    updates().setUpdateCheckInterval(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(updates().isOn());
    loop.advance(3 * day);
    EXPECT_THAT(frontEnd.events, IsEmpty());
    EXPECT_FALSE(defaults.objectForKey("SULastCheckTime"));
}

TEST_F(UpdateCheckTest, CountsFromTheLastCheckAlsoOfAnEarlierStart) {
    offer("9.2");
    defaults.setObject("SUScheduledCheckInterval", 3600);
    const std::vector<std::pair<double, bool>> cases{
        {1e9 - 7200, true}, {1e9 - 60, false}, {1e9 + 1e8, true}};
    for (const auto& [last, isDue] : cases) {
        made.reset();
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
