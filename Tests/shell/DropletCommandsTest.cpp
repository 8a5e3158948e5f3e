#include "documents/DropletBundle.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

/// Making droplets, and bringing those and the presets of the version before to this one.
class DropletCommandsTest : public ShellFixture {
  protected:
    void create(const std::optional<std::string>& name, const char* told = nullptr) {
        frontEnd.expect("droplet path", name ? std::optional(files.path(*name)) : std::nullopt);
        if (told)
            frontEnd.expect(told);
        controller().createDroplet();
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

TEST_F(DropletCommandsTest, WritesTheChainAndTheSettingsAndExplainsDropletsUntilToldNotTo) {
    const char* const key = "don't show droplet information again";
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Remove text", {}}});
    set("lockedDroplet", true);
    for (const auto choice : {NoticeAnswer::cancel, NoticeAnswer::help}) {
        frontEnd.expect("notice dropletInformation", NoticeAnswer{choice, false});
        controller().createDroplet();
        EXPECT_EQ(defaults.objectForKey(key), std::nullopt);
    }
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic28");
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::ok, true});
    create("first");
    create("x.y");
    EXPECT_THAT(frontEnd.events, Contains("panel titled Save Droplet starts at " + files.path()));
    PropertyDictionary expected = dropletList(controller().compositeAction().getFlatParameterList(),
                                              controller().globalSettings().parameterList());
    expected.insert_or_assign("Droplet Settings",
                              PropertyDictionary{{"default location", u"/Applications/Tavrin 9.app"},
                                                 {"location key", u"net.calderwick.tvrn9"},
                                                 {"temporary settings key", u"droplet settings"}});
    EXPECT_EQ(std::get<PropertyDictionary>(DropletBundle(files.path("x.app")).readSettings()), expected);
    EXPECT_TRUE(files.kind("x.desktop").has_value());
    EXPECT_TRUE(frontEnd.alerts.empty());
    (void)files.write("taken.app/photo.jpg");
    create("taken", "alert dropletNotCreated");
    EXPECT_TRUE(files.kind("taken.app/photo.jpg").has_value());
    set("silentDroplet", 1);
    create("silent", "alert dropletIsSilent");
    create(std::nullopt);
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
    for (const auto& [folder, told, count] : {std::tuple{"without", "There are no presets at", 1U},
                                              {"copied", "successfully migrated.", 2U},
                                              {"other/Presets/", "successfully migrated.", 3U},
                                              {"copied/Presets", "could not be migrated.", 3U}}) {
        frontEnd.expect("folder", std::optional(files.path(folder)));
        frontEnd.expect("alert presetMigration");
        controller().migratePresetsFromFolder();
        EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr(told)) << folder;
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
