#include "actions/CatalogueFixture.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "documents/DropletBundle.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletHandOver.h"
#include "documents/DropletLauncher.h"
#include "documents/DropletScript.h"
#include "platform/processes/ChildProcess.h"
#include "platform/propertylists/PropertyList.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <map>
#include <sys/stat.h>

namespace tavrin::test {
namespace {

using ::testing::HasSubstr;

PropertyDictionary settingsWith(const char16_t* action) {
    PropertyDictionary chain{
        {"composite actions array",
         PropertyArray{PropertyDictionary{{"action name", action},
                                          {"action parameter list", PropertyDictionary{{"string", u"X"}}}}}}};
    return {{"Droplet Settings", PropertyDictionary{{"location key", u"net.calderwick.tvrn9"}}},
            {"Host Application Settings",
             PropertyDictionary{{"composite action", std::move(chain)},
                                {"global settings", PropertyDictionary{{"silentDroplet", 1}}}}}};
}

class DropletTest : public CatalogueFixture {
  protected:
    static constexpr const char* settingsFile = "A.app/Contents/Resources/Settings.plist";

    void writeSettings(const PropertyValue& root) const { writeRaw(PropertyList::toXml(root)); }
    void writeRaw(const std::string& content) const { (void)folder.write(settingsFile, content); }
    std::string errorOfReading() const {
        const auto result = droplet().readRecipe();
        const auto* error = std::get_if<RecipeError>(&result);
        return error ? error->message : "no error";
    }
    DropletBundle droplet() const { return DropletBundle(folder.path("A.app/")); }

    TemporaryFolder folder;
};

TEST_F(DropletTest, TakesItsNamesFromItsPath) {
    struct Case {
        const char* chosen;
        const char* bundle;
        const char* name;
        const char* launcher;
    };
    for (const Case& c : {Case{"/d/x", "/d/x.app", "x", "/d/x.desktop"},
                          {"/d/x.y", "/d/x.app", "x", "/d/x.desktop"},
                          {"/d/x.app", "/d/x.app", "x", "/d/x.desktop"},
                          {"/d.e/x", "/d.e/x.app", "x", "/d.e/x.desktop"},
                          {"/d/a.b.c", "/d/a.b.app", "a.b", "/d/a.b.desktop"},
                          {"/d/.x", "/d/.x.app", ".x", "/d/.x.desktop"},
                          {"/x", "/x.app", "x", "/x.desktop"}}) {
        const DropletBundle bundle = DropletBundle::forChosenPath(c.chosen);
        EXPECT_EQ(bundle.path(), c.bundle);
        EXPECT_EQ(bundle.name(), c.name);
        EXPECT_EQ(bundle.launcherPath(), c.launcher);
        const auto back = DropletBundle::ofSettings(bundle.settingsPath());
        ASSERT_TRUE(back) << c.bundle;
        EXPECT_EQ(back->path(), c.bundle);
    }
    for (const char* path :
         {"", "/Contents/Resources/Settings.plist", "/d/x/Contents/Resources/Settings.plist",
          "d/x.app/Contents/Resources/Settings.plist", "/d/x.app/Settings.plist", "/etc/a/b/c"})
        EXPECT_FALSE(DropletBundle::ofSettings(path)) << path;
}

TEST_F(DropletTest, ReadsItsRecipeAndIsKnownAsOne) {
    EXPECT_FALSE(droplet().isDroplet());
    writeSettings(settingsWith(u"Add to end"));
    const auto result = droplet().readRecipe();
    const auto* recipe = std::get_if<Recipe>(&result);
    ASSERT_TRUE(recipe) << std::get<RecipeError>(result).message;
    EXPECT_EQ(recipe->globalSettings, (PropertyDictionary{{"silentDroplet", 1}}));
    EXPECT_TRUE(droplet().isDroplet());
    const std::string link = folder.link("B.app", droplet().path());
    EXPECT_FALSE(DropletBundle(link).isDroplet());
    EXPECT_TRUE(DropletBundle(link).isFolder());
}

TEST_F(DropletTest, RefusesSettingsThatAreNoGood) {
    EXPECT_THAT(errorOfReading(), HasSubstr("No such file"));
    writeSettings(settingsWith(u"Fly to the moon"));
    EXPECT_THAT(errorOfReading(), HasSubstr("there is no action \"Fly to the moon\""));
    PropertyDictionary preset = settingsWith(u"Add to end");
    preset.erase("Host Application Settings");
    preset.emplace("composite actions array", PropertyArray());
    writeSettings(preset);
    EXPECT_THAT(errorOfReading(), HasSubstr("there is no \"Host Application Settings\""));
    EXPECT_FALSE(droplet().isDroplet());
    const std::string good = PropertyList::toXml(settingsWith(u"Add to end"));
    std::string deep;
    for (int i = 0; i < 500; ++i)
        deep += "<array>";
    for (const std::string& damaged :
         {std::string(), good.substr(0, good.size() / 2), std::string("bplist00 and no more"),
          "<plist><dict><key>Host Application Settings</key>" + deep, std::string("<plist><array/></plist>"),
          std::string("<!DOCTYPE plist [<!ENTITY a \"") + std::string(1000, 'a') +
              "\"><!ENTITY b \"&a;&a;&a;\">]><plist><string>&b;</string></plist>"}) {
        writeRaw(damaged);
        EXPECT_THAT(errorOfReading(), HasSubstr("Settings.plist: ")) << damaged.substr(0, 40);
    }
}

TEST_F(DropletTest, ReadsNothingThatLiesOutside) {
    const std::string good = PropertyList::toXml(settingsWith(u"Add to end"));
    (void)folder.write("outside/Resources/Settings.plist", good);
    const auto refuses = [this] {
        EXPECT_THAT(errorOfReading(), HasSubstr("it is not a file of the droplet itself"));
        EXPECT_FALSE(droplet().isDroplet());
        std::filesystem::remove_all(droplet().path());
    };
    (void)folder.makeFolder("A.app/Contents/Resources");
    (void)folder.link(settingsFile, folder.path("outside/Resources/Settings.plist"));
    refuses();
    (void)folder.makeFolder("A.app");
    (void)folder.link("A.app/Contents", folder.path("outside"));
    refuses();
    (void)folder.makeFolder("A.app/Contents/Resources");
    ASSERT_EQ(::mkfifo(folder.path(settingsFile).c_str(), 0600), 0);
    refuses();
    (void)folder.makeFolder(settingsFile);
    refuses();
    // A hole takes no room on the disk, but would take memory.
    writeRaw("");
    std::filesystem::resize_file(folder.path(settingsFile), std::uintmax_t{65} << 20);
    EXPECT_THAT(errorOfReading(), HasSubstr("larger than 64 MiB"));
}

TEST_F(DropletTest, IsNeverRemovedWithSomethingForeignInIt) {
    struct Case {
        const char* file;
        bool isRemoved;
    };
    for (const Case& c : {Case{"A.app/photo.jpg", false},
                          {"A.app/Contents/photo.jpg", false},
                          {"A.app/Contents/Resources/photo.jpg", false},
                          {"A.app/Contents/Resources/Icon.png", true},
                          {"A.app/Contents/MacOS/droplet", true},
                          {"A.app/.directory", true}}) {
        writeSettings(settingsWith(u"Add to end"));
        (void)folder.write(c.file);
        EXPECT_EQ(droplet().remove(), c.isRemoved) << c.file;
        EXPECT_EQ(droplet().isFolder(), !c.isRemoved) << c.file;
        std::filesystem::remove_all(droplet().path());
    }
    // What only looks like a bundle stays as well.
    (void)folder.write("A.app/Contents/Info.plist");
    EXPECT_FALSE(droplet().remove());
    EXPECT_TRUE(droplet().isFolder());
}

TEST_F(DropletTest, TheLauncherQuotesEveryName) {
    struct Case {
        const char* bundle;
        const char* argument; ///< as it stands behind --droplet
        const char* mark;
    };
    for (const Case& c : {Case{"/d/Holiday.app", R"("/d/Holiday.app")", "/d/Holiday.app"},
                          {"/d/a b.app", R"("/d/a b.app")", "/d/a b.app"},
                          {"/d/50%.app", R"("/d/50%%.app")", "/d/50%.app"},
                          {"/d/%k%F.app", R"("/d/%%k%%F.app")", "/d/%k%F.app"},
                          {"/d/say \"hi\".app", R"("/d/say \\"hi\\".app")", "/d/say \"hi\".app"},
                          {"/d/$HOME.app", R"("/d/\\$HOME.app")", "/d/$HOME.app"},
                          {"/d/a`b.app", R"("/d/a\\`b.app")", "/d/a`b.app"},
                          {R"(/d/a\b.app)", R"("/d/a\\\\b.app")", R"(/d/a\\b.app)"},
                          {"/d/it's;&<>|.app", R"("/d/it's;&<>|.app")", "/d/it's;&<>|.app"},
                          {"/d/two\nlines\t.app", R"("/d/two\nlines\t.app")", R"(/d/two\nlines\t.app)"},
                          {"/d/\xC3\xA4\xF0\x9F\x98\x80.app", "\"/d/\xC3\xA4\xF0\x9F\x98\x80.app\"",
                           "/d/\xC3\xA4\xF0\x9F\x98\x80.app"}}) {
        const std::string text = DropletLauncher(DropletBundle(c.bundle), "/usr/bin/tavrin").text();
        EXPECT_THAT(text, HasSubstr("\nExec=\"/usr/bin/tavrin\" --droplet " + std::string(c.argument) +
                                    " --launcher=%k %F\n"));
        EXPECT_THAT(text, HasSubstr("\nX-Tavrin-Droplet=" + std::string(c.mark) + "\n"));
        EXPECT_EQ(std::ranges::count(text, '\n'), 11) << text;
    }
    const std::string text = DropletLauncher(DropletBundle("/d/caf\xE9.app"), "/usr/bin/tavrin").text();
    EXPECT_THAT(text, HasSubstr("\nName=caf\xEF\xBF\xBD\n"));
    EXPECT_THAT(text, HasSubstr("\nExec=\"/usr/bin/tavrin\" --launcher=%k %F\n"));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("\xE9")));
}

TEST_F(DropletTest, TheLauncherReplacesOnlyItsLikeAndFindsItsBundle) {
    writeSettings(settingsWith(u"Add to end"));
    const DropletLauncher launcher(droplet(), "/usr/bin/tavrin");
    const std::string path = folder.path("A.desktop");
    EXPECT_EQ(launcher.write(), std::nullopt);
    EXPECT_EQ(launcher.write(), std::nullopt);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0755));
    EXPECT_EQ(DropletLauncher::bundleOf(path)->path(), droplet().path());

    // Moved together under another name, the bundle beside it counts; alone, there is none.
    const std::string elsewhere = folder.makeFolder("elsewhere");
    std::filesystem::rename(droplet().path(), elsewhere + "/B.app");
    std::filesystem::rename(path, elsewhere + "/B.desktop");
    EXPECT_EQ(DropletLauncher::bundleOf(elsewhere + "/B.desktop")->path(), elsewhere + "/B.app");
    std::filesystem::remove_all(elsewhere + "/B.app");
    EXPECT_FALSE(DropletLauncher::bundleOf(elsewhere + "/B.desktop"));

    const std::string foreign = "[Desktop Entry]\nType=Application\nName=Mine\nExec=mine\n";
    (void)folder.write("A.desktop", foreign);
    EXPECT_THAT(launcher.write().value_or(""), HasSubstr("there is another file in the launcher's place"));
    EXPECT_EQ(folder.read("A.desktop"), foreign);
    folder.remove("A.desktop");
    (void)folder.link("A.desktop", folder.write("target", launcher.text()));
    EXPECT_TRUE(launcher.write().has_value());
    EXPECT_EQ(folder.kind("A.desktop"), FileStatus::Kind::link);
    EXPECT_FALSE(DropletLauncher::bundleOf(folder.path("nowhere")));
}

TEST_F(DropletTest, ARequestFindsItsDropletAndSortsItsFilesOut) {
    writeSettings(settingsWith(u"Add to end"));
    const std::string there = folder.write("caf\xE9 50%\n.txt");
    const std::string gone = folder.path("caf\xEF\xBF\xBD.txt");
    for (const DropletRequest& request :
         {DropletRequest{droplet().path(), "", {there, gone}},
          DropletRequest{folder.path("Gone.app"), folder.path("A.desktop"), {there, gone}},
          DropletRequest{"", folder.path("A.desktop"), {there, gone}}}) {
        const auto result = request.start();
        ASSERT_TRUE(std::holds_alternative<DropletRequest::Start>(result)) << std::get<1>(result).message;
        const auto& start = std::get<DropletRequest::Start>(result);
        EXPECT_EQ(start.missingFiles, std::vector<std::string>{gone});
        EXPECT_TRUE(start.isSilent);
        UserDefaults own;
        own.setProcessObject(DropletHandOver::recordKey, start.record);
        const auto read = DropletHandOver::read(own);
        const auto& handOver = std::get<DropletHandOver>(read);
        EXPECT_EQ(handOver.fileList, std::vector<std::string>{there});
        EXPECT_EQ(handOver.settingsPath, folder.path(settingsFile));
        EXPECT_TRUE(handOver.hasVersion);
        EXPECT_TRUE(handOver.compositeAction && handOver.globalSettings);
    }
    const auto errorOf = [](const DropletRequest& request) {
        const auto result = request.start();
        const auto* error = std::get_if<DropletRequest::Failure>(&result);
        return error ? error->message : "no error";
    };
    EXPECT_EQ(errorOf({droplet().path(), "", {}}), "no error");
    // Files that are all gone must not open the droplet for editing.
    EXPECT_THAT(errorOf({droplet().path(), "", {gone}}), HasSubstr("are not there"));
    EXPECT_THAT(errorOf({folder.path("Gone.app"), "", {there}}), HasSubstr("The droplet is gone."));
    EXPECT_THAT(errorOf({"", "", {}}), HasSubstr("The droplet is gone."));
    writeSettings(settingsWith(u"Fly"));
    EXPECT_THAT(errorOf({droplet().path(), "", {there}}), HasSubstr("no action \"Fly\""));
}

class DropletWriting : public DropletTest {
  protected:
    DropletWriting() : data("XDG_DATA_HOME", folder.path("data").c_str()) {}

    std::optional<std::string> write(const char16_t* action = u"Add to end") const {
        return writer.writeDropletWithDictionary(settingsWith(action), droplet().path());
    }
    std::map<std::string, std::string> treeWithoutData() const {
        auto tree = folder.tree();
        std::erase_if(tree, [](const auto& entry) { return entry.first.starts_with("data"); });
        return tree;
    }

    Variable data;
    DropletBundleWriter writer{"/usr/bin/tavrin", false};
};

TEST_F(DropletWriting, WritesAWholeDropletAndReplacesIt) {
    for (const char16_t* action : {u"Add to end", u"Remove text"}) {
        ASSERT_EQ(write(action), std::nullopt);
        const auto read = droplet().readSettings();
        EXPECT_EQ(std::get<PropertyDictionary>(read), settingsWith(action));
        EXPECT_TRUE(droplet().holdsOnlyItsOwn());
        EXPECT_FALSE(folder.read("A.app/Contents/Resources/Icon.png").empty());
        EXPECT_EQ(std::filesystem::status(droplet().path()).permissions() & std::filesystem::perms(0700),
                  std::filesystem::perms(0700));
        EXPECT_EQ(DropletLauncher::bundleOf(folder.path("A.desktop"))->path(), droplet().path());
        EXPECT_THAT(treeWithoutData(), ::testing::SizeIs(7)); // nothing is left beside it
    }
}

TEST_F(DropletWriting, ReplacesNothingThatIsNoDroplet) {
    struct Case {
        const char* what;
        std::function<void()> make;
    };
    const std::vector<Case> cases{
        {"folder", [this] { (void)folder.write("A.app/photo.jpg", "photo"); }},
        {"empty folder", [this] { (void)folder.makeFolder("A.app"); }},
        {"file", [this] { (void)folder.write("A.app", "photo"); }},
        {"link", [this] { (void)folder.link("A.app", folder.path("nowhere")); }},
        {"another application", [this] { (void)folder.write("A.app/Contents/Info.plist", "x"); }},
        {"droplet with a file in it",
         [this] {
             writeSettings(settingsWith(u"Add to end"));
             (void)folder.write("A.app/photo.jpg", "photo");
         }},
        {"launcher of something else",
         [this] { (void)folder.write("A.desktop", "[Desktop Entry]\nName=Mine\n"); }}};
    for (const Case& c : cases) {
        c.make();
        const auto before = folder.tree();
        EXPECT_TRUE(write().has_value()) << c.what;
        EXPECT_EQ(folder.tree(), before) << c.what;
        std::filesystem::remove_all(folder.path("A.app"));
        std::filesystem::remove_all(folder.path("A.desktop"));
    }
    EXPECT_TRUE(writer.writeDropletWithDictionary(settingsWith(u"Add to end"), folder.path("nowhere/A.app"))
                    .has_value());
}

TEST_F(DropletWriting, AFailureLeavesTheOldOne) {
    ASSERT_EQ(write(), std::nullopt);
    const auto before = folder.tree();
    // Lists are not written deeper than they are read.
    PropertyDictionary unwritable = settingsWith(u"Add to end");
    PropertyValue deep = PropertyArray();
    for (int i = 0; i < 200; ++i)
        deep = PropertyArray{deep};
    unwritable.emplace("deep", std::move(deep));
    EXPECT_TRUE(writer.writeDropletWithDictionary(unwritable, droplet().path()).has_value());
    EXPECT_EQ(folder.tree(), before);
}

TEST_F(DropletWriting, BringsAnOldDropletToThePresentForm) {
    writeSettings(settingsWith(u"Remove text"));
    (void)folder.write("A.app/Contents/MacOS/droplet", "old stub");
    (void)folder.write("A.app/Contents/Info.plist", "old");
    EXPECT_EQ(writer.upgrade(settingsWith(u"Add to end"), droplet()), std::nullopt);
    const auto after = treeWithoutData();
    EXPECT_THAT(after, ::testing::SizeIs(7));
    EXPECT_FALSE(after.contains("A.app/Contents/MacOS/droplet"));
    EXPECT_EQ(std::get<PropertyDictionary>(droplet().readSettings()), settingsWith(u"Add to end"));
    // One that holds a file of the user's stays, and nothing is left beside it.
    (void)folder.write("A.app/photo.jpg");
    const auto before = folder.tree();
    EXPECT_TRUE(writer.upgrade(settingsWith(u"Add to end"), droplet()).has_value());
    EXPECT_EQ(folder.tree(), before);
}

TEST_F(DropletWriting, TheScriptComesWithTheDropletAndGoesAfterIt) {
    const auto names = [this] {
        std::vector<std::string> result;
        for (const auto& [name, content] : folder.tree())
            if (name.starts_with("data/nautilus/scripts/") && !name.ends_with('/'))
                result.push_back(name.substr(22));
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
    EXPECT_EQ(std::filesystem::status(DropletScript::folder() + "/A 2").permissions(),
              std::filesystem::perms(0755));
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
        folder.write("it's a program", "#!/bin/sh\nprintf '%s\\0' \"$@\" > \"$OUTPUT\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const DropletBundle bundle("/d/$(x) `y` 'z' \"%\\.app");
    const std::string script = folder.write("script", DropletScript(bundle, program).text());
    const auto run = [&](std::vector<std::string> names, const std::string& paths) {
        std::vector<std::string> command{"/bin/sh", script};
        command.insert(command.end(), names.begin(), names.end());
        folder.write("output");
        EXPECT_TRUE(ChildProcess::run({.arguments = command,
                                       .environment = {{"OUTPUT", folder.path("output")},
                                                       {"NAUTILUS_SCRIPT_SELECTED_FILE_PATHS", paths}}})
                        .succeeded());
        return folder.read("output");
    };
    const std::string start = std::string("--droplet") + '\0' + bundle.path() + '\0' + "--" + '\0';
    const auto passed = [&](std::initializer_list<std::string> paths) {
        std::string result = start;
        for (const std::string& path : paths)
            result += path + '\0';
        return result;
    };
    EXPECT_EQ(run({"a b", "*"}, "/p/a b\n/p/*\n"), passed({"/p/a b", "/p/*"}));
    EXPECT_EQ(run({"caf\xE9", "$x'"}, "/p/caf\xE9\n/p/$x'\n"), passed({"/p/caf\xE9", "/p/$x'"}));
    EXPECT_EQ(run({"two\n/lines", "b"}, "/p/two\n/lines\n/p/b\n"), passed({"two\n/lines", "b"}));
    EXPECT_EQ(run({}, ""), "");
}

} // namespace
} // namespace tavrin::test
