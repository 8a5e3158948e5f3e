#include "common/Variable.h"
#include "platform/desktop/FileManagerMenus.h"
#include "presentation/WindowFixture.h"

#include <sys/stat.h>

namespace tavrin::test {
namespace {

// Over a user's folders, with the file managers that are among the programs.
TEST_F(WindowFixture, FileManagersGetEntriesAndLoseThem) {
    const TemporaryFolder user;
    const Variable userData("XDG_DATA_HOME", user.path("data").c_str());
    const Variable configuration("XDG_CONFIG_HOME", user.path("config").c_str());
    const Variable sharedData("XDG_DATA_DIRS", user.path("shared").c_str());
    const Variable programs("PATH", user.path("bin").c_str());
    for (const char* fileManager : {"thunar", "nautilus", "dolphin"})
        ASSERT_EQ(::chmod(user.write(std::string("bin/") + fileManager).c_str(), 0755), 0);
    user.write("shared/kio/servicemenus/net.calderwick.tavrin.desktop");
    user.write("config/Thunar/uca.xml", "<actions>");
    FileManagerMenus menus("/opt/bin/tavrin");
    FileManagerMenus::setSharedInstance(&menus);
    start();
    trigger("showPreferencesDialog");
    (void)waitFor("preferencesWindow");
    const auto state = [this](const char* name) { return find<QLabel>(name)->text().toStdString(); };
    EXPECT_EQ(findWidget("menuStateOfNemo"), nullptr);
    EXPECT_EQ(state("menuStateOfNautilus"), "no entry");
    EXPECT_EQ(state("menuStateOfDolphin"), "in the menu, for all users");
    EXPECT_EQ(state("menuStateOfThunar"), "not Tavrin's to change");
    EXPECT_FALSE(find("removeFromMenus")->isEnabled());
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_THAT(state("menuFailures"),
                ::testing::HasSubstr("uca.xml\" is left alone: it is no list of actions"));
    EXPECT_EQ(user.read("config/Thunar/uca.xml"), "<actions>");
    EXPECT_EQ(menus.state(FileManagerKind::nautilus), MenuState::present);
    EXPECT_EQ(state("menuStateOfNautilus"), "in the menu");
    user.remove("config/Thunar/uca.xml");
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_EQ(state("menuStateOfThunar"), "in the menu");
    EXPECT_FALSE(find("forceServicesMenuUpdate")->isEnabled());
    find<QPushButton>("removeFromMenus")->click();
    EXPECT_EQ(menus.state(FileManagerKind::nautilus), MenuState::absent);
    EXPECT_EQ(state("menuStateOfThunar"), "no entry");
}

} // namespace
} // namespace tavrin::test
