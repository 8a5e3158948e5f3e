#include "documents/MigrationManager.h"

#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/TemporaryFolder.h"
#include "documents/DropletLauncher.h"
#include "documents/PresetsManager.h"
#include "platform/propertylists/PropertyList.h"

#include <gmock/gmock.h>

#include <fstream>
#include <functional>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using Tree = std::map<std::string, std::string>;

class PresetMigrationTest : public CatalogueFixture {
  protected:
    PresetMigrationTest()
        : presets(folder.path("Tavrin 9/Presets"), folder.path("Global"),
                  [this]() -> CompositeRenameAction& { return composite; }) {
        presets.startup();
    }
    std::vector<PresetMigration> migrate() {
        return MigrationManager::migratePresets(presets, folder.path("Tavrin 9"));
    }
    PresetMigration migrate(const std::string& name) {
        return MigrationManager::migratePresetsFolderAt(folder.path(name), presets);
    }
    /// What lies in the user's presets.
    Tree copied() const {
        Tree tree;
        const std::string prefix = "Tavrin 9/Presets/";
        for (const auto& [name, content] : folder.tree())
            if (name.starts_with(prefix) && name != prefix)
                tree.emplace(name.substr(prefix.size()), content);
        return tree;
    }

    TemporaryFolder folder;
    TemporaryFolder sources; ///< for what is not to be read when it is compared
    CompositeRenameAction composite;
    PresetsManager presets;
};

TEST_F(PresetMigrationTest, TakesBothEditionsInOrderAndEveryEntry) {
    EXPECT_TRUE(migrate().empty());
    (void)folder.write("Tavrin 8/Presets/b.tvrn8preset.plist", "B");
    (void)folder.write("Tavrin 8/Presets/Sub/c.tvrn8preset.plist", "C");
    (void)folder.write("Morvane 8/Presets/a.mv8preset.plist", "A");
    (void)folder.write("Morvane 8/Presets/notes \xFF", "N");
    (void)folder.link("Morvane 8/Presets/l", "/etc/passwd");
    const auto results = migrate();
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].folder, folder.path("Morvane 8/"));
    EXPECT_EQ(results[1].folder, folder.path("Tavrin 8/"));
    EXPECT_TRUE(results[0].wasCopied);
    EXPECT_TRUE(results[1].wasCopied);
    EXPECT_EQ(copied(), (Tree{{"a.mv8preset.plist", "A"},
                              {"b.tvrn8preset.plist", "B"},
                              {"Sub/", ""},
                              {"Sub/c.tvrn8preset.plist", "C"},
                              {"notes \xFF", "N"},
                              {"l", "-> /etc/passwd"}}));
    EXPECT_THAT(presets.getPresetTitles(), ElementsAre(u"a", u"b", u"c"));
}

TEST_F(PresetMigrationTest, ASecondRunFailsAndLeavesTheCopiesOfTheFirst) {
    (void)folder.write("Tavrin 8/Presets/a.tvrn8preset.plist", "old");
    EXPECT_TRUE(migrate().at(0).wasCopied);
    (void)folder.write("Tavrin 8/Presets/a.tvrn8preset.plist", "newer");
    (void)folder.write("Tavrin 8/Presets/b.tvrn8preset.plist", "B");
    const PresetMigration second = migrate().at(0);
    EXPECT_FALSE(second.wasCopied);
    EXPECT_EQ(second.failedEntry, "a.tvrn8preset.plist");
    EXPECT_EQ(copied(), (Tree{{"a.tvrn8preset.plist", "old"}})) << "what follows a failure is passed over";
}

TEST_F(PresetMigrationTest, NothingToCopyIsSuccess) {
    (void)folder.makeFolder("Tavrin 8");
    EXPECT_TRUE(migrate().at(0).wasCopied);
    EXPECT_TRUE(migrate("nowhere").wasCopied);
    (void)folder.makeFolder("empty/Presets");
    EXPECT_TRUE(migrate("empty").wasCopied);
    EXPECT_TRUE(copied().empty());
}

TEST_F(PresetMigrationTest, FailedCopiesLeaveNothingBehind) {
    struct Case {
        const char* name;
        std::function<void(const std::string& presetsFolder)> make;
    };
    const std::vector<Case> cases{
        {"a pipe", [](const std::string& at) { ASSERT_EQ(::mkfifo((at + "/p").c_str(), 0600), 0); }},
        {"a pipe in a folder that must not be written in",
         [](const std::string& at) {
             ASSERT_EQ(::mkdir((at + "/sub").c_str(), 0700), 0);
             ASSERT_EQ(::mkdir((at + "/sub/inner").c_str(), 0700), 0);
             ASSERT_EQ(::symlink("x", (at + "/sub/inner/l").c_str()), 0);
             ASSERT_EQ(::mkfifo((at + "/sub/p").c_str(), 0600), 0);
             ASSERT_EQ(::chmod((at + "/sub/inner").c_str(), 0500), 0);
         }},
        {"a sparse file larger than any preset",
         [](const std::string& at) {
             const std::string path = at + "/huge";
             std::ofstream(path).put('x');
             ASSERT_EQ(::truncate(path.c_str(), off_t{1} << 40), 0);
         }},
        {"folders without end",
         [](std::string at) {
             for (int depth = 0; depth < 70; ++depth)
                 ASSERT_EQ(::mkdir((at += "/d").c_str(), 0700), 0);
         }},
    };
    for (const Case& each : cases) {
        const std::string name = std::string("from ") + each.name;
        each.make(sources.makeFolder(name + "/Presets"));
        EXPECT_FALSE(MigrationManager::migratePresetsFolderAt(sources.path(name), presets).wasCopied)
            << each.name;
        EXPECT_TRUE(copied().empty()) << each.name;
    }
}

TEST_F(PresetMigrationTest, AFolderIsNotCopiedIntoItself) {
    (void)folder.write("Tavrin 9/Presets/own.tvrn8preset.plist", "O");
    EXPECT_FALSE(migrate("Tavrin 9").wasCopied);
    PresetsManager below(folder.path("around/Presets/data/Presets"), folder.path("Global"),
                         [this]() -> CompositeRenameAction& { return composite; });
    below.startup();
    const Tree before = folder.tree();
    EXPECT_FALSE(MigrationManager::migratePresetsFolderAt(folder.path("around"), below).wasCopied);
    EXPECT_EQ(folder.tree(), before);
}

// ---- droplets

class DropletMigrationTest : public ::testing::Test {
  protected:
    static PropertyDictionary settings(const std::optional<PropertyValue>& location) {
        PropertyDictionary droplet{{"location key", u"net.calderwick.tvrn8"},
                                   {"temporary settings key", u"droplet settings"}};
        if (location)
            droplet.emplace("default location", *location);
        return {{"Droplet Settings", droplet},
                {"Host Application Settings", PropertyDictionary{{"kept", 7}}}};
    }
    std::string make(const std::string& name, const PropertyValue& root) {
        return makeOf(name, PropertyList::toXml(root));
    }
    std::string makeOf(const std::string& name, const std::string& content) {
        (void)folder.write(name + "/Contents/MacOS/stub", "old");
        (void)folder.write(name + "/Contents/Resources/Icon.icns", "old icon");
        (void)folder.write(name + "/Contents/Resources/Settings.plist", content);
        return folder.path(name);
    }
    const std::string program = "/usr/bin/tavrin";
    TemporaryFolder folder;
};

TEST_F(DropletMigrationTest, PointsADropletOfEitherEditionAtThisVersion) {
    int count = 0;
    for (const char16_t* location :
         {u"/Applications/Tavrin 8.app", u"/Applications/Morvane 8.app", u"/opt/Tavrin/x"}) {
        const std::string bundle =
            make("drop " + std::to_string(++count) + ".app", settings(PropertyValue(location)));
        ASSERT_TRUE(MigrationManager::migrateDroplet(bundle, program));
        const auto list = PropertyList::read(bundle + "/Contents/Resources/Settings.plist");
        EXPECT_EQ(
            std::get<PropertyValue>(list),
            PropertyValue(PropertyDictionary{
                {"Droplet Settings", PropertyDictionary{{"default location", u"/Applications/Tavrin 9.app"},
                                                        {"location key", u"net.calderwick.tvrn9"},
                                                        {"temporary settings key", u"droplet settings"}}},
                {"Host Application Settings", PropertyDictionary{{"kept", 7}}}}));
        EXPECT_EQ(folder.read("drop " + std::to_string(count) + ".app/Contents/MacOS/stub"), "old");
        EXPECT_FALSE(folder.kind("drop " + std::to_string(count) + ".app/Contents/Resources/Icon.icns"));
        EXPECT_TRUE(folder.read("drop " + std::to_string(count) + ".app/Contents/Resources/Icon.png")
                        .starts_with("\x89PNG"));
        const auto launched =
            DropletLauncher::bundleOf(folder.path("drop " + std::to_string(count) + ".desktop"));
        EXPECT_TRUE(launched && launched->path() == bundle);
        EXPECT_TRUE(MigrationManager::migrateDroplet(bundle, program)) << "again";
    }
}

TEST_F(DropletMigrationTest, WhatIsNoDropletStaysAsItIs) {
    (void)make("other program.app", settings(PropertyValue(u"/Applications/Notes.app")));
    (void)make("no location.app", settings(std::nullopt));
    (void)make("a number.app", settings(PropertyValue(8)));
    (void)make("no droplet settings.app", PropertyDictionary{{"Host Application Settings", 1}});
    (void)make("wrong kind.app", PropertyDictionary{{"Droplet Settings", PropertyArray{}}});
    (void)make("no dictionary.app", PropertyArray{});
    (void)makeOf("no list.app", "hello");
    const std::string good = PropertyList::toXml(settings(PropertyValue(u"/Applications/Tavrin 8.app")));
    (void)makeOf("no icon.app", good);
    folder.remove("no icon.app/Contents/Resources/Icon.icns");
    (void)makeOf("no settings.app", good);
    folder.remove("no settings.app/Contents/Resources/Settings.plist");
    (void)folder.write("elsewhere/Settings.plist", good);
    (void)folder.write("elsewhere/Icon.icns");
    (void)folder.makeFolder("linked folder.app/Contents");
    (void)folder.link("linked folder.app/Contents/Resources", folder.path("elsewhere"));
    (void)folder.write("linked file.app/Contents/Resources/Icon.icns");
    (void)folder.link("linked file.app/Contents/Resources/Settings.plist",
                      folder.path("elsewhere/Settings.plist"));
    (void)folder.write("a file.app");
    (void)makeOf("foreign launcher.app", good);
    (void)folder.write("foreign launcher.desktop", "[Desktop Entry]\nName=Mine\n");
    const Tree before = folder.tree();
    for (const auto& [name, content] : before) {
        const bool isGiven = name.ends_with(".app/") || name == "a file.app";
        EXPECT_FALSE(isGiven && MigrationManager::migrateDroplet(folder.path(name), program)) << name;
    }
    EXPECT_FALSE(MigrationManager::migrateDroplet(folder.path("nowhere.app"), program));
    EXPECT_EQ(folder.tree(), before);
}

} // namespace
} // namespace tavrin::test
