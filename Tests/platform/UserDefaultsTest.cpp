#include "platform/propertylists/UserDefaults.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "platform/files/Descriptor.h"
#include "platform/propertylists/PropertyList.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <thread>

namespace tavrin {
namespace {

using test::TemporaryFolder;

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
    defaults.setObject("other", false);
    EXPECT_FALSE(defaults.boolForKey("other"));
    defaults.removeObject("other");
    EXPECT_TRUE(defaults.boolForKey("other"));
    EXPECT_TRUE(defaults.synchronize());
    defaults.setObject("text", u" 42.5 apples");
    EXPECT_EQ(defaults.integerForKey("text"), 42);
    EXPECT_DOUBLE_EQ(defaults.floatForKey("text"), 42.5);
    defaults.removePersistentDomain();
    EXPECT_EQ(defaults.integerForKey("k"), 3);
    EXPECT_FALSE(defaults.objectForKey("text"));
}

TEST(UserDefaults, ObserversHearOfTheirKeyUntilTheyEnd) {
    UserDefaults defaults;
    std::string heard;
    auto handle = defaults.observe("k", [&] { heard += std::to_string(defaults.integerForKey("k")); });
    std::shared_ptr<void> brief = defaults.observe("k", [&] {
        heard += "b";
        brief.reset(); // an observer may end itself
    });
    defaults.setObject("other", 1);
    defaults.setObject("k", 1);
    defaults.setProcessObject("k", 2);
    defaults.registerDefaults({{"k", 5}});
    defaults.removePersistentDomain();
    EXPECT_EQ(heard, "1b222");
    handle.reset();
    defaults.setObject("k", 3);
    EXPECT_EQ(heard, "1b222");
}

TEST(UserDefaults, CanBeUsedFromManyThreads) {
    UserDefaults defaults;
    std::atomic<int> calls = 0;
    std::vector<std::jthread> threads;
    for (const char* own : {"a", "b", "c", "d"})
        threads.emplace_back([&defaults, &calls, own] {
            for (int i = 0; i < 200; ++i) {
                const auto handle = defaults.observe("shared", [&calls] { ++calls; });
                defaults.setObject("shared", i);
                defaults.setObject(own, i);
                EXPECT_EQ(defaults.integerForKey(own), i);
            }
        });
    threads.clear(); // which waits for them
    EXPECT_GE(calls, 800);
}

class UserDefaultsFile : public testing::Test {
  protected:
    /// Whether the file holds these values and no others.
    void expectStored(const PropertyDictionary& values) const {
        const auto result = PropertyList::read(path);
        const auto* value = std::get_if<PropertyValue>(&result);
        ASSERT_TRUE(value) << std::get<PropertyListError>(result).message;
        EXPECT_TRUE(*value == PropertyValue(values)) << description(*value);
    }

    TemporaryFolder folder;
    const std::string path = folder.path("c/defaults.plist");
};

TEST_F(UserDefaultsFile, KeepsThePersistentLayerAlone) {
    {
        UserDefaults defaults(path);
        defaults.registerDefaults({{"registered", 1}});
        defaults.setProcessObject("process", 1);
        defaults.setObject("kept", PropertyDictionary{{"name", std::u16string(u"half \xD83D")}});
        EXPECT_FALSE(folder.kind("c/defaults.plist"));
        EXPECT_TRUE(defaults.synchronize());
    }
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0644));
    UserDefaults again(path);
    EXPECT_FALSE(again.objectForKey("registered"));
    EXPECT_FALSE(again.objectForKey("process"));
    const auto kept = again.objectForKey("kept");
    ASSERT_TRUE(kept && kept->asDictionary() != nullptr);
    EXPECT_EQ(textOrData(kept->asDictionary()->at("name")), u"half \xD83D");
    again.removePersistentDomain();
    EXPECT_TRUE(again.synchronize());
    expectStored({});
}

TEST_F(UserDefaultsFile, TwoProcessesKeepEachOthersChanges) {
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
    expectStored({{"both", 2}, {"from first", 1}, {"from second", 2}});
    EXPECT_EQ(first.integerForKey("both"), 2);
    EXPECT_FALSE(first.objectForKey("removed"));
    EXPECT_EQ(heard, 1);
    first.removePersistentDomain();
    first.setObject("new", 1);
    ASSERT_TRUE(first.synchronize());
    expectStored({{"new", 1}});
}

TEST_F(UserDefaultsFile, ADamagedFileIsKeptAsideAndLinksStay) {
    folder.makeFolder("dotfiles");
    folder.link("c/second", "../dotfiles/mine.plist");
    folder.link("c/defaults.plist", "second");
    const auto expectStoring = [this](int number) {
        UserDefaults defaults(path);
        defaults.setObject("new", number);
        EXPECT_TRUE(defaults.synchronize());
        expectStored({{"new", number}});
    };
    expectStoring(0);
    auto expected = folder.tree();
    int number = 0;
    for (const std::string& content :
         std::initializer_list<std::string>{"", "<plist><dict><key>a</key>", "<plist><array/></plist>",
                                            "bplist00", std::string(1000, '\0')}) {
        folder.write("dotfiles/mine.plist", content);
        expectStoring(++number);
        expected[number == 1 ? "dotfiles/mine.plist.damaged"
                             : "dotfiles/mine.plist.damaged-" + std::to_string(number)] = content;
    }
    expectStoring(0);
    EXPECT_EQ(folder.tree(), expected);
}

TEST_F(UserDefaultsFile, AFileDamagedMeanwhileCostsNothing) {
    UserDefaults defaults(path);
    defaults.setObject("old", 1);
    ASSERT_TRUE(defaults.synchronize());
    folder.write("c/defaults.plist", "damaged");
    defaults.setObject("new", 2);
    EXPECT_TRUE(defaults.synchronize());
    expectStored({{"new", 2}, {"old", 1}});
    EXPECT_EQ(folder.read("c/defaults.plist.damaged"), "damaged");
}

TEST_F(UserDefaultsFile, WhatCannotBeReadOrMovedAsideIsNeverOverwritten) {
    folder.write("c/defaults.plist", "damaged");
    for (const auto call : {test::FileCall::read, test::FileCall::rename}) {
        test::FailingFileSystem failing;
        failing.failKind(call, EIO);
        UserDefaults defaults(path);
        defaults.setObject("new", 1);
        EXPECT_FALSE(defaults.synchronize());
        EXPECT_EQ(folder.read("c/defaults.plist"), "damaged");
        EXPECT_EQ(defaults.integerForKey("new"), 1);
    }
}

/// Whichever call fails, the file is whole, in its old or its new state, and the next attempt succeeds.
TEST_F(UserDefaultsFile, SurvivesEachFailingCall) {
    bool succeeded = false;
    for (std::size_t number = 1; !succeeded; ++number) {
        UserDefaults defaults(path);
        defaults.setObject("k", 1);
        ASSERT_TRUE(defaults.synchronize());
        test::FailingFileSystem failing;
        failing.failCall(number, ENOSPC);
        defaults.setObject("k", 2);
        succeeded = defaults.synchronize();
        EXPECT_EQ(succeeded, failing.failureCount() == 0) << number;
        EXPECT_TRUE(number > 2 || !succeeded);
        failing.reset();
        expectStored({{"k", succeeded ? 2 : 1}});
        EXPECT_EQ(defaults.integerForKey("k"), 2);
        EXPECT_TRUE(defaults.synchronize());
        expectStored({{"k", 2}});
    }
}

TEST_F(UserDefaultsFile, GivesUpWhenAnotherHoldsTheLock) {
    UserDefaults defaults(path, std::chrono::milliseconds(1));
    defaults.setObject("k", 1);
    ASSERT_TRUE(defaults.synchronize());
    Descriptor other(::open((path + ".lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
    defaults.setObject("k", 2);
    EXPECT_FALSE(defaults.synchronize());
    other.reset();
    EXPECT_TRUE(defaults.synchronize());
    expectStored({{"k", 2}});
}

} // namespace
} // namespace tavrin
