#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

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
