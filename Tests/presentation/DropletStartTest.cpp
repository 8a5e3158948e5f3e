#include "common/DropletLists.h"
#include "documents/DropletBundleWriter.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/UsersProgram.h"

#include <fmt/format.h>

namespace tavrin::test {

namespace {

using namespace ::testing;

/// Droplets as processes of the real program, for a user of their own.
class DropletStart : public Test, protected UsersProgram {
  protected:
    /// A droplet on the desktop that adds `text` to names.
    std::string makeDroplet(const std::string& name, std::u16string text,
                            PropertyDictionary settings = {{"silentDroplet", 1}}) {
        std::string path = home.makeFolder("desktop") + "/" + name + ".app";
        EXPECT_EQ(DropletBundleWriter(TAVRIN_PROGRAM, false)
                      .writeDropletWithDictionary(dropletThatAdds(text, std::move(settings)), path),
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
        return UserDefaults(home.path("net.calderwick.tvrn9.plist")).objectForKey(key);
    }
};

TEST_F(DropletStart, RenamesWhatIsDroppedAndEnds) {
    const std::string droplet = makeDroplet("It's 50% \"$HOME\" `x`", u"X");
    // Written by a newer version: not a droplet's to touch.
    const std::string settings = PropertyList::toXml(
        PropertyDictionary{{"firstLaunchVersion", 90000}, {"precious", u"kept"}, {"interactiveMode", u"?"}});
    home.write("net.calderwick.tvrn9.plist", settings);
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
    std::filesystem::rename(makeDroplet("A", u"X"), home.makeFolder("moved") + "/A.app");
    const std::string launcher = home.path("moved/A.desktop");
    std::filesystem::rename(home.path("desktop/A.desktop"), launcher);
    const std::vector<std::string> cases[] = {
        {"--droplet", home.path("desktop/A.app"), "--launcher=" + launcher, home.write("in/a")},
        {"--launcher=file://" + launcher, home.write("in/b")},
        // So a path that a file manager has torn apart does no harm.
        {"--droplet", "/d/say \\hi", "there\\.app", "--launcher=" + launcher, home.write("in/c")}};
    for (const auto& arguments : cases)
        EXPECT_EQ(statusOf(start(arguments)), 0);
    EXPECT_THAT(names("in"), ElementsAre("aX", "bX", "cX"));
}

TEST_F(DropletStart, TellsWhatKeepsItFromRunning) {
    const std::string good = makeDroplet("Good", u"X", {{"silentDroplet", 0}});
    const std::string broken = makeDroplet("Broken", u"X");
    home.write("desktop/Broken.app/Contents/Resources/Settings.plist", "<plist><dict>");
    const std::string file = home.write("in/a");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--droplet", home.path("desktop/None.app"), "--launcher=", file}, "The droplet is gone."},
        {{"--droplet", home.path("desktop/None.app")}, "The droplet is gone."},
        {{"--droplet", broken, "--launcher=", file}, "can't be used."},
        {{"--droplet", good, "--launcher=", home.path("in/gone")}, "are not there."}};
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(message);
        QProcess& process = start(arguments);
        QByteArray told;
        // Its message stays open until the user closes it.
        EXPECT_TRUE(waitFor([&] { return (told += process.readAllStandardError()).contains(message); }))
            << told.toStdString();
        EXPECT_EQ(process.state(), QProcess::Running);
        process.terminate();
        EXPECT_TRUE(process.waitForFinished(patience));
        QProcess& withoutDisplay = start(arguments, "");
        EXPECT_EQ(statusOf(withoutDisplay), 2);
        EXPECT_THAT(withoutDisplay.readAllStandardError().toStdString(), HasSubstr("there is no display"));
    }
    EXPECT_EQ(statusOf(start({"--droplet"})), 2);
    EXPECT_EQ(stored("composite action"), std::nullopt);
    EXPECT_EQ(stored("actions"), std::nullopt);
    EXPECT_THAT(names("in"), ElementsAre("a"));
}

TEST_F(DropletStart, PassesOverFilesThatAreGoneAndTellsOfThem) {
    const std::string silent = makeDroplet("A", u"X");
    QProcess& nothingLeft = start({"--droplet", silent, "--launcher=", home.path("in/gone")});
    EXPECT_EQ(statusOf(nothingLeft), 2);
    EXPECT_THAT(nothingLeft.readAllStandardError().toStdString(),
                HasSubstr("The dropped files are not there."));
    const std::string telling = makeDroplet("B", u"Y", {{"interactiveMode", 0}, {"showSummary", 0}});
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
    const std::string x = makeDroplet("X", u"X");
    const std::string y = makeDroplet("Y", u"Y");
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
    EXPECT_THAT(names("x"), AllOf(SizeIs(500), Each(EndsWith("X"))));
    EXPECT_THAT(names("y"), AllOf(SizeIs(500), Each(EndsWith("Y"))));
    EXPECT_EQ(window.state(), QProcess::Running);
    EXPECT_EQ(edited.state(), QProcess::Running);
    EXPECT_EQ(stored("droplet settings"), std::nullopt);
}

} // namespace

} // namespace tavrin::test
