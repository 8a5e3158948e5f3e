#include "common/Variable.h"
#include "documents/DropletBundle.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class DropletCommandsTest : public ShellFixture {
  protected:
    DropletCommandsTest() { defaults.setObject("don't show droplet information again", true); }

    void create(const std::string& name) {
        frontEnd.expect("droplet path", std::optional(files.path(name)));
        controller().createDroplet();
    }

    Variable home{"HOME", files.path().c_str()};
    Variable dataHome{"XDG_DATA_HOME", data.path().c_str()};
};

TEST_F(DropletCommandsTest, WritesTheChainAndTheSettings) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Remove text", {}}});
    set("lockedDroplet", true);
    create("x.y");
    EXPECT_THAT(frontEnd.events, ::testing::Contains("panel titled Save Droplet starts at " + files.path()));
    const DropletBundle bundle(files.path("x.app"));
    const auto settings = bundle.readSettings();
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

TEST_F(DropletCommandsTest, TellsOfTheSilentModeAndOfFailure) {
    start();
    set("silentDroplet", 1);
    frontEnd.expect("droplet path", std::optional(files.path("silent")));
    frontEnd.expect("alert dropletIsSilent");
    controller().createDroplet();
    EXPECT_THAT(frontEnd.alerts.back().text, ::testing::HasSubstr("silent droplet\"  checkbox"));
    (void)files.write("taken.app/photo.jpg");
    frontEnd.expect("droplet path", std::optional(files.path("taken")));
    frontEnd.expect("alert dropletNotCreated");
    controller().createDroplet();
    EXPECT_EQ(frontEnd.alerts.back().title, "Cannot create droplet.");
    EXPECT_TRUE(files.kind("taken.app/photo.jpg").has_value());
    frontEnd.expect("droplet path", std::optional<std::string>());
    controller().createDroplet();
    EXPECT_EQ(frontEnd.alerts.size(), 2U);
}

TEST_F(DropletCommandsTest, ExplainsDropletsUntilToldNotTo) {
    defaults.removeObject("don't show droplet information again");
    start();
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::cancel, false});
    controller().createDroplet();
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::help, false});
    controller().createDroplet();
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic28");
    EXPECT_EQ(defaults.objectForKey("don't show droplet information again"), std::nullopt);
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::ok, true});
    create("first");
    EXPECT_TRUE(defaults.boolForKey("don't show droplet information again"));
    create("second");
    EXPECT_TRUE(DropletBundle(files.path("second.app")).isDroplet());
    setSteps({{"Add to end", {{"active", 0}}}});
    frontEnd.expect("alert noActiveActions");
    controller().createDroplet();
}

} // namespace
} // namespace tavrin::test
