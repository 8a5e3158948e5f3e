#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "platform/files/FolderEntries.h"
#include "platform/files/UnflaggedRename.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <map>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {
namespace {

using test::TemporaryFolder;
using Tree = std::map<std::string, std::string>;

FileSystem& files() { return FileSystem::sharedInstance(); }

/// Every way to rename within a folder.
using Rename = std::function<int(const TemporaryFolder&, const std::string&, const std::string&)>;

class NoReplace : public testing::TestWithParam<std::pair<const char*, Rename>> {};

int renameByPath(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    return files().renameNoReplace(folder.path(from), folder.path(to));
}

int renameInFolder(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    std::unique_ptr<OpenFolder> opened;
    const int error = files().openFolder(folder.path(), opened);
    return error != 0 ? error : opened->renameNoReplace(from, to);
}

/// As where the kernel's call can't be told to replace nothing, and where links, replacing or making files
/// are refused too.
int renameUnflagged(const TemporaryFolder& folder, const std::string& from, const std::string& to,
                    const std::vector<std::pair<test::FileCall, std::optional<std::size_t>>>& refused) {
    test::FailingFileSystem refusing;
    for (const auto& [call, number] : refused)
        refusing.failKind(call, EPERM, number);
    std::unique_ptr<OpenFolder> opened;
    const int error = refusing.openFolder(folder.path(), opened);
    return error != 0 ? error : UnflaggedRename(*opened).rename(from, to);
}

int renameByLink(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    return renameUnflagged(folder, from, to, {});
}

int renameByReservation(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    return renameUnflagged(folder, from, to, {{test::FileCall::link, {}}});
}

int renameRefusingToReplace(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    return renameUnflagged(folder, from, to, {{test::FileCall::link, {}}, {test::FileCall::replace, 1}});
}

int renameByLook(const TemporaryFolder& folder, const std::string& from, const std::string& to) {
    return renameUnflagged(folder, from, to, {{test::FileCall::link, {}}, {test::FileCall::reserve, {}}});
}

TEST_P(NoReplace, MovesToAFreeNameAndNeverOntoATakenOne) {
    const Rename& rename = GetParam().second;
    const TemporaryFolder folder;
    folder.write("a", "content of a");
    folder.write("taken", "content of taken");
    folder.makeFolder("empty folder");
    folder.link("dangling", "nowhere");
    ASSERT_EQ(::link(folder.path("a").c_str(), folder.path("same file").c_str()), 0);
    const Tree before = folder.tree();
    for (const char* to : {"taken", "empty folder", "dangling", "same file", "a"})
        EXPECT_EQ(rename(folder, "a", to), EEXIST) << to;
    EXPECT_EQ(rename(folder, "empty folder", "taken"), EEXIST);
    EXPECT_EQ(rename(folder, "missing", "free"), ENOENT);
    EXPECT_EQ(rename(folder, "a", std::string(256, 'x')), ENAMETOOLONG);
    EXPECT_EQ(folder.tree(), before);
    EXPECT_EQ(rename(folder, "a", "caf\xE9"), 0);
    EXPECT_EQ(rename(folder, "dangling", "link"), 0);
    EXPECT_EQ(folder.read("caf\xE9"), "content of a");
    EXPECT_EQ(folder.tree().at("link"), "-> nowhere");
    EXPECT_EQ(folder.tree().size(), before.size());
}

INSTANTIATE_TEST_SUITE_P(Ways, NoReplace,
                         testing::Values(std::pair("ByPath", Rename(renameByPath)),
                                         std::pair("InFolder", Rename(renameInFolder)),
                                         std::pair("ByLink", Rename(renameByLink)),
                                         std::pair("ByReservation", Rename(renameByReservation)),
                                         std::pair("RefusingToReplace", Rename(renameRefusingToReplace)),
                                         std::pair("ByLook", Rename(renameByLook))),
                         [](const auto& instance) { return instance.param.first; });

TEST(FileSystem, RefusesNamesThatLeaveTheFolderOrAreCutShort) {
    const TemporaryFolder folder;
    folder.write("a", "kept");
    folder.makeFolder("sub");
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("sub/b"), std::string("b\0c", 3)})
        EXPECT_EQ(renameInFolder(folder, "a", name), EINVAL) << name;
    const std::string cutShort = folder.path(std::string("a\0b", 3));
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
    const auto statusOf = [&folder](const char* name) {
        FileStatus status;
        EXPECT_EQ(files().status(folder.path(name), status), 0) << name;
        return status;
    };
    const FileStatus file = statusOf("file");
    EXPECT_EQ(file.kind, FileStatus::Kind::file);
    EXPECT_EQ(file.size, 5U);
    EXPECT_GE(file.allocated, file.size);
    EXPECT_DOUBLE_EQ(file.modificationDate, 86400.5);
    struct stat plain {};
    ASSERT_EQ(::stat(folder.path("file").c_str(), &plain), 0);
    EXPECT_EQ(file.identity.inode, plain.st_ino);
    EXPECT_EQ(statusOf("folder").kind, FileStatus::Kind::folder);
    EXPECT_EQ(statusOf("folder").size, 0U);
    EXPECT_EQ(statusOf("folder").allocated, 0U);
    EXPECT_EQ(statusOf("to folder").kind, FileStatus::Kind::link);
    EXPECT_EQ(statusOf("pipe").kind, FileStatus::Kind::other);
    FileStatus followed;
    EXPECT_EQ(files().followedStatus(folder.path("to folder"), followed), 0);
    EXPECT_EQ(followed.kind, FileStatus::Kind::folder);
    EXPECT_EQ(followed.identity, statusOf("folder").identity);
    EXPECT_EQ(files().followedStatus(folder.path("dangling"), followed), ENOENT);
}

TEST(FileSystem, ListsAFolderSortedByBytes) {
    const TemporaryFolder folder;
    folder.write("b");
    folder.write("B");
    folder.write("caf\xE9");
    folder.write("caf\xC3\xA9");
    folder.write("b 10");
    folder.makeFolder("a");
    folder.link(".link", "a");
    std::unique_ptr<OpenFolder> opened;
    ASSERT_EQ(files().openFolder(folder.path(), opened), 0);
    FolderEntries entries;
    for (int round = 0; round < 2; ++round) { // a folder can be listed again
        ASSERT_EQ(opened->entries(entries), 0);
        std::vector<std::string> names;
        for (const FolderEntry entry : entries)
            names.emplace_back(entry.name);
        EXPECT_EQ(names,
                  (std::vector<std::string>{".link", "B", "a", "b", "b 10", "caf\xC3\xA9", "caf\xE9"}));
    }
    EXPECT_EQ(entries[0].kind, FileStatus::Kind::link);
    EXPECT_EQ(entries[1].kind, FileStatus::Kind::file);
    EXPECT_EQ(entries[2].kind, FileStatus::Kind::folder);
    EXPECT_EQ(files().openFolder(folder.path("b"), opened), ENOTDIR);
}

TEST(FileSystem, ListsAFolderThatNeedsManyReads) {
    const TemporaryFolder folder;
    constexpr std::size_t count = 600;
    const std::string longName(240, 'n');
    for (std::size_t i = 0; i < count; ++i)
        folder.write(longName + std::to_string(i));
    std::unique_ptr<OpenFolder> opened;
    FolderEntries entries;
    ASSERT_EQ(files().openFolder(folder.path(), opened), 0);
    ASSERT_EQ(opened->entries(entries), 0);
    EXPECT_EQ(entries.size(), count);
}

TEST(FolderListing, SortsAsAPlainSortDoes) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const std::string prefix(random() % 4, 'p');
        FolderEntries entries;
        std::vector<std::string> expected;
        for (std::size_t i = random() % 40; i > 0; --i) {
            std::string name = prefix;
            for (std::size_t length = random() % 20; length > 0; --length)
                name += "ab\x01\xFF"[random() % 4];
            expected.push_back(name);
            entries.add({name, FileStatus::Kind::file, 0});
        }
        std::sort(expected.begin(), expected.end());
        entries.sort();
        std::vector<std::string> sorted;
        for (const FolderEntry entry : entries)
            sorted.emplace_back(entry.name);
        ASSERT_EQ(sorted, expected);
    }
}

TEST(FileSystem, WritesReadsAndRemoves) {
    const TemporaryFolder folder;
    const std::string path = folder.path("deep/er/file");
    EXPECT_EQ(files().writeFileAtomically(path, "x"), ENOENT);
    EXPECT_EQ(files().makeFolders(folder.path("deep/er")), 0);
    EXPECT_EQ(files().makeFolders(folder.path("deep/er")), 0);
    EXPECT_EQ(files().writeFileAtomically(path, "first"), 0);
    EXPECT_EQ(files().writeFileAtomically(path, std::string("a\0b", 3)), 0);
    EXPECT_EQ(files().makeFolders(path + "/below"), ENOTDIR);
    std::string content;
    EXPECT_EQ(files().readFile(path, content, 3), 0);
    EXPECT_EQ(content, std::string("a\0b", 3));
    EXPECT_EQ(files().readFile(path, content, 2), EFBIG);
    EXPECT_EQ(files().readFile(folder.path("deep"), content, 100), EISDIR);
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(files().readFile(folder.path("pipe"), content, 100), EINVAL);
    EXPECT_EQ(files().readFile("/proc/self/status", content, 100'000), 0); // of no announced size
    EXPECT_FALSE(content.empty());
    // A target that cannot be replaced leaves nothing behind.
    EXPECT_NE(files().writeFileAtomically(folder.path("deep"), "x"), 0);
    EXPECT_EQ(files().removeFile(folder.path("pipe")), 0);
    EXPECT_EQ(folder.tree(),
              (Tree{{"deep/", ""}, {"deep/er/", ""}, {"deep/er/file", std::string("a\0b", 3)}}));
    std::unique_ptr<OpenFolder> opened;
    ASSERT_EQ(files().openFolder(folder.path("deep/er"), opened), 0);
    EXPECT_EQ(opened->reserve("taken", FileStatus::Kind::file), 0);
    EXPECT_EQ(opened->renameReplacing("file", "taken"), 0);
    EXPECT_EQ(folder.read("deep/er/taken"), std::string("a\0b", 3));
    EXPECT_EQ(files().removeFile(folder.path("deep/er/taken")), 0);
    EXPECT_EQ(files().removeFile(path), ENOENT);
}

} // namespace
} // namespace tavrin
