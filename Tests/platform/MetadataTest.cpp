#include "common/FailingFileSystem.h"
#include "common/LogRecorder.h"
#include "common/Testing.h"
#include "platform/desktop/ResourceFolder.h"
#include "platform/files/Descriptor.h"
#include "platform/files/FolderEntries.h"
#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/FileManager.h"
#include "platform/metadata/MetadataTool.h"

namespace tavrin {
namespace {

using Client = MetadataTool::Client;
using namespace std::string_literals;
using namespace std::string_view_literals;
using test::TemporaryFolder;

const std::string samples = TAVRIN_SOURCE_FOLDER "/Tests/samples/";

std::string flat(const FileMetadata& metadata) {
    std::string result = metadata.failure.empty() ? "" : "failed";
    for (const auto& [key, value] : metadata.tags)
        result += (result.empty() ? "" : "; ") + key + "=" + text::toUtf8(*value.asText());
    return result;
}

std::string valueOf(const FileMetadata& metadata, const std::string& key) {
    const PropertyValue* const value = find(metadata.tags, key);
    return !metadata.failure.empty() ? "failed"
           : value == nullptr        ? "(none)"
                                     : text::toUtf8(*value->asText());
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// "@" stands for the marker of a key.
std::string withMarkers(std::string text) {
    for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;)
        text.replace(at, 1, "{extracted-key}:");
    return text;
}

TEST(MetadataToolTest, readsAnswers) {
    const auto expectTags = [](const std::string& end, const std::vector<std::string>& cases) {
        for (const std::string& each : cases) {
            const std::size_t arrow = each.find(" -> ");
            const auto tags = MetadataTool::parseAnswer(withMarkers(each.substr(0, arrow) + end));
            EXPECT_EQ(flat({tags, {}}), each.substr(arrow + 4)) << each;
        }
    };
    expectTags("", {" -> ", "---finished--- -> ", "no key\n@\n---finished--- -> ",
                    "@Artist\nAnn\n@Album\nBest\n---finished---\n -> Artist=Ann"});
    expectTags("\n@\n---finished---\n",
               {"@Artist\nAnn\n@Album\nBest -> Album=Best; Artist=Ann", "@A\na\nb -> A=a/nb",
                "@A\n\n  a \t\n\nb\r -> A=a/n/nb", "@A\n\n@B\n \n@C\nc -> C=c", "@A\n@B\nb -> B=b",
                "@A\none\n@A\ntwo -> A=two", "@A\none\n@A\n -> A=one",
                "@Artist (1)\nold\n@Artist (2)\nnew -> Artist=new",
                "@Artist (4)\nx\n@(1) of\ny -> (1) of=y; Artist (4)=x", "@a (1) long\nx -> a (1) =x",
                "x@A\na -> :A=a", "@Name\n\xc3\xa9t\xc3\xa9 -> Name=été",
                "@Name\n\xc3\xa9t\x8e -> Name=√©té"});
    expectTags("\n@\n---finished---\n",
               {"@Track\n3 of 12 -> numTrack=12; track=3", "@TrackNumber\n03/12/14 -> numTrack=12; track=3",
                "@Track\n3 -> track=3",
                "@Track\nA -> track=", "@Track (1)\n1/2\n@Track\n3/12 -> numTrack=12; track=3",
                "@DiskNumber\n1 of 2 of 3 -> cd=1; numCds=2", "@PartOfSet\n1/x -> cd=1; numCds="});
}

class FakeMetadataTool : public testing::Test {
  protected:
    /// A tool that does this with each line that it reads into `path`.
    std::string make(const std::string& work) {
        std::string script =
            folder.write("tool.sh", withMarkers("#!/bin/sh\n"
                                                "answer() { printf '@Path\\n%s\\n@Child\\n%s\\n@\\n"
                                                "---finished---\\n' \"$path\" $$; }\n"
                                                "isFirst() { mkdir \"$0.ran\" 2>/dev/null; }\n"
                                                "while IFS= read -r path; do " +
                                                work + "; done\n"));
        ::chmod(script.c_str(), 0755);
        return script;
    }

    void TearDown() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was left, or not reaped";
        EXPECT_EQ(errno, ECHILD);
    }

    TemporaryFolder folder;
    test::LogRecorder log;
};

TEST_F(FakeMetadataTool, neverGivesAFileWhatIsNotItsOwn) {
    const struct {
        const char* work;
        const char* expected; ///< of the first file, of the second, and how often the log tells of a failure
        std::chrono::seconds limit{60};
    } cases[] = {
        {"answer", "/a /b 0"},
        {"printf '@Path\\n%s\\n@\\n---fini' \"$path\"; printf 'shed---\\n'", "/a /b 0"},
        {"exit 0", "failed failed 2"},
        {"isFirst && printf '@Path\\nwrong\\n@A' && kill -9 $$; answer", "/a /b 0"},
        {"printf '@Path\\nwrong\\n@A'; exit", "failed failed 2"},
        {"answer; exit", "/a /b 0"},
        {"printf 'Path\\nwrong\\n---finished---\\n'", "failed failed 2"},
        {"isFirst && printf '{extracted-failure}:no @\\n@\\n---finished---\\n' || answer", "failed /b 1"},
        {"exec yes", "failed failed 2"}, // has no end
        {"isFirst && exec printf '%s' \"$(path=wrong; answer; path=worse; answer)\"; answer", "failed /b 1"},
        {"isFirst && while :; do read -r path; done; answer", "failed /b 1", std::chrono::seconds(1)},
    };
    for (const auto& fake : cases) {
        const std::size_t before = log.count("metadata tool");
        MetadataTool tool(make(fake.work), {fake.limit, 100'000});
        std::string found;
        for (const char* path : {"/a", "/b"})
            found += valueOf(tool.tagsFor(path, Client::allTags), "Path") + " ";
        EXPECT_EQ(found + std::to_string(log.count("metadata tool") - before), fake.expected) << fake.work;
        if (folder.kind("tool.sh.ran"))
            folder.remove("tool.sh.ran");
    }
    ::chmod(make("answer").c_str(), 0644);
    EXPECT_EQ(flat(MetadataTool(folder.path("tool.sh")).tagsFor("/a", Client::allTags)), "failed");
}

TEST_F(FakeMetadataTool, refusesWhatSpeaksBeforeItIsAsked) {
    // The first child answers once more when it is told to, and tells when it has.
    for (const char* pipe : {"go", "spoken"})
        ASSERT_EQ(::mkfifo(folder.path(pipe).c_str(), 0600), 0);
    MetadataTool tool(make("answer; isFirst && read word <go && path=wrong && answer && echo done >spoken"));
    EXPECT_EQ(valueOf(tool.tagsFor("/a", Client::allTags), "Path"), "/a");
    std::ofstream(folder.path("go")) << "go\n";
    EXPECT_EQ(folder.read("spoken"), "done\n");
    EXPECT_EQ(flat(tool.tagsFor("/b", Client::allTags)), "failed");
    EXPECT_EQ(valueOf(tool.tagsFor("/c", Client::allTags), "Path"), "/c");
}

TEST_F(FakeMetadataTool, servesHundredRequestsOfAClientWithAChild) {
    FileManager files(make("answer"));
    std::vector<std::string> children;
    for (int i = 0; i < 201; ++i)
        children.push_back(valueOf(files.allTagsFor("/a"), "Child"));
    children.push_back(valueOf(files.mp3TagsFor("/a.mp3").value(), "Child"));
    children.push_back(valueOf(files.allTagsFor("/a"), "Child"));
    std::vector<std::size_t> starts; // the first request of the other client starts one, which both share
    for (std::size_t i = 1; i < children.size(); ++i)
        if (children[i] != children[i - 1])
            starts.push_back(i);
    EXPECT_EQ(starts, (std::vector<std::size_t>{100, 200, 201}));
}

TEST_F(FakeMetadataTool, isAskedForSomeFilesAlone) {
    const FileManager files(make("answer"));
    for (const std::string& path : std::initializer_list<std::string>{
             "/Data.XML", "/a.xml/b", "/.xml", "/ blank \\ 'q' \"|", "/" + std::string(200'000, 'x')})
        EXPECT_EQ(valueOf(files.allTagsFor(path), "Path"), path);
    for (const std::string path : {"/Data.xml", "/a.b.jar"})
        EXPECT_EQ(flat(files.allTagsFor(path)), "") << path;
    EXPECT_EQ(flat(files.allTagsFor("/line\nfeed")), "failed");
    EXPECT_EQ(flat(files.mp3TagsFor("/line\nfeed.mp3").value()), "failed");
    for (const char* path : {"/a.mp3", "/a.M4A", "/.m4p", "/a.aif", "/a.ogg", "/a.ape", "/Song.FLAC"})
        EXPECT_TRUE(files.mp3TagsFor(path).has_value()) << path;
    for (const char* path : {"/Song.wav", "/mp3", "/a.mp3/", "/a.flac2", "", "/a.opus"})
        EXPECT_FALSE(files.mp3TagsFor(path).has_value()) << path;
}

TEST_F(FakeMetadataTool, getsNothingOfThisProgramButAPathALine) {
    const test::Variable library("PERL5LIB", "/tmp");
    const Descriptor leaky(::fcntl(STDERR_FILENO, F_DUPFD, 77)); // without close-on-exec
    MetadataTool tool(make("[ -e /proc/$$/fd/" + std::to_string(leaky.get()) +
                           " ] && path=leak || path=\"$PERL5LIB$HOME $(pwd)\"; answer"));
    EXPECT_EQ(valueOf(tool.tagsFor("/a", Client::allTags), "Path"), folder.path());
}

TEST_F(FakeMetadataTool, isAskedByManyThreadsInTurn) {
    MetadataTool tool(make("answer"));
    std::vector<std::jthread> askers;
    for (const std::string path : {"/a", "/b", "/c", "/d"})
        askers.emplace_back([&tool, path] {
            for (int i = 0; i < 60; ++i)
                EXPECT_EQ(valueOf(tool.tagsFor(path, Client::allTags), "Path"), path);
        });
}

class RealMetadataTool : public testing::Test {
  protected:
    TemporaryFolder folder;
    const FileManager files{resourcePath("extract.pl")};
};

TEST_F(RealMetadataTool, tellsWhatTheSamplesHold) {
    std::istringstream table(
        R"(photo.jpg photo.png photo.tif photo.heic  Make=Halden; Model=Halden 40; Lens=35mm f/2; LensModel=Halden 35mm f/2
photo.jpg photo.png photo.tif photo.heic  ExposureTime=1/250; ShutterSpeed=1/250; Aperture=5.6; ISO=400
photo.jpg photo.png photo.tif photo.heic  ColorSpace=sRGB; SubSecTimeOriginal=07; BitDepth=8
photo.jpg photo.heic  GPSPosition=48 deg 12' 29.52" N, 16 deg 22' 25.68" E; GPSLatitude=48 deg 12' 29.52" N
photo.jpg photo.heic  GPSLatitudeRef=North; GPSLongitude=16 deg 22' 25.68" E; GPSLongitudeRef=East
photo.jpg photo.heic  GPSAltitude=171 m Above Sea Level; GPSAltitudeRef=Above Sea Level; GPSImgDirection=92.5
photo.jpg photo.heic  GPSImgDirectionRef=True North
photo.jpg  ImageWidth=640; ImageHeight=480; ExifImageWidth=640; ExifImageHeight=480; Orientation=Horizontal (normal)
photo.jpg  Year=(none); cd=(none); FileName=(none); Directory=(none); ColorMode=(none)
photo.jpg photo.tif  ColorComponents=3
photo.png photo.tif clip.mp4 clip.mkv  ImageWidth=64
photo.tif  GPSPosition=33 deg 51' 30.00" S, 70 deg 30' 0.00" W; GPSLongitude=70 deg 30' 0.00" W
photo.png photo.tif  GPSAltitude=(none); ColorMode=RGB
camera.jpg  FocusMode=AF-S; ShutterCount=12345; ColorMode=(none)
song.mp3 song.m4a song.flac song.ogg song.opus clip.mp4  Artist=Ann; Album=Best; Year=1999; track=3; numTrack=12
song.mp3 song.m4a song.flac song.ogg song.opus clip.mp4 clip.mkv  Title=Blue Hour
song.mp3 song.m4a song.flac song.ogg clip.mp4  cd=1; numCds=2
song.mp3  Duration#=2.664; Genre=Rock
song.m4a song.flac song.ogg song.opus  Duration#=2.5
clip.mp4  Duration#=2; BitDepth=24; CompressorID=avc1; CompressorName=Lavc libx264
clip.mkv  Duration#=2.008; CompressorID=V_MPEG4/ISO/AVC; track=(none); cd=(none)
clip.mp4 clip.mkv  VideoFrameRate=25
song.opus  cd=(none); FileName=(none); Directory=(none)
song.flac  BitDepth=(none)
)");
    std::map<std::string, FileMetadata> tags;
    for (std::string line; std::getline(table, line);) {
        const std::size_t gap = line.find("  ");
        std::istringstream names(line.substr(0, gap));
        for (std::string name; names >> name;) {
            if (!tags.contains(name))
                tags[name] = files.allTagsFor(samples + name);
            std::istringstream values(line.substr(gap + 2));
            for (std::string pair; std::getline(values >> std::ws, pair, ';');)
                EXPECT_EQ(pair, pair.substr(0, pair.find('=') + 1) +
                                    valueOf(tags[name], pair.substr(0, pair.find('='))))
                    << name;
        }
    }
    EXPECT_EQ(tags.size(), 12u) << "every sample has a line";
}

TEST_F(RealMetadataTool, takesHostileNamesAndSkipsWhatIsNoFile) {
    const std::string photo = contentOf(samples + "photo.jpg");
    for (const std::string& name : std::initializer_list<std::string>{
             " leading", "trailing ", "pipe|", "|pipe", "-", "&and", "$(kill $$)", "quo\"t'e", "caf\xe9.jpg",
             "cr\r", ">out", "{extracted-key}:A", "---finished---", std::string(255, 'x')})
        EXPECT_EQ(valueOf(files.allTagsFor(folder.write(name, photo)), "ImageWidth"), "640") << name;
    ASSERT_EQ(::mkfifo(folder.path("fifo").c_str(), 0600), 0);
    folder.link("link", folder.path("fifo"));
    for (const std::string& path : {folder.path("fifo"), folder.path("link"), folder.path("missing"),
                                    "/dev/zero"s, "-"s, "relative.jpg"s, ""s})
        EXPECT_EQ(flat(files.allTagsFor(path)), "") << path;
    EXPECT_EQ(valueOf(files.allTagsFor(folder.path()), "ImageWidth"), "(none)");
    EXPECT_EQ(valueOf(files.allTagsFor(folder.write("empty.jpg")), "ImageWidth"), "(none)");
}

TEST_F(RealMetadataTool, givesUpAfterItsTimeAndRunsNoSettings) {
    std::string script = contentOf(resourcePath("extract.pl"));
    script.replace(script.find("=> 30,"), 6, "=> 1,");
    const std::string impatient = folder.write("extract.pl", script);
    ::chmod(impatient.c_str(), 0755);
    // Settings of a user, which the library would find here, are code.
    folder.write(".ExifTool_config", "open my $mark, '>', 'was_run'; 1;");
    const FileManager manager(impatient);
    // Takes the library many seconds.
    std::string movie("\0\0\0\24ftypqt  \0\0\0\0qt  ", 20);
    for (int i = 0; i < 400'000; ++i)
        movie.append("\0\0\0\20free12345678", 16);
    EXPECT_EQ(manager.allTagsFor(folder.write("movie.mov", movie)).failure, "it took longer than 1 seconds");
    EXPECT_EQ(valueOf(manager.allTagsFor(samples + "song.ogg"), "Artist"), "Ann");
    EXPECT_FALSE(folder.kind("was_run").has_value());
}

TEST_F(RealMetadataTool, keepsHostileValuesInBounds) {
    const std::string photo = contentOf(samples + "photo.jpg");
    const std::pair<std::string, std::string> cases[] = {
        {"---finished---", "- - finished---"},
        {"-----finished---\n---finished---", "--- - finished---/n- - finished---"},
        {"{extracted-key}:Make\nEve", "{extracted-key} :Make/nEve"},
        {"a\r\nb\rc\n\1d\33\177e\xc2\x85\xe2\x80\xa8z", "a/nb/nc/nd e z"},
        {"caf\xe9", "café"},
        {"\xed\xa0\x80z", "\xef\xbf\xbdz"},
        {fmt::format("{:é>3000}", ""), fmt::format("{:é>2048}", "")},
        {fmt::format("x{:é>30000}", ""), fmt::format("x{:é>2047}", "")},
        {fmt::format("{:€>20000}", ""), fmt::format("{:€>1365}", "")},
        {std::string(60000, 'x'), std::string(4096, 'x')},
    };
    const auto segment = [](const std::string& comment) {
        const std::size_t size = comment.size() + 2;
        return std::string{'\xff', '\xfe', static_cast<char>(size >> 8), static_cast<char>(size)} + comment;
    };
    const auto tagsWith = [&](const std::string& segments) {
        return files.allTagsFor(folder.write("photo.jpg", photo.substr(0, 2) + segments + photo.substr(2)));
    };
    for (const auto& [comment, expected] : cases) {
        const auto tags = tagsWith(segment(comment));
        EXPECT_EQ(valueOf(tags, "Comment"), expected);
        EXPECT_EQ(valueOf(tags, "Make"), "Halden");
    }
    EXPECT_EQ(valueOf(tagsWith(segment("main") + segment("first") + segment("second")), "Comment"), "main");
    EXPECT_EQ(valueOf(tagsWith(segment(" ") + segment("first") + segment("second")), "Comment"), "first");
    // A key can be hostile too.
    std::string png = contentOf(samples + "photo.png");
    png.insert(33, std::string("\0\0\0\x10tEXt---finished---\0x\0\0\0\0", 28));
    EXPECT_EQ(valueOf(files.allTagsFor(folder.write("key.png", png)), "Make"), "Halden");
    EXPECT_EQ(valueOf(files.allTagsFor(samples + "song.ogg"), "Artist"), "Ann") << "the answers are in step";
}

class FileManagerTest : public testing::Test {
  protected:
    test::LocalTime zone{"UTC"};
    test::TemporaryFolder folder;
    const FileManager manager;
};

TEST_F(FileManagerTest, TellsFilesFoldersAndBundlesApart) {
    for (const char* file :
         {"file", "file.app", "folder/inside", "Suffix.APP/x", "text.rtfd/x", "x.application/x",
          "by list/Contents/Info.plist", "contents only/Contents/other", "app folder/AppRun",
          "app folder/program.desktop", "no launcher/AppRun", "no program/program.desktop"})
        folder.write(file);
    folder.link("link to file", "file");
    folder.link("link to folder", "folder");
    folder.link("dangling", "nowhere");
    // F for a file, D for a folder, B for a bundle, L for what is likely to be one.
    const std::pair<const char*, const char*> cases[] = {
        {"file", "F"},        {"file.app", "FL"},     {"folder", "D"},         {"folder/", "D"},
        {"Suffix.APP", "BL"}, {"Suffix.APP/", "B"},   {"text.rtfd", "BL"},     {"x.application", "D"},
        {"by list", "BL"},    {"contents only", "D"}, {"app folder", "B"},     {"no launcher", "D"},
        {"no program", "D"},  {"link to file", "F"},  {"link to folder", "D"}, {"dangling", "FB"},
        {"missing", "FB"},    {"missing.app", "FBL"},
    };
    for (const auto& [name, expected] : cases) {
        const std::string path = folder.path(name);
        const std::string found = std::string(manager.isFile(path) ? "F" : "") +
                                  (manager.isFolder(path) ? "D" : "") + (manager.isBundle(path) ? "B" : "") +
                                  (manager.folderIsLikelyToBeABundle(path) ? "L" : "");
        EXPECT_EQ(found, expected) << name;
        FolderEntries entries;
        std::unique_ptr<OpenFolder> opened;
        if (FileSystem::sharedInstance().openFolder(path, opened) == 0 && opened->entries(entries) == 0) {
            EXPECT_EQ(manager.isBundleFolder(path, entries), manager.isBundleFolder(path)) << name;
        }
    }
}

TEST_F(FileManagerTest, TellsInvisibleNames) {
    folder.makeFolder("listed folder");
    folder.write(".hidden", "listed\nlisted folder\ncaf\xE9\n\nlast");
    folder.write("other/.hidden", "plain\n");
    for (const char* name : {".dot", "listed", "plain", "last", "caf\xE9", "other/listed", "other/plain"})
        folder.write(name);
    for (const char* name : {".dot", ".hidden", "listed", "listed folder/", "last", "caf\xE9", "other/plain"})
        EXPECT_TRUE(manager.isInvisible(folder.path(name))) << name;
    for (const char* name : {"plain", "other", "other/listed", ".missing", ""})
        EXPECT_FALSE(manager.isInvisible(folder.path(name))) << name;
    EXPECT_FALSE(manager.isInvisible("/"));
}

TEST_F(FileManagerTest, ReadsAListOfHiddenNamesOnceForAFolder) {
    folder.write(".hidden", "b");
    folder.write("a");
    test::FailingFileSystem counting;
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(manager.isInvisible(folder.path("a")));
    EXPECT_LE(counting.callCount(test::FileCall::read), 2U); // a second one when the list has aged meanwhile
    EXPECT_TRUE(HiddenNames(folder.path()).contains("b"));
    folder.write(".hidden", "a");
    EXPECT_FALSE(HiddenNames(folder.path()).contains("b"));
    EXPECT_TRUE(HiddenNames(folder.path("missing")).empty());
}

TEST_F(FileManagerTest, SumsSizes) {
    folder.write("a/one", std::string(1000, 'x'));
    folder.write("a/.two", std::string(200, 'x'));
    folder.write("a/deep/er/three", std::string(30, 'x'));
    folder.link("a/link", "12345");
    folder.link("to a", "a");
    ASSERT_EQ(::link(folder.path("a/one").c_str(), folder.path("a/deep/one again").c_str()), 0);
    const std::tuple<const char*, bool, std::uint64_t> cases[] = {
        {"a/one", false, 1000}, {"a/one", true, 1000},
        {"a", false, 0},        {"a", true, 2235}, // the link by its own five bytes
        {"to a", true, 2235},   {"missing", true, 0}};
    for (const auto& [name, recurses, size] : cases)
        EXPECT_EQ(manager.sizeForPath(folder.path(name), recurses), size) << name;
}

TEST_F(FileManagerTest, TellsDatesAsTextInLocalTime) {
    const test::LocalTime east("XYZ-2");
    const std::string path = folder.write("file");
    const timespec times[2] = {{0, 0}, {978307200 + 4 * 86400 - 1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    EXPECT_EQ(manager.modificationDateFor(path), "5 Jan 2001 01:59:59");
    EXPECT_EQ(manager.fileModificationDate(path), 4 * 86400.0 - 1);
    ASSERT_TRUE(manager.fileCreationDate(path));
    EXPECT_NEAR(*manager.fileCreationDate(path), manager.now(), 60);
    EXPECT_FALSE(manager.creationDateFor(path).empty());
    EXPECT_EQ(manager.creationDateFor(folder.path("missing")), "");
    EXPECT_EQ(manager.fileCreationDate(folder.path("missing")), std::nullopt);
}

TEST_F(FileManagerTest, KeepsCommentsWithTheFile) {
    const std::string path = folder.write("file");
    EXPECT_EQ(manager.finderCommentForFileURL(path), std::nullopt);
    if (!manager.changeFinderComment("caf\xC3\xA9", path))
        GTEST_SKIP() << "the file system of the temporary folder takes no comments";
    EXPECT_EQ(manager.finderCommentForFileURL(path), "caf\xC3\xA9");
    ASSERT_EQ(FileSystem::sharedInstance().renameNoReplace(path, folder.path("renamed")), 0);
    EXPECT_EQ(manager.finderCommentForFileURL(folder.path("renamed")).has_value(),
              FileManager::commentsTravelWithFiles());
    EXPECT_TRUE(manager.changeFinderComment("", folder.path("renamed")));
    EXPECT_EQ(manager.finderCommentForFileURL(folder.path("renamed")), std::nullopt);
    EXPECT_FALSE(manager.changeFinderComment("x", path));
}

/// 2005-07-01 00:00:00 UTC in seconds since 2001.
constexpr double july2005 = 141868800;

/// The dates of an image in the order in which they count; "" where it has none.
using Dates = std::array<std::string, 3>;

/// A sample of 640 by 480 pixels with other dates; each is a text of 19 characters.
std::string imageWith(const Dates& dates) {
    std::string image = contentOf(samples + "photo.jpg");
    constexpr std::array<std::pair<std::string_view, const char*>, 3> present = {{
        {"\x90\x03\0\x02"sv, "2024:06:14 07:31:05"},
        {"\x01\x32\0\x02"sv, "2024:07:01 10:00:00"},
        {"\x90\x04\0\x02"sv, "2024:06:15 08:00:00"},
    }};
    for (std::size_t i = 0; i < dates.size(); ++i)
        if (dates[i].empty())
            image[image.find(present[i].first) + 1] = '\x7F'; // a tag that nobody asks for
        else
            image.replace(image.find(present[i].second), dates[i].size(), dates[i]);
    return image;
}

TEST_F(FileManagerTest, TakesTheFirstUsableDate) {
    const char* const first = "2005:07:01 00:00:01";
    const char* const second = "2005:07:01 00:00:02";
    const char* const third = "2005:07:01 00:00:03";
    const char* const blank = "    :  :     :  :  ";
    const std::pair<Dates, double> cases[] = {
        {{first, second, third}, july2005 + 1},
        {{"", second, third}, july2005 + 2},
        {{blank, second, third}, july2005 + 2},
        {{"", "", third}, july2005 + 3},
        {{blank, "0000:00:00 00:00:00", third}, july2005 + 3},
        {{"2001:01:01 00:00:00", "", third}, july2005 + 3}, // a result of zero is none
        {{"", "", ""}, 0.0},
    };
    for (const auto& [dates, expected] : cases) {
        const std::string path = folder.write("a.JPG", imageWith(dates));
        EXPECT_EQ(ExifHelper::exifDateFor(path), expected) << dates[0] << ", " << dates[1];
        EXPECT_EQ(manager.fileEXIFDate(path), expected == 0.0 ? FileManager::distantPast : expected);
    }
    const test::LocalTime summer;
    const std::string local = folder.write("caf\xE9.jpeg", imageWith({"2005:07:01 02:00:00", "", ""}));
    EXPECT_EQ(ExifHelper::exifDateFor(local), july2005);
}

TEST_F(FileManagerTest, ReadsImagesAndSurvivesWhatIsNone) {
    const std::string image = imageWith({"2005:07:01 00:00:00", "", ""});
    const std::string odd = folder.write("image.txt", image);
    EXPECT_EQ(ExifHelper::exifDateFor(odd), 0.0) << "no name of an image";
    EXPECT_EQ(manager.fileEXIFDimensions(folder.link("link", odd)), std::pair(640.0F, 480.0F));
    folder.write("empty.jpg");
    folder.write("garbage.jpg", "no image at all");
    folder.makeFolder("folder.jpg");
    ASSERT_EQ(::mkfifo(folder.path("pipe.jpg").c_str(), 0600), 0); // opening it would wait for ever
    for (const char* name : {"empty.jpg", "garbage.jpg", "folder.jpg", "pipe.jpg", "missing.jpg"}) {
        EXPECT_EQ(ExifHelper::exifDateFor(folder.path(name)), 0.0) << name;
        EXPECT_EQ(manager.fileEXIFDimensions(folder.path(name)), std::pair(-1.0F, -1.0F)) << name;
    }
    for (std::size_t length = 0; length < 1000; ++length) {
        const double date = ExifHelper::exifDateFor(folder.write("cut.jpg", image.substr(0, length)));
        EXPECT_TRUE(date == 0.0 || date == july2005) << length;
    }
    EXPECT_EQ(ExifHelper::exifDateFor("relative.jpg"), 0.0);
}

TEST_F(FileManagerTest, ScansDateTexts) {
    const std::pair<const char*, double> cases[] = {
        {"2005:07:01 00:00:09", july2005 + 9},   {"  2005:07:01 00:00:09", july2005 + 9},
        {"2005:07:01 00:00:09.5", july2005 + 9}, {"2005:07:01 00:00:09Z", july2005 + 9},
        {"2004:02:29 23:59:59", 99791999.0},     {"1999:12:31 23:59:59", -31622401.0},
        {"05:07:01 00:00:00", -62972035200.0}, // the year five
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ExifHelper::dateFrom(text), expected) << text;
    for (const char* text :
         {"0000:00:00 00:00:00", "0000:01:01 00:00:00", "2023:13:01 00:00:00", "2023:02:30 00:00:00",
          "2023:02:03 24:00:00", "2023:02:03 23:60:00", "2023:02:03 23:00:60", "2023:2:03 23:00:00",
          "2023:02:03 3:00:00", "2023:02:03  03:00:00", "2023:02:03T03:00:00", "2023-02-03 03:00:00",
          "12023:02:03 03:00:00", "2023:02:03 03:00", "    :  :     :  :  ", ""})
        EXPECT_EQ(ExifHelper::dateFrom(text), std::nullopt) << text;
}

TEST_F(FileManagerTest, KnowsImagesByTheirNames) {
    for (const char* name : {"a.jpg", "/x.y/a.JPEG", "a.b.tiff", "a.HeIc", "a.arw", "a.webp"})
        EXPECT_TRUE(ExifHelper::isImageName(name)) << name;
    for (const char* name : {"a.txt", "jpg", ".jpg", "/x.jpg/a", "/x/.png", "a.jpg.bak", "a.", "", "a.jp"})
        EXPECT_FALSE(ExifHelper::isImageName(name)) << name;
}

} // namespace
} // namespace tavrin
