#include "actions/CatalogueFixture.h"
#include "actions/tags/MP3Patterns.h"
#include "common/TemporaryFolder.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/rows/FileMO.h"
#include "support/text/Text.h"

#include <algorithm>
#include <sys/stat.h>

namespace tavrin::test {

namespace {

TEST(MP3Patterns, AreFilledWhereAllValuesAreThere) {
    const PropertyDictionary all = {
        {"Year", u"1999"},     {"Artist", u"mIXED case"}, {"Album", u"b\u00c9st of"},
        {"Title", u"\u00dfa"}, {"track", u"7"},           {"numTrack", u"12"},
        {"cd", u""},           {"numCds", u"2"}};
    const struct {
        const char* without; ///< a key that is absent
        const char16_t* pattern;
        const char* expected;
    } cases[] = {
        {"", u"", "refused"},
        {"", u"<Artist>|<artist>|<ARTIST>|<Artist_sentence_case>|<Artist_Capitalized>",
         "mIXED case|mixed case|MIXED CASE|Mixed case|Mixed Case"},
        {"", u"<Album>|<album>|<ALBUM>|<Album_sentence_case>|<Album_Capitalized>",
         "b\u00c9st of|b\u00e9st of|B\u00c9ST OF|B\u00e9st of|B\u00e9st Of"},
        {"", u"<Song>|<song>|<SONG>|<Song_sentence_case>|<Song_Capitalized>", "\u00dfa|\u00dfa|SSA|SSa|SSa"},
        {"", u"<TrackNum>|<0TrackNum>|<NumTracks>|<0NumTracks>", "7|07|12|12"},
        {"", u"<CDNum>|<0CDNum>|<NumCDs>|<0NumCDs>|<Year><Year>", "||2|02|19991999"},
        {"", u"<NoSuchTag> <year> <numCds> <Year", "<NoSuchTag> <year> <numCds> <Year"},
        {"Year", u"a<Year>", "refused"},
        {"Year", u"a<year>", "a<year>"},
        {"Title", u"<SONG>", "refused"},
        {"numTrack", u"<TrackNum>", "7"},
        {"cd", u"<0CDNum>", "refused"},
        // Anything that begins like this tag needs the number of CDs.
        {"numCds", u"<NumCDsExtra>", "refused"},
        {"numCds", u"<0NumCDs", "refused"},
        {"track", u"<TrackNumExtra>", "<TrackNumExtra>"},
    };
    for (const auto& each : cases) {
        PropertyDictionary tags = all;
        tags.erase(each.without);
        EXPECT_EQ(allDataForPattern(each.pattern, tags) ? text::toUtf8(filledPattern(each.pattern, tags))
                                                        : "refused",
                  each.expected)
            << text::toUtf8(each.pattern) << " without " << each.without;
    }
}

TEST(MP3Patterns, ReplaceWhatValuesBringAlong) {
    EXPECT_EQ(filledPattern(u"<Artist>/<Song>",
                            {{"Artist", u"<Album>"}, {"Album", u"<Artist>"}, {"Title", u"<Year>"}}),
              u"<Artist>/<Year>");
    std::u16string albums, songs;
    for (int i = 0; i < 500; ++i) {
        albums += u"<Album>";
        songs += u"<Song>";
    }
    const auto filled = filledPattern(
        u"<Artist>", {{"Artist", albums}, {"Album", songs}, {"Title", std::u16string(4096, u'x')}});
    EXPECT_GT(filled.size(), 4096U);
    EXPECT_LT(filled.size(), 100000U);
}

/// Actions over a metadata tool that answers "Ann" for every file, and writes down what it was asked for.
class TagActions : public CatalogueFixture {
  protected:
    TagActions() { FileManager::setInstance(&fileManager); }

    std::string makeTool() {
        const std::string path = folder.write("tool", "#!/bin/sh\n"
                                                      "while IFS= read -r path; do\n"
                                                      "  echo \"$path\" >> asked\n"
                                                      "  echo '{extracted-key}:Artist'\n"
                                                      "  echo Ann\n"
                                                      "  echo '{extracted-key}:end'\n"
                                                      "  echo '---finished---'\n"
                                                      "done\n");
        EXPECT_EQ(::chmod(path.c_str(), 0700), 0);
        folder.write("asked");
        return path;
    }
    [[nodiscard]] std::ptrdiff_t requests() const { return std::ranges::count(folder.read("asked"), '\n'); }

    std::u16string runOn(BaseRenameAction& action, FileMO& file) {
        InputContext input;
        input.currentName = u"ab.mp3";
        input.fileMo = &file;
        OutputContext output;
        action.executeWithInputContext(input, output);
        return output.newName;
    }

    TemporaryFolder folder;
    FileManager fileManager{makeTool()};
    ItemStore store{ItemStore::Options()};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
};

TEST_F(TagActions, AskTheToolNoMoreThanTheyMust) {
    const RowId row = context.insertFile(context.insertGhostNode(folder.path()), "a.mp3", true, false, 0);
    FileMO file(context, row);
    const auto tags = catalogue.newActionForName("Rename from tag");
    tags->setParameterList({{"pattern", u"<ModDate4DigitYear><CreationDateDay><ShootingDateDay><NoTag>"}});
    EXPECT_NE(runOn(*tags, file), u"ab.mp3");
    EXPECT_EQ(requests(), 0) << "dates stand in the row";
    tags->setParameterList({{"pattern", u"<Artist>"}});
    EXPECT_EQ(runOn(*tags, file), u"Ann.mp3");
    FileMO again(context, row); // as in the next preview
    EXPECT_EQ(runOn(*tags, again), u"Ann.mp3");
    EXPECT_EQ(requests(), 1) << "the row keeps what was read";
    tags->setParameterList({{"pattern", u"<Artist><Album>"}});
    EXPECT_EQ(runOn(*tags, again), u"ab.mp3");

    const auto music = catalogue.newActionForName("Add MP3 to end");
    EXPECT_EQ(runOn(*music, again), u"abab.mp3") << "no pattern fits";
    music->setParameterList({{"pattern4", u"-<Artist>"}});
    EXPECT_EQ(runOn(*music, again), u"ab-Ann.mp3");
    EXPECT_EQ(requests(), 3) << "the music family asks each time";
}

TEST_F(TagActions, HaveReadyMadePatterns) {
    const auto music = catalogue.newActionForName("Add MP3 at position");
    for (const std::int32_t set : {4, 1, -1, 5}) // those outside the menu change nothing
        music->selectPattern(set);
    EXPECT_EQ(music->getParamString("pattern"), u"<Artist> - <Song>");
    EXPECT_EQ(music->getParamString("pattern1"), u"<Song>");
    EXPECT_EQ(music->getParamString("pattern2"), u"");
    ASSERT_EQ(music->patternMenu().size(), 5U);
    for (std::int32_t set = 1; set < 5; ++set) {
        music->selectPattern(set);
        EXPECT_EQ(text::toUtf8(music->getParamString("pattern")),
                  music->patternMenu()[static_cast<std::size_t>(set)]);
    }
    music->selectPattern(0);
    EXPECT_EQ(music->getParamString("pattern"), u"");
}

} // namespace

} // namespace tavrin::test
