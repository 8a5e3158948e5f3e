#include "platform/propertylists/UserDefaults.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tavrin {
namespace {

using test::TemporaryFolder;

PropertyDictionary stored(const TemporaryFolder& folder) {
    auto result = PropertyList::read(folder.path("c/defaults.plist"));
    if (auto* value = std::get_if<PropertyValue>(&result))
        return *value->asDictionary();
    return {{"error", text::fromUtf8(std::get<PropertyListError>(result).message)}};
}

TEST(UserDefaults, LooksThroughTheLayersFromTheTop) {
    UserDefaults defaults;
    EXPECT_EQ(defaults.integerForKey("k"), 0);
    EXPECT_FALSE(defaults.boolForKey("k"));
    defaults.registerDefaults({{"k", 1}, {"other", true}});
    EXPECT_EQ(defaults.integerForKey("k"), 1);
    defaults.setObject("k", 2);
    EXPECT_EQ(defaults.integerForKey("k"), 2);
    defaults.setProcessObject("k", 3);
    defaults.setObject("k", 4);
    EXPECT_EQ(defaults.integerForKey("k"), 3);
    defaults.removePersistentDomain();
    EXPECT_EQ(defaults.integerForKey("k"), 3);
    defaults.setObject("other", false);
    EXPECT_FALSE(defaults.boolForKey("other"));
    defaults.removeObject("other");
    EXPECT_TRUE(defaults.boolForKey("other"));
    EXPECT_TRUE(defaults.synchronize());
    defaults.setObject("text", u" 42.5 apples");
    EXPECT_EQ(defaults.integerForKey("text"), 42);
    EXPECT_DOUBLE_EQ(defaults.floatForKey("text"), 42.5);
}

TEST(UserDefaults, ObserversHearOfTheirKeyUntilTheyEnd) {
    UserDefaults defaults;
    int calls = 0;
    int seen = 0;
    auto handle = defaults.observe("k", [&] {
        ++calls;
        seen = defaults.integerForKey("k"); // no lock is held here
    });
    int callsOfBrief = 0;
    std::shared_ptr<void> brief = defaults.observe("k", [&] {
        ++callsOfBrief;
        brief.reset();
    });
    defaults.setObject("other", 1);
    EXPECT_EQ(calls, 0);
    defaults.setObject("k", 1);
    defaults.setProcessObject("k", 2);
    EXPECT_EQ(seen, 2);
    defaults.registerDefaults({{"k", 5}});
    defaults.removePersistentDomain();
    EXPECT_EQ(calls, 4);
    handle.reset();
    defaults.setObject("k", 3);
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(callsOfBrief, 1) << "an observer may end itself";
}

TEST(UserDefaults, CanBeUsedFromManyThreads) {
    UserDefaults defaults;
    std::atomic<int> calls = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&defaults, &calls, number] {
            const std::string own = fmt::format("own {}", number);
            for (int i = 0; i < 200; ++i) {
                const auto handle = defaults.observe("shared", [&calls] { ++calls; });
                defaults.setObject("shared", i);
                defaults.setObject(own, i);
                EXPECT_EQ(defaults.integerForKey(own), i);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(calls, 800);
}

TEST(UserDefaultsFile, KeepsThePersistentLayerAlone) {
    const TemporaryFolder folder;
    const std::string path = folder.path("c/defaults.plist");
    {
        UserDefaults defaults(path);
        defaults.registerDefaults({{"registered", 1}});
        defaults.setProcessObject("process", 1);
        defaults.setObject("kept", PropertyDictionary{{"name", std::u16string(u"half \xD83D")}});
        EXPECT_FALSE(folder.kind("c/defaults.plist"));
        EXPECT_TRUE(defaults.synchronize());
    }
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644U);
    UserDefaults again(path);
    EXPECT_FALSE(again.objectForKey("registered"));
    EXPECT_FALSE(again.objectForKey("process"));
    const auto kept = again.objectForKey("kept");
    ASSERT_TRUE(kept && kept->asDictionary() != nullptr);
    EXPECT_EQ(textOrData(kept->asDictionary()->at("name")), u"half \xD83D");
    again.removePersistentDomain();
    EXPECT_TRUE(again.synchronize());
    EXPECT_TRUE(stored(folder).empty());
}

TEST(UserDefaultsFile, TwoProcessesKeepEachOthersChanges) {
    const TemporaryFolder folder;
    const std::string path = folder.path("c/defaults.plist");
    UserDefaults first(path);
    first.setObject("removed", 1);
    first.setObject("both", 1);
    ASSERT_TRUE(first.synchronize());
    UserDefaults second(path);
    int heard = 0;
    const auto handle = first.observe("from second", [&heard] { ++heard; });
    first.setObject("from first", 1);
    second.setObject("from second", 2);
    second.setObject("both", 2);
    second.removeObject("removed");
    ASSERT_TRUE(second.synchronize());
    ASSERT_TRUE(first.synchronize());
    const PropertyDictionary expected{{"both", 2}, {"from first", 1}, {"from second", 2}};
    EXPECT_TRUE(stored(folder) == expected);
    EXPECT_EQ(first.integerForKey("both"), 2);
    EXPECT_FALSE(first.objectForKey("removed"));
    EXPECT_EQ(heard, 1);
    first.removePersistentDomain();
    first.setObject("new", 1);
    ASSERT_TRUE(first.synchronize());
    EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"new", 1}}));
}

TEST(UserDefaultsFile, ADamagedFileIsKeptAside) {
    const std::string damaged[] = {"", "<plist><dict><key>a</key>", "<plist><array/></plist>", "bplist00",
                                   std::string(1000, '\0')};
    const TemporaryFolder folder;
    int number = 0;
    for (const std::string& content : damaged) {
        folder.write("c/defaults.plist", content);
        UserDefaults defaults(folder.path("c/defaults.plist"));
        EXPECT_FALSE(defaults.objectForKey("a"));
        defaults.setObject("new", 1);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"new", 1}}));
        const std::string suffix = ++number == 1 ? "" : fmt::format("-{}", number);
        EXPECT_EQ(folder.read("c/defaults.plist.damaged" + suffix), content);
    }
}

TEST(UserDefaultsFile, ALinkStaysOne) {
    for (const char* content : {"<plist><dict/></plist>", "damaged", ""}) {
        const TemporaryFolder folder;
        (void)folder.makeFolder("dotfiles");
        if (*content)
            folder.write("dotfiles/mine.plist", content);
        (void)folder.makeFolder("c");
        (void)folder.link("c/second", "../dotfiles/mine.plist");
        (void)folder.link("c/defaults.plist", "second");
        UserDefaults defaults(folder.path("c/defaults.plist"));
        defaults.setObject("new", 1);
        EXPECT_TRUE(defaults.synchronize()) << content;
        EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"new", 1}})) << content;
        struct stat status {};
        for (const char* link : {"c/defaults.plist", "c/second"}) {
            ASSERT_EQ(::lstat(folder.path(link).c_str(), &status), 0);
            EXPECT_TRUE(S_ISLNK(status.st_mode)) << link;
        }
        EXPECT_EQ(folder.kind("dotfiles/mine.plist.damaged").has_value(), std::string(content) == "damaged");
    }
}

TEST(UserDefaultsFile, AFileDamagedMeanwhileCostsNothing) {
    const TemporaryFolder folder;
    UserDefaults defaults(folder.path("c/defaults.plist"));
    defaults.setObject("old", 1);
    ASSERT_TRUE(defaults.synchronize());
    folder.write("c/defaults.plist", "damaged");
    defaults.setObject("new", 2);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"new", 2}, {"old", 1}}));
    EXPECT_EQ(folder.read("c/defaults.plist.damaged"), "damaged");
}

TEST(UserDefaultsFile, WhatCannotBeReadOrMovedAsideIsNeverOverwritten) {
    const TemporaryFolder folder;
    for (const auto call : {test::FileCall::read, test::FileCall::rename}) {
        folder.write("c/defaults.plist", "damaged");
        test::FailingFileSystem failing;
        failing.failKind(call, EIO);
        UserDefaults defaults(folder.path("c/defaults.plist"));
        defaults.setObject("new", 1);
        EXPECT_FALSE(defaults.synchronize());
        EXPECT_EQ(folder.read("c/defaults.plist"), "damaged");
        EXPECT_EQ(defaults.integerForKey("new"), 1);
    }
}

/// Whichever call fails, the file is whole, in its old or its new state, and the next attempt succeeds.
TEST(UserDefaultsFile, SurvivesEachFailingCall) {
    for (std::size_t number = 1;; ++number) {
        const TemporaryFolder folder;
        UserDefaults defaults(folder.path("c/defaults.plist"));
        defaults.setObject("k", 1);
        ASSERT_TRUE(defaults.synchronize());
        test::FailingFileSystem failing;
        failing.failCall(number, ENOSPC);
        defaults.setObject("k", 2);
        const bool succeeded = defaults.synchronize();
        EXPECT_EQ(succeeded, failing.failureCount() == 0) << number;
        failing.reset();
        EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"k", succeeded ? 2 : 1}})) << number;
        EXPECT_EQ(defaults.integerForKey("k"), 2);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"k", 2}})) << number;
        if (succeeded) {
            EXPECT_GT(number, 2U);
            break;
        }
    }
}

TEST(UserDefaultsFile, GivesUpWhenAnotherHoldsTheLock) {
    const TemporaryFolder folder;
    UserDefaults defaults(folder.path("c/defaults.plist"), std::chrono::milliseconds(1));
    defaults.setObject("k", 1);
    ASSERT_TRUE(defaults.synchronize());
    const int other = ::open(folder.path("c/defaults.plist.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    defaults.setObject("k", 2);
    EXPECT_FALSE(defaults.synchronize());
    ::close(other);
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_TRUE(stored(folder) == (PropertyDictionary{{"k", 2}}));
}

} // namespace
} // namespace tavrin
