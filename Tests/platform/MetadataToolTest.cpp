#include "platform/metadata/MetadataTool.h"

#include "common/LogRecorder.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/desktop/ResourceFolder.h"
#include "platform/files/Descriptor.h"
#include "platform/metadata/FileManager.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace tavrin {
namespace {

using test::LogRecorder;
using test::TemporaryFolder;
using Client = MetadataTool::Client;
using namespace std::string_literals;

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
    LogRecorder log;
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
    MetadataTool missing(folder.path("no such tool"));
    EXPECT_EQ(missing.tagsFor("/a", Client::allTags).failure,
              "the metadata tool cannot be started: No such file or directory");
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
    for (const char* path : {"/a.mp3", "/a.M4A", "/.m4p", "/a.m4b", "/a.aif", "/a.ogg", "/a.ape", "/a.m4v",
                             "/a.AIFF", "/Song.FLAC"})
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

} // namespace
} // namespace tavrin
