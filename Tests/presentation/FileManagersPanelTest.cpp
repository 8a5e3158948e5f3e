#include "common/Variable.h"
#include "platform/desktop/FileManagerMenus.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <sys/stat.h>

namespace tavrin::test {
namespace {

using testing::HasSubstr;

/// Over a user's folders, with the file managers that are among the programs.
class FileManagersPanelTest : public WindowFixture {
  protected:
    void install(const std::string& fileManager) {
        ASSERT_EQ(::chmod(user.write("bin/" + fileManager).c_str(), 0755), 0);
    }
    void openPreferences() {
        FileManagerMenus::setSharedInstance(&menus);
        start();
        command("showPreferencesDialog").trigger();
        (void)waitFor("preferencesWindow");
    }
    std::string state(const char* name) { return find<QLabel>(name)->text().toStdString(); }

    TemporaryFolder user;
    Variable userData{"XDG_DATA_HOME", user.path("data").c_str()};
    Variable configuration{"XDG_CONFIG_HOME", user.path("config").c_str()};
    Variable sharedData{"XDG_DATA_DIRS", user.path("shared").c_str()};
    Variable programs{"PATH", user.path("bin").c_str()};
    FileManagerMenus menus{"/opt/bin/tavrin"};
};

TEST_F(FileManagersPanelTest, AddsAndRemovesTheEntriesOfFileManagersThatAreThere) {
    install("thunar");
    install("nautilus");
    install("dolphin");
    user.write("shared/kio/servicemenus/net.calderwick.tavrin.desktop");
    openPreferences();
    EXPECT_EQ(findWidget("menuStateOfNemo"), nullptr);
    EXPECT_EQ(state("menuStateOfThunar"), "no entry");
    EXPECT_EQ(state("menuStateOfDolphin"), "in the menu, for all users");
    EXPECT_FALSE(find<QPushButton>("removeFromMenus")->isEnabled());
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_EQ(menus.state(FileManagerKind::thunar), MenuState::present);
    EXPECT_EQ(state("menuStateOfThunar"), "in the menu");
    EXPECT_EQ(state("menuStateOfNautilus"), "in the menu");
    EXPECT_FALSE(find<QPushButton>("forceServicesMenuUpdate")->isEnabled());
    find<QPushButton>("removeFromMenus")->click();
    EXPECT_EQ(menus.state(FileManagerKind::nautilus), MenuState::absent);
    EXPECT_EQ(state("menuStateOfThunar"), "no entry");
}

TEST_F(FileManagersPanelTest, TellsWhatItMayNotChange) {
    install("thunar");
    user.write("config/Thunar/uca.xml", "<actions>");
    openPreferences();
    EXPECT_EQ(state("menuStateOfThunar"), "not Tavrin's to change");
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_THAT(state("menuFailures"), HasSubstr("uca.xml\" is left alone: it is no list of actions"));
    EXPECT_EQ(user.read("config/Thunar/uca.xml"), "<actions>");
}

} // namespace
} // namespace tavrin::test
