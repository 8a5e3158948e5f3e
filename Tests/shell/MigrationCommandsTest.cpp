#include "platform/propertylists/PropertyList.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

using ::testing::HasSubstr;

class MigrationCommandsTest : public ShellFixture {
  protected:
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
};

TEST_F(MigrationCommandsTest, TellsOfEachFolderInTurn) {
    start();
    frontEnd.expect("alert presetMigration");
    controller().migratePresets();
    EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr("No presets"));

    (void)data.write("Morvane 8/Presets/a.mv8preset.plist", preset());
    (void)data.write("Tavrin 8/Presets/a.mv8preset.plist", preset());
    frontEnd.alerts.clear();
    frontEnd.expect("alert presetMigration", ScriptedFrontEnd::Held());
    controller().migratePresets();
    ASSERT_EQ(frontEnd.alerts.size(), 1u);
    EXPECT_EQ(frontEnd.alerts.back().title,
              "Presets found at " + data.path("Morvane 8/") + " were successfully migrated.");
    EXPECT_THAT(frontEnd.events, ::testing::Contains("fillPresetMenu 1"))
        << "a menu of old would apply other presets than those clicked";
    frontEnd.expect("alert presetMigration");
    frontEnd.answerHeld(AlertAnswer());
    EXPECT_EQ(frontEnd.alerts.back().title, "At least one of the preset files found at " +
                                                data.path("Tavrin 8/") + " could not be migrated.");
}

TEST_F(MigrationCommandsTest, TakesPresetsFromAChosenFolder) {
    start();
    (void)files.write("copied/Presets/b.tvrn8preset.plist", preset());
    (void)files.write("other/Presets/c.tvrn8preset.plist", preset());
    (void)files.makeFolder("without");
    const std::vector<std::tuple<std::string, std::string, std::size_t>> cases{
        {"without", "There are no presets at", 0},
        {"copied", "successfully migrated.", 1},
        {"other/Presets/", "successfully migrated.", 2},
        {"copied/Presets", "could not be migrated.", 2}};
    for (const auto& [folder, told, count] : cases) {
        frontEnd.expect("folder", std::optional(files.path(folder)));
        frontEnd.expect("alert presetMigration");
        controller().migratePresetsFromFolder();
        EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr(told)) << folder;
        EXPECT_EQ(controller().presetsManager().count(), count) << folder;
    }
    frontEnd.expect("folder", std::optional<std::string>());
    controller().migratePresetsFromFolder();
}

TEST_F(MigrationCommandsTest, TriesAllDropletsAndTellsOnce) {
    using Paths = std::optional<std::vector<std::string>>;
    start();
    const std::string good = makeDroplet("good.app", u"/Applications/Tavrin 8.app");
    const std::string bad = makeDroplet("bad.app", u"/Applications/Notes.app");
    const std::string late = makeDroplet("late.app", u"/Applications/Morvane 8.app");
    frontEnd.expect("droplets", Paths());
    controller().migrateDroplet();
    frontEnd.expect("droplets", Paths({}));
    controller().migrateDroplet();
    frontEnd.expect("droplets", Paths({bad, late + "/"}));
    frontEnd.expect("alert dropletMigration");
    controller().migrateDroplet();
    EXPECT_EQ(frontEnd.alerts.back().title, "An error occurred");
    EXPECT_THAT(files.read("late.app/Contents/Resources/Settings.plist"), HasSubstr("Tavrin 9.app"));
    EXPECT_THAT(files.read("late.desktop"), HasSubstr("\"/opt/tavrin\" --droplet"));

    frontEnd.expect("droplets", Paths({good, files.path("late.desktop")}));
    frontEnd.expect("alert dropletMigration");
    controller().migrateDroplet();
    EXPECT_EQ(frontEnd.alerts.back().title, "Success");
}

} // namespace
} // namespace tavrin::test
