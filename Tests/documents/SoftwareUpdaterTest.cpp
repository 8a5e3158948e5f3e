#include "documents/SoftwareUpdater.h"

#include "common/Testing.h"
#include "documents/UpdateFeed.h"
#include "platform/propertylists/UserDefaults.h"

namespace tavrin::test {
namespace {

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

} // namespace
} // namespace tavrin::test
