#include "common/Variable.h"
#include "documents/DropletBundle.h"
#include "platform/propertylists/PropertyList.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

/// Making droplets, and bringing those and the presets of the version before to this one.
class DropletCommandsTest : public ShellFixture {
  protected:
    DropletCommandsTest() { defaults.setObject("don't show droplet information again", true); }

    void create(const std::string& name) {
        frontEnd.expect("droplet path", std::optional(files.path(name)));
        controller().createDroplet();
    }
    /// Expects one message about the presets that are taken over; the title that it had.
    std::string titleOfMigration() {
        frontEnd.expect("alert presetMigration");
        controller().migratePresetsFromFolder();
        return frontEnd.alerts.back().title;
    }
    static std::string preset() {
        return PropertyList::toXml(PropertyDictionary{{"compositeAction", chain({{"Add to end", {}}})}});
    }
    std::string makeDroplet(const std::string& name, const char16_t* location) {
        const PropertyDictionary droplet{{"default location", location}};
        (void)files.write(name + "/Contents/Resources/Icon.icns");
        (void)files.write(name + "/Contents/Resources/Settings.plist",
                          PropertyList::toXml(PropertyDictionary{{"Droplet Settings", droplet}}));
        return files.path(name);
    }

    Variable home{"HOME", files.path().c_str()};
    Variable dataHome{"XDG_DATA_HOME", data.path().c_str()};
};

TEST_F(DropletCommandsTest, WritesTheChainAndTheSettings) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Remove text", {}}});
    set("lockedDroplet", true);
    create("x.y");
    EXPECT_THAT(frontEnd.events, Contains("panel titled Save Droplet starts at " + files.path()));
    const auto settings = DropletBundle(files.path("x.app")).readSettings();
    ASSERT_TRUE(std::holds_alternative<PropertyDictionary>(settings)) << std::get<1>(settings).message;
    const PropertyDictionary expected{
        {"Droplet Settings", PropertyDictionary{{"default location", u"/Applications/Tavrin 9.app"},
                                                {"location key", u"net.calderwick.tvrn9"},
                                                {"temporary settings key", u"droplet settings"}}},
        {"Host Application Settings",
         PropertyDictionary{{"composite action", controller().compositeAction().getFlatParameterList()},
                            {"global settings", controller().globalSettings().parameterList()}}}};
    EXPECT_EQ(std::get<PropertyDictionary>(settings), expected);
    EXPECT_TRUE(files.kind("x.desktop").has_value());
    EXPECT_TRUE(frontEnd.alerts.empty());
}

TEST_F(DropletCommandsTest, ExplainsDropletsUntilToldNotToAndTellsOfTheSilentModeAndOfFailure) {
    const char* const key = "don't show droplet information again";
    defaults.removeObject(key);
    start();
    for (const auto choice : {NoticeAnswer::cancel, NoticeAnswer::help}) {
        frontEnd.expect("notice dropletInformation", NoticeAnswer{choice, false});
        controller().createDroplet();
        EXPECT_EQ(defaults.objectForKey(key), std::nullopt);
    }
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic28");
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::ok, true});
    create("first");
    create("second");
    EXPECT_TRUE(DropletBundle(files.path("second.app")).isDroplet());
    (void)files.write("taken.app/photo.jpg");
    frontEnd.expect("droplet path", std::optional(files.path("taken")));
    frontEnd.expect("alert dropletNotCreated");
    controller().createDroplet();
    EXPECT_TRUE(files.kind("taken.app/photo.jpg").has_value());
    set("silentDroplet", 1);
    frontEnd.expect("droplet path", std::optional(files.path("silent")));
    frontEnd.expect("alert dropletIsSilent");
    controller().createDroplet();
    EXPECT_THAT(frontEnd.alerts.back().text, HasSubstr("silent droplet\"  checkbox"));
    frontEnd.expect("droplet path", std::optional<std::string>());
    controller().createDroplet();
    setSteps({{"Add to end", {{"active", 0}}}});
    frontEnd.expect("alert noActiveActions");
    controller().createDroplet();
}

TEST_F(DropletCommandsTest, TellsOfEachFolderOfPresetsInTurn) {
    start();
    frontEnd.expect("alert presetMigration");
    controller().migratePresets();
    EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr("No presets"));
    for (const char* path : {"Morvane 8/Presets/a.mv8preset.plist", "Tavrin 8/Presets/a.mv8preset.plist"})
        (void)data.write(path, preset());
    frontEnd.expect("alert presetMigration", ScriptedFrontEnd::Held());
    controller().migratePresets();
    EXPECT_EQ(frontEnd.alerts.back().title,
              "Presets found at " + data.path("Morvane 8/") + " were successfully migrated.");
    EXPECT_THAT(frontEnd.events, Contains("fillPresetMenu 1"))
        << "a menu of old would apply other presets than those clicked";
    frontEnd.expect("alert presetMigration");
    frontEnd.answerHeld(AlertAnswer());
    EXPECT_EQ(frontEnd.alerts.back().title, "At least one of the preset files found at " +
                                                data.path("Tavrin 8/") + " could not be migrated.");

    (void)files.write("copied/Presets/b.tvrn8preset.plist", preset());
    (void)files.write("other/Presets/c.tvrn8preset.plist", preset());
    (void)files.makeFolder("without");
    const std::vector<std::tuple<std::string, std::string, std::size_t>> cases{
        {"without", "There are no presets at", 1},
        {"copied", "successfully migrated.", 2},
        {"other/Presets/", "successfully migrated.", 3},
        {"copied/Presets", "could not be migrated.", 3}};
    for (const auto& [folder, told, count] : cases) {
        frontEnd.expect("folder", std::optional(files.path(folder)));
        EXPECT_THAT(titleOfMigration(), HasSubstr(told)) << folder;
        EXPECT_EQ(controller().presetsManager().count(), count) << folder;
    }
    frontEnd.expect("folder", std::optional<std::string>());
    controller().migratePresetsFromFolder();
}

TEST_F(DropletCommandsTest, MigratesAllDropletsThatItCanAndTellsOnce) {
    using Paths = std::optional<std::vector<std::string>>;
    start();
    const std::string good = makeDroplet("good.app", u"/Applications/Tavrin 8.app");
    const std::string bad = makeDroplet("bad.app", u"/Applications/Notes.app");
    const std::string late = makeDroplet("late.app", u"/Applications/Morvane 8.app");
    const std::vector<std::pair<Paths, std::string>> cases{
        {Paths(), ""},
        {Paths({}), ""},
        {Paths({bad, late + "/"}), "An error occurred"},
        {Paths({good, files.path("late.desktop")}), "Success"}};
    for (const auto& [chosen, told] : cases) {
        frontEnd.expect("droplets", chosen);
        if (!told.empty())
            frontEnd.expect("alert dropletMigration");
        controller().migrateDroplet();
        EXPECT_EQ(frontEnd.alerts.empty() ? "" : frontEnd.alerts.back().title, told);
    }
    EXPECT_THAT(files.read("late.app/Contents/Resources/Settings.plist"), HasSubstr("Tavrin 9.app"));
    EXPECT_THAT(files.read("late.desktop"), HasSubstr("\"/opt/tavrin\" --droplet"));
}

} // namespace
} // namespace tavrin::test
