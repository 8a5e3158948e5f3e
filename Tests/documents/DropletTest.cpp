#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/Recipes.h"
#include "documents/DropletBundle.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletHandOver.h"
#include "documents/DropletLauncher.h"
#include "documents/DropletScript.h"
#include "documents/MigrationManager.h"
#include "documents/PresetsManager.h"
#include "platform/processes/ChildProcess.h"

namespace tavrin::test {
namespace {

PropertyDictionary settingsWith(const char* action) {
    return dropletList(chain({{action, {{"string", u"X"}}}}), {{"silentDroplet", 1}});
}

class DropletTest : public CatalogueFixture {
  protected:
    static constexpr const char* settingsFile = "A.app/Contents/Resources/Settings.plist";

    void writeRaw(const std::string& content) const { (void)folder.write(settingsFile, content); }
    void writeSettings(const char* action = "Add to end") const {
        writeRaw(PropertyList::toXml(settingsWith(action)));
    }
    DropletBundle droplet() const { return DropletBundle(folder.path("A.app/")); }
    void removeDroplet() const {
        std::filesystem::remove_all(folder.path("A.app"));
        std::filesystem::remove_all(folder.path("A.desktop"));
    }
    static std::filesystem::perms permissions(const std::string& path) {
        return std::filesystem::status(path).permissions();
    }

    TemporaryFolder folder;
};

TEST_F(DropletTest, TakesItsNamesFromItsPath) {
    const std::pair<const char*, std::string> cases[] = {
        {"/d/x", "/d/x"},       {"/d/x.y", "/d/x"}, {"/d/x.app", "/d/x"}, {"/d.e/x", "/d.e/x"},
        {"/d/a.b.c", "/d/a.b"}, {"/d/.x", "/d/.x"}, {"/x", "/x"}};
    for (const auto& [chosen, path] : cases) {
        const DropletBundle bundle = DropletBundle::forChosenPath(chosen);
        EXPECT_EQ(bundle.path(), path + ".app");
        EXPECT_EQ(bundle.name(), path.substr(path.rfind('/') + 1));
        EXPECT_EQ(bundle.launcherPath(), path + ".desktop");
        EXPECT_EQ(DropletBundle::ofSettings(bundle.settingsPath()).value().path(), bundle.path());
    }
    for (const char* path :
         {"", "/Contents/Resources/Settings.plist", "/d/x/Contents/Resources/Settings.plist",
          "d/x.app/Contents/Resources/Settings.plist", "/d/x.app/Settings.plist", "/etc/a/b/c"})
        EXPECT_FALSE(DropletBundle::ofSettings(path)) << path;
}

TEST_F(DropletTest, RefusesSettingsThatAreNoGoodOrLieOutside) {
    const std::string good = PropertyList::toXml(settingsWith("Add to end"));
    (void)folder.write("outside/Resources/Settings.plist", good);
    const char* const foreign = "it is not a file of the droplet itself";
    const char* const damaged = "Settings.plist: ";
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"No such file", [] {}},
        {"no action \"Fly\"", [&] { writeSettings("Fly"); }},
        {"there is no \"Host Application Settings\"", [&] { writeRaw(PropertyList::toXml(chain({}))); }},
        {damaged, [&] { writeRaw(good.substr(0, good.size() / 2)); }},
        {damaged, [&] { writeRaw("<plist><array/></plist>"); }},
        {foreign, [&] { (void)folder.link(settingsFile, folder.path("outside/Resources/Settings.plist")); }},
        {foreign, [&] { (void)folder.link("A.app/Contents", folder.path("outside")); }},
        {foreign,
         [&] {
             ::mkfifo((folder.makeFolder("A.app/Contents/Resources") + "/Settings.plist").c_str(), 0600);
         }},
        {foreign, [&] { (void)folder.makeFolder(settingsFile); }},
        {"larger than 64 MiB", [&] { writeRaw(std::string(std::size_t{65} << 20, ' ')); }}};
    for (const auto& [message, make] : cases) {
        removeDroplet();
        make();
        const std::string error = std::get<RecipeError>(droplet().readRecipe()).message;
        EXPECT_THAT(error, HasSubstr(message));
        EXPECT_EQ(droplet().isDroplet(), error.ends_with("\"Fly\""));
    }
    removeDroplet();
    writeSettings();
    EXPECT_TRUE(droplet().isDroplet());
    EXPECT_FALSE(DropletBundle(folder.link("B.app", droplet().path())).isDroplet());
}

TEST_F(DropletTest, IsNeverRemovedWithSomethingForeignInIt) {
    for (const auto& [file, isOwn] : {std::pair{"photo.jpg", false},
                                      {"Contents/photo.jpg", false},
                                      {"Contents/Resources/photo.jpg", false},
                                      {"Contents/Resources/Icon.png", true},
                                      {"Contents/MacOS/droplet", true},
                                      {".directory", true}}) {
        writeSettings();
        (void)folder.write(std::string("A.app/") + file);
        EXPECT_EQ(droplet().remove(), isOwn) << file;
        EXPECT_EQ(droplet().isFolder(), !isOwn) << file;
        removeDroplet();
    }
    // What only looks like a bundle stays as well.
    (void)folder.write("A.app/Contents/Info.plist");
    EXPECT_FALSE(droplet().remove());
    EXPECT_TRUE(droplet().isFolder());
}

TEST_F(DropletTest, TheLauncherQuotesEveryName) {
    const auto textFor = [](const char* bundle) {
        return DropletLauncher(DropletBundle(bundle), "/usr/bin/tavrin").text();
    };
    std::string text = textFor("/d/\xC3\xA4 \"$HOME\" 50%k `x\\y`\n\t.app");
    EXPECT_THAT(text, HasSubstr("\nExec=\"/usr/bin/tavrin\" --droplet "
                                "\"/d/\xC3\xA4 \\\\\"\\\\$HOME\\\\\" 50%%k \\\\`x\\\\\\\\y\\\\`\\n\\t.app\" "
                                "--launcher=%k %F\n"));
    EXPECT_THAT(text, HasSubstr("\nX-Tavrin-Droplet=/d/\xC3\xA4 \"$HOME\" 50%k `x\\\\y`\\n\\t.app\n"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 11) << text;
    text = textFor("/d/caf\xE9.app");
    EXPECT_THAT(text, HasSubstr("\nName=caf\xEF\xBF\xBD\n"));
    EXPECT_THAT(text, HasSubstr("\nExec=\"/usr/bin/tavrin\" --launcher=%k %F\n"));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("\xE9")));
}

TEST_F(DropletTest, TheLauncherReplacesOnlyItsLikeAndFindsItsBundle) {
    writeSettings();
    const DropletLauncher launcher(droplet(), "/usr/bin/tavrin");
    const std::string path = folder.path("A.desktop");
    EXPECT_EQ(launcher.write(), std::nullopt);
    EXPECT_EQ(permissions(path), std::filesystem::perms(0755));

    // Moved together under another name, the bundle beside it counts; alone, there is none.
    const std::string elsewhere = folder.makeFolder("elsewhere");
    std::filesystem::rename(droplet().path(), elsewhere + "/B.app");
    std::filesystem::rename(path, elsewhere + "/B.desktop");
    EXPECT_EQ(DropletLauncher::bundleOf(elsewhere + "/B.desktop")->path(), elsewhere + "/B.app");
    std::filesystem::remove_all(elsewhere + "/B.app");
    EXPECT_FALSE(DropletLauncher::bundleOf(elsewhere + "/B.desktop"));

    (void)folder.link("A.desktop", folder.write("target", launcher.text()));
    EXPECT_THAT(launcher.write().value_or(""), HasSubstr("there is another file in the launcher's place"));
    EXPECT_EQ(folder.kind("A.desktop"), FileStatus::Kind::link);
    EXPECT_FALSE(DropletLauncher::bundleOf(folder.path("nowhere")));
}

TEST_F(DropletTest, ARequestFindsItsDropletAndSortsItsFilesOut) {
    writeSettings();
    const std::string launcher = folder.path("A.desktop");
    const std::string nowhere = folder.path("Gone.app");
    const std::string there = folder.write("caf\xE9 50%\n.txt");
    const std::string gone = folder.path("caf\xEF\xBF\xBD.txt");
    for (const DropletRequest& request : {DropletRequest{droplet().path(), "", {there, gone}},
                                          {nowhere, launcher, {there, gone}},
                                          {"", launcher, {there, gone}}}) {
        const auto start = std::get<DropletRequest::Start>(request.start());
        EXPECT_EQ(start.missingFiles, std::vector<std::string>{gone});
        EXPECT_TRUE(start.isSilent);
        UserDefaults own;
        own.setProcessObject(DropletHandOver::recordKey, start.record);
        const auto handOver = std::get<DropletHandOver>(DropletHandOver::read(own));
        EXPECT_EQ(handOver.fileList, std::vector<std::string>{there});
        EXPECT_EQ(handOver.settingsPath, folder.path(settingsFile));
        EXPECT_TRUE(handOver.hasVersion && handOver.compositeAction && handOver.globalSettings);
    }
    const std::pair<DropletRequest, const char*> refused[] = {
        {{droplet().path(), "", {gone}}, "are not there"}, // must not open the droplet for editing
        {{nowhere, "", {there}}, "The droplet is gone."},
        {{"", "", {}}, "The droplet is gone."},
        {{folder.path("Bad.app"), "", {there}}, "no action \"Fly\""}};
    (void)folder.write("Bad.app/Contents/Resources/Settings.plist", PropertyList::toXml(settingsWith("Fly")));
    for (const auto& [request, reason] : refused)
        EXPECT_THAT(std::get<DropletRequest::Failure>(request.start()).message, HasSubstr(reason));
}

class DropletWriting : public DropletTest {
  protected:
    std::optional<std::string> write(const PropertyDictionary& settings = settingsWith("Add to end")) const {
        return writer.writeDropletWithDictionary(settings, droplet().path());
    }
    void expectWhole(const char* action) const {
        EXPECT_EQ(std::get<PropertyDictionary>(droplet().readSettings()), settingsWith(action));
        EXPECT_TRUE(droplet().holdsOnlyItsOwn());
        EXPECT_FALSE(folder.read("A.app/Contents/Resources/Icon.png").empty());
        EXPECT_EQ(permissions(droplet().path()) & std::filesystem::perms(0700), std::filesystem::perms(0700));
        auto tree = folder.tree();
        std::erase_if(tree, [](const auto& entry) { return entry.first.starts_with("data"); });
        EXPECT_THAT(tree, ::testing::SizeIs(7)); // nothing is left beside it
    }

    Variable data{"XDG_DATA_HOME", folder.path("data").c_str()};
    DropletBundleWriter writer{"/usr/bin/tavrin", false};
};

TEST_F(DropletWriting, WritesAWholeDropletReplacesItAndBringsAnOldOneToThePresentForm) {
    for (const char* action : {"Add to end", "Remove text"}) {
        ASSERT_EQ(write(settingsWith(action)), std::nullopt);
        expectWhole(action);
        EXPECT_EQ(DropletLauncher::bundleOf(folder.path("A.desktop"))->path(), droplet().path());
    }
    (void)folder.write("A.app/Contents/MacOS/droplet", "old stub");
    (void)folder.write("A.app/Contents/Info.plist", "old");
    EXPECT_EQ(writer.upgrade(settingsWith("Add to end"), droplet()), std::nullopt);
    expectWhole("Add to end");
    EXPECT_FALSE(folder.kind("A.app/Contents/MacOS/droplet"));

    // Whatever it fails for, the old one stays: here lists that are written no deeper than they are read.
    const auto before = folder.tree();
    PropertyDictionary unwritable = settingsWith("Add to end");
    PropertyValue deep = PropertyArray();
    for (int i = 0; i < 200; ++i)
        deep = PropertyArray{deep};
    unwritable.emplace("deep", std::move(deep));
    EXPECT_TRUE(write(unwritable).has_value());
    EXPECT_EQ(folder.tree(), before);
}

TEST_F(DropletWriting, ReplacesNothingThatIsNoDropletOfItsOwn) {
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"folder", [&] { (void)folder.write("A.app/photo.jpg", "photo"); }},
        {"empty folder", [&] { (void)folder.makeFolder("A.app"); }},
        {"file", [&] { (void)folder.write("A.app", "photo"); }},
        {"link", [&] { (void)folder.link("A.app", folder.path("nowhere")); }},
        {"another application", [&] { (void)folder.write("A.app/Contents/Info.plist", "x"); }},
        {"launcher", [&] { (void)folder.write("A.desktop", "[Desktop Entry]\nName=Mine\n"); }},
        {"with a file in it", [&] {
             writeSettings();
             (void)folder.write("A.app/photo.jpg", "photo");
         }}};
    for (const auto& [what, make] : cases) {
        removeDroplet();
        make();
        const auto before = folder.tree();
        EXPECT_TRUE(write().has_value()) << what;
        EXPECT_EQ(folder.tree(), before) << what;
    }
    const auto before = folder.tree();
    EXPECT_TRUE(writer.upgrade(settingsWith("Add to end"), droplet()).has_value());
    EXPECT_TRUE(writer.writeDropletWithDictionary({}, folder.path("nowhere/A.app")).has_value());
    EXPECT_EQ(folder.tree(), before);
}

TEST_F(DropletWriting, TheScriptComesWithTheDropletAndGoesAfterIt) {
    const auto names = [] {
        std::set<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(DropletScript::folder()))
            result.insert(entry.path().filename());
        return result;
    };
    (void)folder.write("data/nautilus/scripts/A", "mine");
    (void)folder.write("data/nautilus/scripts/B", "#!/bin/sh\n# X-Tavrin-Droplet=zz\nmine");
    const DropletBundle other(folder.makeFolder("it's %1 \"x\".app"));
    DropletScript(droplet(), "/usr/bin/tavrin").write();
    (void)folder.makeFolder("A.app");
    DropletScript(droplet(), "/usr/bin/tavrin").write();
    DropletScript(other, "/usr/bin/tavrin").write();
    EXPECT_THAT(names(), ::testing::ElementsAre("A", "A 2", "B", "it's %1 \"x\""));
    EXPECT_EQ(permissions(DropletScript::folder() + "/A 2"), std::filesystem::perms(0755));
    DropletScript::removeOrphans();
    EXPECT_EQ(names().size(), 4U);
    folder.remove("A.app");
    std::filesystem::remove_all(other.path());
    DropletScript::removeOrphans();
    EXPECT_THAT(names(), ::testing::ElementsAre("A", "B"));
    EXPECT_EQ(folder.read("data/nautilus/scripts/A"), "mine");
}

TEST_F(DropletWriting, TheScriptPassesEveryPathWhole) {
    const std::string program =
        folder.write("it's a program", "#!/bin/sh\nprintf '%s|' \"$@\" > \"$OUTPUT\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const DropletBundle bundle("/d/$(x) `y` 'z' \"%\\.app");
    const std::string script = folder.write("script", DropletScript(bundle, program).text());
    // The names, the paths as the file manager tells them, and what is passed.
    const std::tuple<std::vector<std::string>, const char*, std::string> cases[] = {
        {{"a b", "*"}, "/p/a b\n/p/*\n", "/p/a b|/p/*|"},
        {{"caf\xE9", "$x'"}, "/p/caf\xE9\n/p/$x'\n", "/p/caf\xE9|/p/$x'|"},
        {{"two\n/lines", "b"}, "/p/two\n/lines\n/p/b\n", "two\n/lines|b|"},
        {{}, "", ""}};
    for (const auto& [names, paths, passed] : cases) {
        std::vector<std::string> command{"/bin/sh", script};
        command.insert(command.end(), names.begin(), names.end());
        folder.write("output");
        EXPECT_TRUE(ChildProcess::run({.arguments = command,
                                       .environment = {{"OUTPUT", folder.path("output")},
                                                       {"NAUTILUS_SCRIPT_SELECTED_FILE_PATHS", paths}}})
                        .succeeded());
        EXPECT_EQ(folder.read("output"),
                  passed.empty() ? "" : "--droplet|" + bundle.path() + "|--|" + passed);
    }
}

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
