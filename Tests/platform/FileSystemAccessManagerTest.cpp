#include "platform/files/FileSystemAccessManager.h"

#include "common/ManualRunLoop.h"
#include "platform/files/SandboxHelper.h"
#include "platform/files/SecurityBookmarks.h"
#include "platform/propertylists/UserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <unistd.h>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A system whose bookmarks are the bytes of the path behind a mark; those without it can't be resolved.
class Bookmarks : public SecurityBookmarks {
  public:
    static PropertyData of(const std::string& path) {
        PropertyData data{{'>'}};
        data.bytes.insert(data.bytes.end(), path.begin(), path.end());
        return data;
    }
    std::optional<PropertyData> bookmarkDataFor(const std::string& address) override {
        return address == "/refused" ? std::nullopt : std::optional(of(address));
    }
    std::optional<std::string> addressOf(const PropertyData& bookmark) override {
        if (bookmark.bytes.empty() || bookmark.bytes.front() != '>')
            return std::nullopt;
        return std::string(bookmark.bytes.begin() + 1, bookmark.bytes.end());
    }
    bool startAccessing(const std::string& address) override {
        started.push_back(address);
        return true;
    }
    void stopAccessing(const std::string& address) override { stopped.push_back(address); }
    std::vector<std::string> started;
    std::vector<std::string> stopped;
};

class FileSystemAccessManagerTest : public ::testing::Test {
  protected:
    FileSystemAccessManagerTest() { SandboxHelper::setSecurityBookmarks(&bookmarks); }
    ~FileSystemAccessManagerTest() override { SandboxHelper::setSecurityBookmarks(nullptr); }

    FileSystemAccessManager& manager() {
        if (!made)
            made.emplace(defaults, loop, [this](const std::string& path) {
                EXPECT_TRUE(loop.isCurrent());
                requests.push_back(path);
            });
        return *made;
    }
    std::string grantFor(const std::string& path) {
        return manager().getAppropirateSecurityURLBookmarkForPath(path).value_or("none");
    }

    Bookmarks bookmarks;
    UserDefaults defaults;
    ManualRunLoop loop;
    std::vector<std::string> requests;
    std::optional<FileSystemAccessManager> made;
};

TEST_F(FileSystemAccessManagerTest, TheShortestEnclosingFolderWins) {
    defaults.setObject("permamentAccessListArray",
                       PropertyArray{Bookmarks::of("/home/ann/pictures"), u"no bookmark",
                                     Bookmarks::of("/home/ann/"), PropertyData{{'?'}}, 7, Bookmarks::of("")});
    const std::vector<std::pair<const char*, const char*>> cases{{"/home/ann/pictures/a.jpg", "/home/ann/"},
                                                                 {"/home/ann", "/home/ann/"},
                                                                 {"/home/ann///", "/home/ann/"},
                                                                 {"/home/anna", "none"},
                                                                 {"/home", "none"},
                                                                 {"/", "none"},
                                                                 {"", "none"},
                                                                 {"relative", "none"}};
    for (const auto& [path, grant] : cases)
        EXPECT_EQ(grantFor(path), grant) << path;
    manager().storeAccessToPath("/");
    EXPECT_EQ(grantFor("/anything"), "/");
}

TEST_F(FileSystemAccessManagerTest, AsksAlsoWhereAGrantWasFoundButOnlyOnce) {
    defaults.setObject("permamentAccessListArray", PropertyArray{Bookmarks::of("/a")});
    manager().obtainAccessToPath("/a/b");
    manager().obtainAccessToPath("/a/b");
    manager().obtainAccessToPath("/a/c");
    EXPECT_THAT(bookmarks.started, ElementsAre("/a"));
    EXPECT_THAT(requests, ElementsAre("/a/b"));
    manager().obtainAccessToPath("/other");
    manager().obtainAccessToPath("/other");
    EXPECT_THAT(requests, ElementsAre("/a/b", "/other", "/other"));
}

TEST_F(FileSystemAccessManagerTest, AWorkerWaitsForTheMainThread) {
    (void)manager();
    bool isDone = false;
    std::thread worker([&] {
        manager().obtainAccessToPath("/x");
        loop.post([&] { isDone = true; });
    });
    EXPECT_TRUE(loop.runUntil([&] { return isDone; }));
    worker.join();
    EXPECT_THAT(requests, ElementsAre("/x"));
}

TEST_F(FileSystemAccessManagerTest, KeepsGrantsOverLaunches) {
    manager().storeAccessToPath("/a");
    manager().storeAccessToPath("/a/b");
    manager().storeAccessToPath("/refused");
    manager().storeAccessToPath("/c");
    EXPECT_EQ(defaults.objectForKey("permamentAccessListArray"),
              PropertyValue(PropertyArray{Bookmarks::of("/a"), Bookmarks::of("/c")}));
    EXPECT_TRUE(manager().wasAccessAlreadyObtainedForPath("/refused/x"));
    made.reset();
    EXPECT_EQ(grantFor("/c/d"), "/c");
    EXPECT_FALSE(manager().wasAccessAlreadyObtainedForPath("/c/d"));
    manager().revokeAllSecurityBookmarks();
    EXPECT_EQ(grantFor("/c/d"), "/c") << "the running program keeps what it has";
    made.reset();
    EXPECT_EQ(grantFor("/c/d"), "none");
}

TEST_F(FileSystemAccessManagerTest, ASystemWithoutBookmarksGrantsNothing) {
    EXPECT_TRUE(SandboxHelper::securityBookmarksAreAvailable());
    EXPECT_TRUE(SandboxHelper::stopUsingSecurityScopedBookmark("/a"));
    EXPECT_FALSE(SandboxHelper::stopUsingSecurityScopedBookmark(std::nullopt));
    SandboxHelper::setSecurityBookmarks(nullptr);
    EXPECT_FALSE(SandboxHelper::securityBookmarksAreAvailable());
    EXPECT_FALSE(SandboxHelper::startUsingSecurityScopedBookmark("/a"));
    EXPECT_FALSE(SandboxHelper::stopUsingSecurityScopedBookmark("/a"));
    defaults.setObject("permamentAccessListArray", PropertyArray{Bookmarks::of("/a")});
    EXPECT_EQ(grantFor("/a"), "none");
    manager().storeAccessToPath("/b");
    EXPECT_EQ(grantFor("/b"), "none");
    EXPECT_TRUE(manager().wasAccessAlreadyObtainedForPath("/b"));
    EXPECT_THAT(bookmarks.started, IsEmpty());
}

TEST_F(FileSystemAccessManagerTest, BookmarksGoThroughTheUserDefaults) {
    SandboxHelper::archiveSecurityBookmark(std::nullopt, defaults, "one");
    EXPECT_FALSE(SandboxHelper::unarchiveSecurityBookmark(defaults, "one"));
    SandboxHelper::archiveSecurityBookmark(Bookmarks::of("/a"), defaults, "one");
    EXPECT_EQ(SandboxHelper::unarchiveSecurityBookmark(defaults, "one"), Bookmarks::of("/a"));
    EXPECT_TRUE(SandboxHelper::isPathAccessible("/", R_OK));
    EXPECT_FALSE(SandboxHelper::isPathAccessible("/nowhere", F_OK));
    EXPECT_FALSE(SandboxHelper::isPathAccessible(std::string("/\0x", 3), F_OK));
}

} // namespace
} // namespace tavrin::test
