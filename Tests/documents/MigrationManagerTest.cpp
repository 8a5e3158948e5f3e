#include "documents/MigrationManager.h"

#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/Recipes.h"
#include "documents/DropletLauncher.h"
#include "documents/PresetsManager.h"

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using Tree = std::map<std::string, std::string>;

class PresetMigrationTest : public CatalogueFixture {
  protected:
    PresetMigrationTest() { presets.startup(); }
    bool migrates(const std::string& name) {
        return MigrationManager::migratePresetsFolderAt(folder.path(name), presets).wasCopied;
    }

    TemporaryFolder folder;
    TemporaryFolder own;
    CompositeRenameAction composite;
    PresetsManager presets{own.path("Presets"), own.path("Global"),
                           [this]() -> CompositeRenameAction& { return composite; }};
};

TEST_F(PresetMigrationTest, TakesBothEditionsInOrderAndEveryEntryOnce) {
    const auto migrate = [this] {
        return MigrationManager::migratePresets(presets, folder.path("Tavrin 9"));
    };
    EXPECT_TRUE(migrate().empty());
    (void)folder.write("Tavrin 8/Presets/b.tvrn8preset.plist", "B");
    (void)folder.write("Tavrin 8/Presets/Sub/c.tvrn8preset.plist", "C");
    (void)folder.write("Morvane 8/Presets/a.mv8preset.plist", "A");
    (void)folder.write("Morvane 8/Presets/notes \xFF", "N");
    (void)folder.link("Morvane 8/Presets/l", "/etc/passwd");
    auto results = migrate();
    ASSERT_EQ(results.size(), 2u);
    EXPECT_TRUE(results[0].wasCopied && results[1].wasCopied);
    const Tree copied{{"Global/", ""},
                      {"Presets/", ""},
                      {"Presets/a.mv8preset.plist", "A"},
                      {"Presets/b.tvrn8preset.plist", "B"},
                      {"Presets/Sub/", ""},
                      {"Presets/Sub/c.tvrn8preset.plist", "C"},
                      {"Presets/notes \xFF", "N"},
                      {"Presets/l", "-> /etc/passwd"}};
    EXPECT_EQ(own.tree(), copied);
    EXPECT_THAT(presets.getPresetTitles(), ElementsAre(u"a", u"b", u"c"));

    // A second time fails, leaves the copies of the first, and passes over what follows a failure.
    (void)folder.write("Morvane 8/Presets/a.mv8preset.plist", "newer");
    (void)folder.write("Morvane 8/Presets/b.mv8preset.plist", "B");
    results = migrate();
    EXPECT_FALSE(results[0].wasCopied);
    EXPECT_EQ(results[0].failedEntry, "a.mv8preset.plist");
    EXPECT_EQ(own.tree(), copied);
}

TEST_F(PresetMigrationTest, CopiesAllOrNothing) {
    const Tree before = own.tree();
    const std::pair<std::string, std::function<void(std::string)>> cases[] = {
        {"a pipe", [](const std::string& at) { ASSERT_EQ(::mkfifo((at + "/p").c_str(), 0600), 0); }},
        {"a pipe in a folder that must not be written in",
         [this](const std::string& at) {
             (void)folder.link("a pipe in a folder that must not be written in/Presets/sub/inner/l", "x");
             ASSERT_EQ(::mkfifo((at + "/sub/p").c_str(), 0600), 0);
             ASSERT_EQ(::chmod((at + "/sub/inner").c_str(), 0500), 0);
         }},
        {"a sparse file larger than any preset",
         [](const std::string& at) {
             std::ofstream(at + "/huge").put('x');
             std::filesystem::resize_file(at + "/huge", std::uintmax_t{1} << 40);
         }},
    };
    for (const auto& [name, make] : cases) {
        make(folder.makeFolder(name + "/Presets"));
        EXPECT_FALSE(migrates(name)) << name;
        EXPECT_EQ(own.tree(), before) << name;
    }
    // Nothing to copy is success.
    (void)folder.makeFolder("empty/Presets");
    EXPECT_TRUE(migrates("empty") && migrates("nowhere"));
    EXPECT_EQ(own.tree(), before);
}

class DropletMigrationTest : public ::testing::Test {
  protected:
    static PropertyDictionary settings(const char16_t* location, const char16_t* key) {
        PropertyDictionary list = dropletList({}, {{"kept", 7}});
        list.insert_or_assign("Droplet Settings",
                              PropertyDictionary{{"location key", key}, {"default location", location}});
        return list;
    }
    std::string make(const std::string& name, const std::string& content) {
        (void)folder.write(name + "/Contents/MacOS/stub", "old");
        (void)folder.write(name + "/Contents/Resources/Icon.icns", "old icon");
        (void)folder.write(name + "/Contents/Resources/Settings.plist", content);
        return folder.path(name);
    }
    const std::string program = "/usr/bin/tavrin";
    TemporaryFolder folder;
};

TEST_F(DropletMigrationTest, PointsADropletOfEitherEditionAtThisVersion) {
    std::string name = "drop 0";
    for (const char16_t* location :
         {u"/Applications/Tavrin 8.app", u"/Applications/Morvane 8.app", u"/opt/Tavrin/x"}) {
        ++name.back();
        const std::string bundle =
            make(name + ".app", PropertyList::toXml(settings(location, u"net.calderwick.tvrn8")));
        ASSERT_TRUE(MigrationManager::migrateDroplet(bundle, program));
        const auto list = PropertyList::read(bundle + "/Contents/Resources/Settings.plist");
        EXPECT_EQ(std::get<PropertyValue>(list),
                  PropertyValue(settings(u"/Applications/Tavrin 9.app", u"net.calderwick.tvrn9")));
        EXPECT_EQ(folder.read(name + ".app/Contents/MacOS/stub"), "old");
        EXPECT_FALSE(folder.kind(name + ".app/Contents/Resources/Icon.icns"));
        EXPECT_TRUE(folder.read(name + ".app/Contents/Resources/Icon.png").starts_with("\x89PNG"));
        EXPECT_EQ(DropletLauncher::bundleOf(folder.path(name + ".desktop")).value().path(), bundle);
        EXPECT_TRUE(MigrationManager::migrateDroplet(bundle, program)) << "again";
    }
}

TEST_F(DropletMigrationTest, WhatIsNoDropletStaysAsItIs) {
    const auto location = [](const char* entry) {
        return std::string("<plist><dict><key>Droplet Settings</key><dict>") + entry +
               "</dict></dict></plist>";
    };
    const std::string good = PropertyList::toXml(settings(u"/Applications/Tavrin 8.app", u""));
    const std::pair<const char*, std::string> contents[] = {
        {"other program", location("<key>default location</key><string>/Applications/Notes.app</string>")},
        {"no location", location("")},
        {"a number", location("<key>default location</key><integer>8</integer>")},
        {"no droplet settings", "<plist><dict><key>x</key><dict/></dict></plist>"},
        {"wrong kind", "<plist><dict><key>Droplet Settings</key><array/></dict></plist>"},
        {"no dictionary", "<plist><array/></plist>"},
        {"no list", "hello"},
        {"no icon", good},
        {"foreign launcher", good}};
    for (const auto& [name, content] : contents)
        (void)make(std::string(name) + ".app", content);
    folder.remove("no icon.app/Contents/Resources/Icon.icns");
    (void)folder.write("no settings.app/Contents/Resources/Icon.icns");
    (void)folder.write("elsewhere/Settings.plist", good);
    (void)folder.write("elsewhere/Icon.icns");
    (void)folder.makeFolder("linked folder.app/Contents");
    (void)folder.link("linked folder.app/Contents/Resources", folder.path("elsewhere"));
    (void)folder.write("linked file.app/Contents/Resources/Icon.icns");
    (void)folder.link("linked file.app/Contents/Resources/Settings.plist",
                      folder.path("elsewhere/Settings.plist"));
    (void)folder.write("a file.app");
    (void)folder.write("foreign launcher.desktop", "[Desktop Entry]\nName=Mine\n");
    const Tree before = folder.tree();
    for (const auto& [name, content] : before) {
        const bool isGiven = name.ends_with(".app/") || name == "a file.app";
        EXPECT_FALSE(isGiven && MigrationManager::migrateDroplet(folder.path(name), program)) << name;
    }
    EXPECT_EQ(folder.tree(), before);
}

} // namespace
} // namespace tavrin::test
