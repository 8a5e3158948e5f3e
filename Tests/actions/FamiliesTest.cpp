#include "actions/CatalogueFixture.h"
#include "actions/dates/DateFormatter.h"
#include "actions/list/RenameFromListAction.h"
#include "actions/tags/MP3Patterns.h"
#include "common/FailingFileSystem.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/rows/FileMO.h"

namespace tavrin::test {
namespace {

class DateActions : public CatalogueFixture {
    LocalTime zone;
};

constexpr double june = 740035865; // 2024-06-14 07:31:05 in that zone

TEST_F(DateActions, ShowInTheirMenusWhatTheirPatternsGive) {
    const auto names = CalendarNames::of("en_US");
    const DateFormatter formatter(names);
    const auto dates = formatter.dateChoices();
    const auto times = formatter.timeChoices();
    ASSERT_GE(dates.size(), 19U);
    ASSERT_GE(times.size(), 11U);
    for (const auto& each : dates.subspan(1))
        EXPECT_EQ(text::toUtf8(formatter.formatDate(june, each.value, 0).value()), each.label);
    for (const auto& each : times.subspan(1))
        EXPECT_EQ(text::toUtf8(formatter.formatDate(june, 0, each.value, 0, true).value()), each.label);
    // Every pattern can be chosen: behind the last one there is nothing.
    EXPECT_EQ(formatter.formatDate(june, static_cast<std::int32_t>(dates.size()), 0), u"");
    EXPECT_EQ(formatter.formatDate(june, 0, static_cast<std::int32_t>(times.size())), u"");
}

TEST_F(DateActions, JoinDateAndTime) {
    const auto names = CalendarNames::of("en_US");
    const DateFormatter formatter(names);
    std::string joined;
    for (std::int32_t mode = -1; mode <= 12; ++mode)
        joined += text::toUtf8(formatter.formatDate(june, 12, 1, mode).value_or(u"none")) + "|";
    EXPECT_EQ(joined, "none|14 Jun 2024 07-31-05|14 Jun 202407-31-05|14 Jun 2024-07-31-05|"
                      "14 Jun 2024_07-31-05|14 Jun 2024/07-31-05|14 Jun 2024.07-31-05|"
                      "07-31-05 14 Jun 2024|07-31-0514 Jun 2024|07-31-05-14 Jun 2024|"
                      "07-31-05_14 Jun 2024|07-31-05/14 Jun 2024|07-31-05.14 Jun 2024|none|");
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 3, false), u"14 Jun 2024_07-31-05 am");
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 9, true), u"07-31-05 AM_14 Jun 2024");
    EXPECT_EQ(formatter.formatDate(1e300, 1, 1), std::nullopt);
}

TEST_F(DateActions, TranslateIndexesOfListsWithoutVersionOnly) {
    const auto action = make("Add date to end");
    const struct {
        PropertyDictionary list;
        std::int32_t date, time;
    } lists[] = {
        {{{"datePatternIndex", 8}, {"timePatternIndex", 11}}, 1, -1},
        {{{"datePatternIndex", 1}, {"timePatternIndex", -1}, {"version", 0}}, 1, -1},
        {{{"datePatternIndex", 8}, {"timePatternIndex", 11}, {"version", 0}}, 8, 11},
        // What no table has, or no longer has, is no pattern.
        {{{"timePatternIndex", -1}}, 8, -1},
        {{{"timePatternIndex", 100}}, 8, -1},
        {{{"timePatternIndex", 7}}, 8, 9},
        // Keys of early versions are as old; what a list does not tell is kept.
        {{{"date pattern index", 10}}, 2, 9},
    };
    for (const auto& [list, date, time] : lists) {
        action->setParameterList(list);
        // What is translated stays so when it is stored and read again, in a sequence too.
        action->setParameterList(storedAndRead(action->parameterList()));
        EXPECT_EQ(action->getParamInt("datePatternIndex", -9), date);
        EXPECT_EQ(action->getParamInt("timePatternIndex", -9), time);
    }
    action->setValue(8, "datePatternIndex");
    EXPECT_EQ(action->getParamInt("datePatternIndex", -9), 8);
}

// No one can set when a file was created; so much is known that it is not when it was last changed.
TEST_F(DateActions, TellTheCreationFromTheLastChange) {
    const TemporaryFolder folder;
    const auto file = folder.write("a");
    setModificationTime(file, "2099-01-01 00:00:00");
    const auto action = make("Rename to date", {{"mode", 0}});
    const auto created = FileManager::instance().fileCreationDate(file).value();
    EXPECT_EQ(run(*action, u"a", 1, file), DateFormatter::instance().formatDate(created, 1, 1));
    EXPECT_NE(run(*action, u"a", 1, file), u"2099-01-01 00-00-00");
}

TEST_F(DateActions, GiveAllFilesOfARunTheSameMomentForNow) {
    FileManager files;
    FileManager::setInstance(&files);
    const auto action = make("Rename to date", {{"mode", 3}, {"timePatternIndex", 15}, {"version", 1}});
    const auto moment = DateFormatter::instance().formatDate(files.now(), 1, 15, 0, true).value();
    EXPECT_EQ(moment.size(), std::u16string_view(u"2024-06-14 07-31-05-000").size());
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(2))
        EXPECT_EQ(run(*action, u"a", 1, "/nowhere/a"), moment);
    FileManager::setInstance(nullptr);
}

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

constexpr const char* missing = "File does not exist. Nothing loaded.";
constexpr const char* empty = "0 \"file path, new name\" pairs loaded.";
constexpr const char* noText = "File is not text in UTF-8. Nothing loaded.";
constexpr const char* noFile = "This is no file. Nothing loaded.";

std::string repeated(std::string_view text, int count) {
    return fmt::format("{}", fmt::join(std::vector(count, text), ""));
}

class RenameFromList : public CatalogueFixture {
  protected:
    static std::string load(RenameFromListAction& action, const std::string& path) {
        action.load(text::fromBytes(path));
        EXPECT_EQ(action.getParamString("listFilePath"), text::fromBytes(path));
        return text::toUtf8(action.getParamString("status"));
    }
    std::string load(RenameFromListAction& action, const std::string& name, std::string_view content) {
        return load(action, folder.write(name, content));
    }

    TemporaryFolder folder;
};

TEST_F(RenameFromList, TellsWhatCameOfAFile) {
    const std::string path1024 = "/" + std::string(1023, 'p');
    const std::string name256 = repeated("\xC3\xA9", 254) + "\xF0\x9F\x98\x80"; // 256 units in 512 bytes
    const std::pair<std::string, std::string> cases[] = {
        {"", empty},
        {" \n\t\r\n", empty},
        {"/a\tb\n/c\td\n", "2 \"file path, new name\" pairs loaded."},
        {"a\tb\nc\td", "2 \"current name, new name\" pairs loaded."},
        {"one", "1 new names loaded."},
        // Of another kind than the first line; the quotes do not count.
        {"/a/b.txt\tc.txt\nd.txt\te.txt", "Error on line 2. Nothing loaded."},
        {"a\tb\n\"/c\"\td", "Error on line 2. Nothing loaded."},
        // Blank lines are no lines.
        {"\n\na\tb\n\n\nc\n", "Error on line 2. Nothing loaded."},
        {"a\tb\nc\t\n \n", "Error on line 2. Nothing loaded."},
        {"a\tb\tc", "Error on line 1. Nothing loaded."},
        {"a\t\nb\tc", "Error on line 1. Nothing loaded."},
        {"a\tb\nc\td/e", "Error on line 2. Nothing loaded."},
        // The line of the form that was tried last.
        {"a\nb\nc/d\n", "Error on line 3. Nothing loaded."},
        // Lengths in code units: of the first field with its quotes, of the second without.
        {path1024 + "\tb", "1 \"file path, new name\" pairs loaded."},
        {"x\ty\n" + path1024.substr(1) + "zz\tb", "Error on line 2. Nothing loaded."},
        {"\"" + path1024.substr(2) + "\"\tb", "1 \"current name, new name\" pairs loaded."},
        {"x\ty\n\"" + path1024.substr(1) + "\"\tb", "Error on line 2. Nothing loaded."},
        {"a\t\"" + name256 + "\"", "1 \"current name, new name\" pairs loaded."},
        {"x\ty\na\t" + name256 + "b", "Error on line 2. Nothing loaded."},
        {name256, "1 new names loaded."},
        {"a\n" + name256 + "b", "Error on line 2. Nothing loaded."},
        // Not UTF-8, wherever it begins; overlong; a surrogate.
        {"a\tb\nc\td\xE9\n", noText},
        {"a\nb\n\xC0\xAF", noText},
        {"\xED\xB2\x80\n", noText},
    };
    for (const auto& [content, status] : cases) {
        RenameFromListAction action;
        EXPECT_EQ(load(action, "list", content), status) << content.substr(0, 40);
        action.prepare();
        EXPECT_EQ(action.failure(),
                  status.ends_with("Nothing loaded.") ? folder.path("list") + ": " + status : "");
    }
}

TEST_F(RenameFromList, HasALastLine) {
    RenameFromListAction action;
    for (const std::string line : {"a\tb\n", "a\n"}) {
        const auto most = repeated(line, 500000);
        const auto status = load(action, "most", most);
        EXPECT_TRUE(status.starts_with("500000 ")) << status;
        EXPECT_EQ(load(action, "more", most + line), "Error on line 500001. Nothing loaded.");
        EXPECT_EQ(load(action, "blank lines", most + "\n\n"), status);
    }
}

TEST_F(RenameFromList, OpensNothingButFiles) {
    RenameFromListAction action;
    const FailingFileSystem fileSystem;
    const auto pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(load(action, pipe), noFile);
    EXPECT_EQ(load(action, "/dev/zero"), noFile);
    EXPECT_EQ(load(action, folder.makeFolder("folder")), noFile);
    EXPECT_EQ(fileSystem.callCount(FileCall::read), 0U);
    EXPECT_EQ(load(action, folder.link("link", folder.write("target", "x\n"))), "1 new names loaded.");
    EXPECT_EQ(load(action, folder.link("dangling", "nowhere")), missing);
    EXPECT_EQ(load(action, folder.path("none")), missing);
    EXPECT_EQ(load(action, std::string(folder.path("target") + '\0')), missing);
    action.load(u"/\xD800"); // no bytes of any file
    EXPECT_EQ(text::toUtf8(action.getParamString("status")), missing);
    EXPECT_EQ(load(action, folder.write("\xE9", "x\n")), "1 new names loaded.");
    // Of a size that no list has, without its blocks on the disk.
    const auto huge = folder.write("huge");
    std::filesystem::resize_file(huge, std::uintmax_t{1} << 40);
    EXPECT_EQ(load(action, huge), "File is too large. Nothing loaded.");
}

TEST_F(RenameFromList, FailsWhicheverLookAtItsFileFails) {
    const auto path = folder.write("list", "a.jpg\tx\n");
    FailingFileSystem files;
    for (std::size_t call = 1;; ++call) {
        files.reset();
        files.failCall(call, EIO);
        RenameFromListAction action;
        const std::string status = load(action, path);
        if (files.failureCount() == 0)
            break;
        action.prepare();
        EXPECT_EQ(action.failure().empty(), run(action, u"a.jpg") == u"x.jpg") << call << ": " << status;
    }
}

TEST_F(RenameFromList, KeepsAListUntilAnotherIsLoaded) {
    RenameFromListAction action;
    EXPECT_EQ(action.getParamString("status"), u"Nothing loaded.");
    const std::tuple<std::function<void()>, const char16_t*> steps[] = {
        {[&] { load(action, "good", "a.jpg\tx\n"); }, u"x.jpg"},
        {[&] { load(action, "bad", "a.jpg\ty\nc\n"); }, u"x.jpg"},
        {[&] { load(action, "names", "z\n"); }, u"z.jpg"},
        {[&] { folder.write("names", "y\n"); }, u"z.jpg"},
        {[&] { action.reload(); }, u"y.jpg"},
        {[&] { folder.remove("names"); }, u"y.jpg"},
        {[&] { action.reload(); }, u"a.jpg"},
        {[&] { load(action, "names", "z\n"); }, u"z.jpg"},
        {[&] { action.clear(); }, u"a.jpg"},
    };
    for (const auto& [change, newName] : steps) {
        change();
        EXPECT_EQ(run(action, u"a.jpg"), newName);
    }
    EXPECT_EQ(text::toUtf8(action.getParamString("status")), missing);
    EXPECT_EQ(action.getParamString("listFilePath"), u"<no file>");
}

// A run works on a copy that is made from the stored parameters: it has the list of the moment.
TEST_F(RenameFromList, IsReadOncePerChangeAndNotPerRunOrItem) {
    using namespace std::chrono_literals;
    const auto now = std::filesystem::file_time_type::clock::now();
    const struct {
        const char* content;
        std::chrono::seconds age;
        std::int32_t ignoreCase;
        const char* newName;
        std::size_t reads;
    } runs[] = {
        {"A.jpg\tx\n", 3600s, 1, "x.jpg", 1},
        {"A.jpg\tx\n", 3600s, 1, "x.jpg", 0},
        {"A.jpg\tx\n", 3600s, 0, "a.jpg", 1},
        {"A.jpg\tlong\n", 3600s, 0, "a.jpg", 1},
        {"A.jpg\tlong\n", 3600s, 1, "long.jpg", 1},
        {"A.jpg\tlast\n", 3599s, 1, "last.jpg", 1},
        // While a file is that young, a change may not show in its time.
        {"A.jpg\tlast\n", -60s, 1, "last.jpg", 1},
        {"A.jpg\tpast\n", -60s, 1, "past.jpg", 1},
    };
    RenameFromListAction edited;
    FailingFileSystem fileSystem;
    for (const auto& each : runs) {
        const auto path = folder.write("list", each.content);
        std::filesystem::last_write_time(path, now - each.age);
        edited.setValue(text::fromBytes(path), "listFilePath");
        edited.setValue(each.ignoreCase, "ignoreCase");
        fileSystem.reset();
        RenameFromListAction copy;
        copy.setParameterList(edited.parameterList());
        run(copy, u"b.jpg");
        EXPECT_EQ(text::toUtf8(run(copy, u"a.jpg")), each.newName);
        EXPECT_EQ(fileSystem.callCount(FileCall::read), each.reads) << each.content;
        edited.load(text::fromBytes(path)); // as the window does, which holds the list
    }
    std::filesystem::last_write_time(folder.path("list"), now - 3600s);
    edited.load(text::fromBytes(folder.path("list")));
    fileSystem.reset();
    edited.reload();
    EXPECT_EQ(fileSystem.callCount(FileCall::read), 1U) << "the user knows better than the time of the file";
}

} // namespace
} // namespace tavrin::test
