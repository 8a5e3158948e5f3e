#include "actions/ActionList.h"
#include "common/Recipes.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletLauncher.h"
#include "platform/propertylists/PropertyList.h"
#include "presentation/UsersProgram.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>

namespace tavrin::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Droplets as processes of the real program, for a user of their own.
class DropletStart : public ::testing::Test, protected UsersProgram {
  protected:
    /// A droplet on the desktop that adds `text` to names.
    std::string makeDroplet(const std::string& name, const std::string& text,
                            PropertyDictionary settings = {{"silentDroplet", 1}}) {
        const PropertyDictionary list = dropletThatAdds(text::fromUtf8(text), std::move(settings));
        (void)home.makeFolder("desktop");
        const std::string path = home.path("desktop/" + name + ".app");
        EXPECT_EQ(DropletBundleWriter(TAVRIN_PROGRAM, false).writeDropletWithDictionary(list, path),
                  std::nullopt);
        return path;
    }
    /// The names in a folder, sorted.
    std::vector<std::string> names(const std::string& folder) const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(home.path(folder)))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }
    std::optional<PropertyValue> stored(const char* key) const {
        const auto list = PropertyList::read(home.path("net.calderwick.tvrn9.plist"));
        const auto* root = std::get_if<PropertyValue>(&list);
        const PropertyValue* value =
            root && root->asDictionary() ? find(*root->asDictionary(), key) : nullptr;
        return value ? std::optional(*value) : std::nullopt;
    }
};

TEST_F(DropletStart, RenamesWhatIsDroppedAndEnds) {
    const std::string droplet = makeDroplet("It's 50% \"$HOME\" `x`", "X");
    // Written by a newer version: not a droplet's to touch.
    const std::string settings = PropertyList::toXml(
        PropertyDictionary{{"firstLaunchVersion", 90000}, {"precious", u"kept"}, {"interactiveMode", u"?"}});
    (void)home.write("net.calderwick.tvrn9.plist", settings);
    std::vector<std::string> arguments{"--droplet", droplet, "--launcher="};
    for (const char* name : {"in/a b", "in/--help", "in/say \"hi\" 100%F", "in/two\nlines", "in/\xC3\xA4"})
        arguments.push_back(home.write(name));
    QProcess& process = start(arguments);
    EXPECT_EQ(statusOf(process), 0) << process.readAllStandardError().toStdString();
    EXPECT_THAT(names("in"), ElementsAre("--helpX", "a bX", "say \"hi\" 100%FX", "two\nlinesX", "\xC3\xA4X"));
    EXPECT_EQ(home.read("net.calderwick.tvrn9.plist"), settings);
    EXPECT_FALSE(home.kind("net.calderwick.tvrn9.plist.saved-90000"));
}

TEST_F(DropletStart, FindsItsBundleBesideTheLauncher) {
    std::filesystem::rename(makeDroplet("A", "X"), home.makeFolder("moved") + "/A.app");
    std::filesystem::rename(home.path("desktop/A.desktop"), home.path("moved/A.desktop"));
    const std::string gone = home.path("desktop/A.app");
    EXPECT_EQ(statusOf(start(
                  {"--droplet", gone, "--launcher=" + home.path("moved/A.desktop"), home.write("in/a")})),
              0);
    EXPECT_EQ(statusOf(start({"--launcher=file://" + home.path("moved/A.desktop"), home.write("in/b")})), 0);
    // So a path that a file manager has torn apart does no harm.
    EXPECT_EQ(statusOf(start({"--droplet", "/d/say \\hi", "there\\.app",
                              "--launcher=" + home.path("moved/A.desktop"), home.write("in/c")})),
              0);
    EXPECT_THAT(names("in"), ElementsAre("aX", "bX", "cX"));
}

TEST_F(DropletStart, TellsWhatKeepsItFromRunning) {
    const std::string good = makeDroplet("Good", "X", {{"silentDroplet", 0}});
    const std::string broken = makeDroplet("Broken", "X");
    (void)home.write("desktop/Broken.app/Contents/Resources/Settings.plist", "<plist><dict>");
    const std::string file = home.write("in/a");
    struct Case {
        std::vector<std::string> arguments;
        const char* message;
    };
    for (const Case& c :
         {Case{{"--droplet", home.path("desktop/None.app"), "--launcher=", file}, "The droplet is gone."},
          Case{{"--droplet", home.path("desktop/None.app")}, "The droplet is gone."},
          Case{{"--droplet", broken, "--launcher=", file}, "can't be used."},
          Case{{"--droplet", good, "--launcher=", home.path("in/gone")}, "are not there."}}) {
        QProcess& process = start(c.arguments);
        std::string told;
        // Its message stays open until the user closes it.
        EXPECT_TRUE(waitFor([&] {
            return (told += process.readAllStandardError().toStdString()).find(c.message) !=
                   std::string::npos;
        })) << c.message
            << ": " << told;
        EXPECT_EQ(process.state(), QProcess::Running) << c.message;
        process.terminate();
        EXPECT_TRUE(process.waitForFinished(patience));
        QProcess& withoutDisplay = start(c.arguments, "");
        EXPECT_EQ(statusOf(withoutDisplay), 2);
        EXPECT_THAT(withoutDisplay.readAllStandardError().toStdString(), HasSubstr("there is no display"));
    }
    EXPECT_EQ(statusOf(start({"--droplet"})), 2);
    EXPECT_EQ(stored("composite action"), std::nullopt);
    EXPECT_EQ(stored("actions"), std::nullopt);
    EXPECT_THAT(names("in"), ElementsAre("a"));
}

TEST_F(DropletStart, PassesOverFilesThatAreGoneAndTellsOfThem) {
    const std::string silent = makeDroplet("A", "X");
    QProcess& nothingLeft = start({"--droplet", silent, "--launcher=", home.path("in/gone")});
    EXPECT_EQ(statusOf(nothingLeft), 2);
    EXPECT_THAT(nothingLeft.readAllStandardError().toStdString(),
                HasSubstr("The dropped files are not there."));
    const std::string telling = makeDroplet("B", "Y", {{"interactiveMode", 0}, {"showSummary", 0}});
    for (const std::string& droplet : {silent, telling}) {
        QProcess& process = start({"--droplet", droplet, home.path("in/gone"), home.write("in/a")});
        if (droplet == telling) {
            // What it tells stays on the screen after the run.
            EXPECT_TRUE(waitFor([&] { return home.kind("in/aY").has_value(); }));
            EXPECT_FALSE(process.waitForFinished(300));
            process.terminate();
        }
        EXPECT_EQ(statusOf(process), 0);
        EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("in/gone"));
    }
    EXPECT_THAT(names("in"), ElementsAre("aX", "aY"));
}

TEST_F(DropletStart, RunsBesideTheWindowAndOtherDroplets) {
    QProcess& window = start({});
    ASSERT_TRUE(waitFor([&] { return stored("firstLaunchVersion").has_value(); }));
    const std::string x = makeDroplet("X", "X");
    const std::string y = makeDroplet("Y", "Y");
    QProcess& edited = start({"--droplet", x});
    std::vector<std::string> forX{"--droplet", x, "--launcher="};
    std::vector<std::string> forY{"--droplet", y, "--launcher="};
    for (int i = 0; i < 500; ++i) {
        forX.push_back(home.write(fmt::format("x/{:03}", i)));
        forY.push_back(home.write(fmt::format("y/{:03}", i)));
    }
    QProcess& first = start(forX);
    QProcess& second = start(forY);
    EXPECT_EQ(statusOf(first), 0);
    EXPECT_EQ(statusOf(second), 0);
    for (const std::string& name : names("x"))
        EXPECT_EQ(name.back(), 'X');
    for (const std::string& name : names("y"))
        EXPECT_EQ(name.back(), 'Y');
    EXPECT_EQ(names("x").size() + names("y").size(), 1000U);
    EXPECT_EQ(window.state(), QProcess::Running);
    EXPECT_EQ(edited.state(), QProcess::Running);
    EXPECT_EQ(stored("droplet settings"), std::nullopt);
}

} // namespace

} // namespace tavrin::test
