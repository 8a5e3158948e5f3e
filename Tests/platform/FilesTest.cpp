#include "common/FailingFileSystem.h"
#include "common/ManualRunLoop.h"
#include "common/Testing.h"
#include "platform/files/AbsolutePaths.h"
#include "platform/files/FileSystemAccessManager.h"
#include "platform/files/FolderEntries.h"
#include "platform/files/ItemCopy.h"
#include "platform/files/UnflaggedRename.h"
#include "platform/propertylists/UserDefaults.h"

namespace tavrin {
namespace {

using test::TemporaryFolder;
using namespace std::string_literals;
using Tree = std::map<std::string, std::string>;

FileSystem& files() { return FileSystem::sharedInstance(); }

/// Calls, and the number of the one that fails; without a number all fail.
using Refused = std::vector<std::pair<test::FileCall, std::optional<std::size_t>>>;

/// Within the folder; where calls are refused, as if the kernel could not be told to replace nothing either.
int renamed(const TemporaryFolder& folder, const std::optional<Refused>& refused, const std::string& from,
            const std::string& to) {
    test::FailingFileSystem refusing;
    if (refused)
        for (const auto& [call, number] : *refused)
            refusing.failKind(call, EPERM, number);
    std::unique_ptr<OpenFolder> opened;
    if (const int error = refusing.openFolder(folder.path(), opened))
        return error;
    return refused ? UnflaggedRename(*opened).rename(from, to) : opened->renameNoReplace(from, to);
}

TEST(FileSystem, RenamesToAFreeNameAndNeverOntoATakenOne) {
    using enum test::FileCall;
    const std::optional<Refused> ways[] = {std::nullopt, Refused{},             // by a second name
                                           Refused{{link, {}}},                 // by a reservation
                                           Refused{{link, {}}, {replace, 1}},   // which can't be replaced
                                           Refused{{link, {}}, {reserve, {}}}}; // by a look
    for (const auto& way : ways) {
        SCOPED_TRACE(&way - ways);
        const TemporaryFolder folder;
        folder.write("a", "content of a");
        folder.write("taken", "content of taken");
        folder.makeFolder("empty folder");
        folder.link("dangling", "nowhere");
        ASSERT_EQ(::link(folder.path("a").c_str(), folder.path("same file").c_str()), 0);
        Tree tree = folder.tree();
        for (const char* to : {"taken", "empty folder", "dangling", "same file", "a"})
            EXPECT_EQ(renamed(folder, way, "a", to), EEXIST) << to;
        EXPECT_EQ(renamed(folder, way, "empty folder", "taken"), EEXIST);
        EXPECT_EQ(renamed(folder, way, "missing", "free"), ENOENT);
        EXPECT_EQ(renamed(folder, way, "a", std::string(256, 'x')), ENAMETOOLONG);
        EXPECT_EQ(folder.tree(), tree);
        EXPECT_EQ(renamed(folder, way, "a", "caf\xE9"), 0);
        EXPECT_EQ(renamed(folder, way, "dangling", "link"), 0);
        for (const auto& [from, to] : {std::pair("a", "caf\xE9"), {"dangling", "link"}})
            tree.insert({to, tree.extract(from).mapped()});
        EXPECT_EQ(folder.tree(), tree);
    }
}

TEST(FileSystem, RefusesNamesThatLeaveTheFolderOrAreCutShort) {
    const TemporaryFolder folder;
    folder.write("a", "kept");
    folder.makeFolder("sub");
    EXPECT_EQ(files().renameNoReplace(folder.path("a"), folder.path("sub")), EEXIST);
    EXPECT_EQ(files().renameNoReplace(folder.path("a"), folder.path("sub/a")), EXDEV);
    for (const std::string& name : std::initializer_list<std::string>{"", ".", "..", "sub/b", "b\0c"s})
        EXPECT_EQ(renamed(folder, std::nullopt, "a", name), EINVAL) << name;
    const std::string cutShort = folder.path("a\0b"s);
    FileStatus status;
    std::string content;
    std::unique_ptr<OpenFolder> opened;
    EXPECT_EQ(files().status(cutShort, status), EINVAL);
    EXPECT_EQ(files().readFile(cutShort, content, 100), EINVAL);
    EXPECT_EQ(files().writeFileAtomically(cutShort, "x"), EINVAL);
    EXPECT_EQ(files().removeFile(cutShort), EINVAL);
    EXPECT_EQ(files().makeFolders(cutShort), EINVAL);
    EXPECT_EQ(files().openFolder(cutShort, opened), EINVAL);
    EXPECT_EQ(folder.tree(), (Tree{{"a", "kept"}, {"sub/", ""}}));
}

TEST(FileSystem, TellsKindSizeAndDates) {
    const TemporaryFolder folder;
    folder.write("file", "12345");
    folder.makeFolder("folder");
    folder.link("to folder", "folder");
    folder.link("dangling", "nowhere");
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    const timespec times[2] = {{978307200, 0}, {978307200 + 86400, 500'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.path("file").c_str(), times, 0), 0);
    std::map<std::string, FileStatus> found;
    for (const char* name : {"file", "folder", "to folder", "pipe"})
        EXPECT_EQ(files().status(folder.path(name), found[name]), 0) << name;
    EXPECT_EQ(found["file"].kind, FileStatus::Kind::file);
    EXPECT_EQ(found["file"].size, 5U);
    EXPECT_GE(found["file"].allocated, 5U);
    EXPECT_DOUBLE_EQ(found["file"].modificationDate, 86400.5);
    EXPECT_FALSE(found["file"].identity == found["folder"].identity);
    EXPECT_EQ(found["folder"].kind, FileStatus::Kind::folder);
    EXPECT_EQ(found["folder"].size + found["folder"].allocated, 0U);
    EXPECT_EQ(found["to folder"].kind, FileStatus::Kind::link);
    EXPECT_EQ(found["pipe"].kind, FileStatus::Kind::other);
    FileStatus followed;
    EXPECT_EQ(files().followedStatus(folder.path("to folder"), followed), 0);
    EXPECT_EQ(followed.kind, FileStatus::Kind::folder);
    EXPECT_EQ(followed.identity, found["folder"].identity);
    EXPECT_EQ(files().followedStatus(folder.path("dangling"), followed), ENOENT);
}

std::vector<std::string> namesIn(const FolderEntries& entries) {
    std::vector<std::string> names;
    for (const FolderEntry entry : entries)
        names.emplace_back(entry.name);
    return names;
}

TEST(FileSystem, ListsAFolderSortedByBytes) {
    const TemporaryFolder folder;
    std::vector<std::string> expected = {".link", "B", "a", "b", "b 10", "caf\xC3\xA9", "caf\xE9"};
    for (int i = 100; i < 700; ++i) // more than a single read yields
        expected.push_back(std::string(240, 'n') + std::to_string(i));
    folder.makeFolder("a");
    folder.link(".link", "a");
    for (const std::string& name : expected)
        if (!folder.kind(name))
            folder.write(name);
    std::unique_ptr<OpenFolder> opened;
    ASSERT_EQ(files().openFolder(folder.path(), opened), 0);
    FolderEntries entries;
    for (int round = 0; round < 2; ++round) { // a folder can be listed again
        ASSERT_EQ(opened->entries(entries), 0);
        EXPECT_EQ(namesIn(entries), expected);
    }
    EXPECT_EQ(entries[0].kind, FileStatus::Kind::link);
    EXPECT_EQ(entries[1].kind, FileStatus::Kind::file);
    EXPECT_EQ(entries[2].kind, FileStatus::Kind::folder);
    EXPECT_EQ(files().openFolder(folder.path("b"), opened), ENOTDIR);
}

TEST(FolderListing, SortsAsAPlainSortDoes) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const std::string prefix(random() % 4, 'p');
        FolderEntries entries;
        std::vector<std::string> expected(random() % 40, prefix);
        for (std::string& name : expected) {
            for (std::size_t length = random() % 20; length > 0; --length)
                name += "ab\x01\xFF"[random() % 4];
            entries.add({name, FileStatus::Kind::file, 0});
        }
        std::sort(expected.begin(), expected.end());
        entries.sort();
        ASSERT_EQ(namesIn(entries), expected);
    }
}

TEST(FileSystem, WritesReadsAndRemoves) {
    const TemporaryFolder folder;
    const std::string path = folder.path("deep/er/file");
    EXPECT_EQ(files().writeFileAtomically(path, "x"), ENOENT);
    EXPECT_EQ(files().makeFolders(folder.path("deep/er")), 0);
    EXPECT_EQ(files().makeFolders(folder.path("deep/er")), 0);
    EXPECT_EQ(files().writeFileAtomically(path, "first"), 0);
    EXPECT_EQ(files().writeFileAtomically(path, "a\0b"s), 0);
    EXPECT_EQ(files().makeFolders(path + "/below"), ENOTDIR);
    std::string content;
    EXPECT_EQ(files().readFile(path, content, 3), 0);
    EXPECT_EQ(content, "a\0b"s);
    EXPECT_EQ(files().readFile(path, content, 2), EFBIG);
    EXPECT_EQ(files().readFile(folder.path("deep"), content, 100), EISDIR);
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(files().readFile(folder.path("pipe"), content, 100), EINVAL);
    EXPECT_EQ(files().readFile("/proc/self/status", content, 100'000), 0); // of no announced size
    EXPECT_FALSE(content.empty());
    // A target that cannot be replaced leaves nothing behind.
    EXPECT_NE(files().writeFileAtomically(folder.path("deep"), "x"), 0);
    EXPECT_EQ(files().removeFile(folder.path("pipe")), 0);
    EXPECT_EQ(folder.tree(), (Tree{{"deep/", ""}, {"deep/er/", ""}, {"deep/er/file", "a\0b"s}}));
    EXPECT_EQ(files().removeFile(path), 0);
    EXPECT_EQ(files().removeFile(path), ENOENT);
}

TEST(FolderAccess, IsAskedForUntilTheFolderOrOneAroundItIsGranted) {
    UserDefaults defaults;
    test::ManualRunLoop loop;
    std::vector<std::string> requests;
    FileSystemAccessManager manager(defaults, loop,
                                    [&](const std::string& path) { requests.push_back(path); });
    manager.storeAccessToPath("/home/ann/");
    for (const char* path :
         {"/home/ann", "/home/ann///", "/home/ann/a/b", "/home/anna", "/home", "/", "relative"})
        manager.obtainAccessToPath(path);
    EXPECT_THAT(requests, testing::ElementsAre("/home/anna", "/home", "/", "relative"));
    manager.storeAccessToPath("/");
    EXPECT_TRUE(manager.wasAccessAlreadyObtainedForPath("/anything"));
    defaults.setObject("permamentAccessListArray", PropertyArray{1});
    manager.revokeAllSecurityBookmarks();
    EXPECT_TRUE(defaults.objectForKey("permamentAccessListArray")->asArray()->empty());
}

TEST(LinkTarget, IsFollowedToItsEndIfThereIsOne) {
    TemporaryFolder folder;
    folder.link("a", "b");
    folder.link("b", "d/c");
    EXPECT_EQ(linkTarget(folder.path("a")), folder.path("d/c"));
    folder.link("d/c", "../a");
    EXPECT_EQ(linkTarget(folder.path("a")), folder.path("a"));
}

/// What can be copied whole lies there whole, and of all else nothing.
TEST(ItemCopy, CopiesWholeTreesOrNothing) {
    TemporaryFolder folder;
    folder.write("from/a", "1");
    folder.write("from/b/c", "2");
    folder.link("from/b/link", "nowhere");
    folder.write("taken", "3");
    std::string deep = "deep";
    for (int depth = 0; depth < 65; ++depth)
        deep += "/d";
    folder.makeFolder(deep);
    const auto before = folder.tree();
    const auto copy = [&](const char* from, const char* to, int mostEntries) {
        return copyItem(folder.path(from), folder.path(to), mostEntries);
    };
    EXPECT_EQ(copy("from", "to", 4), EFBIG);
    EXPECT_EQ(copy("from", "taken", 5), EEXIST);
    EXPECT_EQ(copy("from", "from/b/to", 50), EINVAL);
    EXPECT_EQ(copy("deep", "to", 500), ELOOP);
    EXPECT_EQ(folder.tree(), before);
    EXPECT_EQ(copy("from", "to", 5), 0);
    EXPECT_EQ(folder.tree().size(), before.size() + 5);
    EXPECT_EQ(folder.read("to/b/c"), "2");
    EXPECT_EQ(folder.kind("to/b/link"), FileStatus::Kind::link);
}

} // namespace
} // namespace tavrin
