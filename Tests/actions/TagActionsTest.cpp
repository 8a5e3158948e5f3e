#include "actions/CatalogueFixture.h"
#include "actions/tags/MP3Patterns.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/rows/FileMO.h"

namespace tavrin::test {

namespace {

TEST(MP3Patterns, AreFilledWhereAllValuesAreThere) {
    const PropertyDictionary all{{"Year", u"1999"},     {"Artist", u"mIXED case"}, {"Album", u"b\u00c9st of"},
                                 {"Title", u"\u00dfa"}, {"track", u"7"},           {"numTrack", u"12"},
                                 {"cd", u""},           {"numCds", u"2"}};
    const std::tuple<const char*, const char16_t*, const char*> cases[] = {
        // the key that is absent, pattern, what becomes of it
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
    for (const auto& [without, pattern, expected] : cases) {
        PropertyDictionary tags = all;
        tags.erase(without);
        EXPECT_EQ(allDataForPattern(pattern, tags) ? text::toUtf8(filledPattern(pattern, tags)) : "refused",
                  expected)
            << text::toUtf8(pattern) << " without " << without;
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

using TagActions = CatalogueFixture;

TEST_F(TagActions, AskTheToolNoMoreThanTheyMust) {
    // A tool that answers "Ann" for every file, and writes down what it was asked for.
    const TemporaryFolder folder;
    const auto tool =
        folder.write("tool", "#!/bin/sh\n"
                             "while IFS= read -r path; do\n"
                             "  echo \"$path\" >> asked\n"
                             "  printf '{extracted-key}:Artist\\nAnn\\n{extracted-key}:end\\n'\n"
                             "  echo '---finished---'\n"
                             "done\n");
    ASSERT_EQ(::chmod(tool.c_str(), 0700), 0);
    folder.write("asked");
    FileManager fileManager(tool);
    FileManager::setInstance(&fileManager);
    ItemStore store{ItemStore::Options()};
    StoreContext context(store, StoreContext::MergePolicy::contextWins);
    const RowId row = context.insertFile(context.insertGhostNode(folder.path()), "a.mp3", true, false, 0);
    const std::tuple<const char*, PropertyDictionary, const char*, int> runs[] = {
        // action, parameters, the new name, requests so far
        {"Rename from tag", {{"pattern", u"<ModDateDay><CreationDateDay><ShootingDateDay><NoTag>"}}, "", 0},
        {"Rename from tag", {{"pattern", u"<Artist>"}}, "Ann.mp3", 1},
        {"Rename from tag", {{"pattern", u"<Artist>"}}, "Ann.mp3", 1}, // the row keeps what was read
        {"Rename from tag", {{"pattern", u"<Artist><Album>"}}, "ab.mp3", 1},
        {"Add MP3 to end", {}, "abab.mp3", 2}, // no pattern fits; the music family asks each time
        {"Add MP3 to end", {{"pattern4", u"-<Artist>"}}, "ab-Ann.mp3", 3},
    };
    for (const auto& [action, parameters, expected, requests] : runs) {
        FileMO file(context, row);
        InputContext input;
        input.currentName = u"ab.mp3";
        input.fileMo = &file;
        OutputContext output;
        make(action, parameters)->executeWithInputContext(input, output);
        EXPECT_EQ(std::ranges::count(folder.read("asked"), '\n'), requests);
        // Dates stand in the row.
        EXPECT_TRUE(requests == 0 ? output.newName != u"ab.mp3" : text::toUtf8(output.newName) == expected);
    }
    FileManager::setInstance(nullptr);
}

TEST_F(TagActions, HaveReadyMadePatterns) {
    const auto music = make("Add MP3 at position");
    const auto patterns = [&] {
        return text::toUtf8(music->getParamString("pattern") + u"|" + music->getParamString("pattern1") +
                            u"|" + music->getParamString("pattern2"));
    };
    ASSERT_EQ(music->patternMenu().size(), 5U);
    for (std::int32_t set = 4; set > 0; --set) {
        music->selectPattern(set);
        EXPECT_TRUE(patterns().starts_with(music->patternMenu()[static_cast<std::size_t>(set)]))
            << patterns();
    }
    for (const std::int32_t outside : {-1, 5}) {
        music->selectPattern(outside);
        EXPECT_EQ(patterns(), "<Artist> - <Song>|<Song>|");
    }
    music->selectPattern(0);
    EXPECT_EQ(music->getParamString("pattern"), u"");
}

} // namespace

} // namespace tavrin::test
