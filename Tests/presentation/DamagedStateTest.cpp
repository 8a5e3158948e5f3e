#include "documents/PresetsManager.h"
#include "presentation/WindowFixture.h"

namespace tavrin::test {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

using DamagedState = WindowFixture;

TEST_F(DamagedState, KeepsAChainOfANewerVersionUntilThereIsAnother) {
    const PropertyValue chain = PropertyDictionary{
        {"currentActionIndex", 0},
        {"composite actions array",
         PropertyArray{PropertyDictionary{{"action name", u"Fold time"},
                                          {"action parameter list", PropertyDictionary{}}}}}};
    start();
    application.reset();
    UserDefaults defaults(data.path() + "/defaults.plist");
    defaults.setObject("composite action", chain);
    ASSERT_TRUE(defaults.synchronize());

    start({makeFile("a.txt")});
    EXPECT_THAT(close("errorAlert"), HasSubstr("Fold time"));
    waitForNames({"Image_01.txt"}); // the rest works
    application->controller().saveUserDefaults();
    application.reset();
    EXPECT_EQ(UserDefaults(data.path() + "/defaults.plist").objectForKey("composite action"), chain);

    start();
    close("errorAlert");
    chooseAction("Make uppercase");
    restart();
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");
}

TEST_F(DamagedState, WorksWithoutAFolderForItsData) {
    const std::string noFolder = data.write("occupied", "x") + "/data";
    make(noFolder);
    application->start({makeFile("a.txt")});
    EXPECT_THAT(close("noticeAlert"), StartsWith("The list of items can't be kept in a file"));
    waitForNames({"Image_01.txt"});
    trigger("createNewPresetWithCurrentSettings");
    close("newPresetWindow");
    EXPECT_THAT(close("errorAlert"), HasSubstr("The preset can't be saved as \"" + noFolder));
    EXPECT_EQ(application->controller().presetsManager().count(), 0U);
    application->controller().windowWillClose();
    EXPECT_EQ(data.read("occupied"), "x");
}

} // namespace

} // namespace tavrin::test
