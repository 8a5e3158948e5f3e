#include "engine/history/RunHistory.h"
#include "shell/ShellFixture.h"

#include <filesystem>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TakeBackCommandsTest : public ShellFixture {
  protected:
    TakeBackCommandsTest() { options.history = {data.path("runs"), "window"}; }

    void renameTwo() {
        start();
        set("interactiveMode", 0);
        setSteps({{"Make uppercase", {{"fragmentSelection", 0}}}});
        controller().addFilePaths({files.write("box/a"), files.write("box/b")}, true);
        waitForPreview();
        frontEnd.expect("alert summary");
        controller().ok();
        waitUntilIdle();
        waitForPreview();
        ASSERT_THAT(table(), ElementsAre("A > A", "B > B"));
    }
    TakeBackCommands& commands() { return controller().takeBackCommands(); }
    PastRun newestRun() { return RunHistory(options.history.folder).runs().front(); }
};

TEST_F(TakeBackCommandsTest, ShowsWhatGoesBackDoesItAndTheListFollows) {
    renameTwo();
    EXPECT_EQ(commands().description(RunKind::undo), "Undo Rename of 2 Items in box");
    EXPECT_EQ(commands().description(RunKind::redo), "");
    // Asked first, and nothing happens without a yes.
    frontEnd.expect("take back Undo Rename of 2 Items in box?", false);
    commands().takeBack(RunKind::undo);
    commands().takeBack(RunKind::undo); // a question at a time
    waitUntilIdle();
    waitUntilIdle();
    ASSERT_TRUE(frontEnd.takeBack);
    EXPECT_EQ(frontEnd.takeBack->rows.size(), 2U);
    EXPECT_EQ(frontEnd.takeBack->rows.front().newName, u"a");
    EXPECT_TRUE(files.kind("box/A"));
    frontEnd.expect("take back Undo Rename of 2 Items in box?", true);
    frontEnd.expect("alert summary");
    commands().takeBack(RunKind::undo);
    waitUntilIdle();
    waitUntilIdle();
    EXPECT_EQ(frontEnd.alerts.back().title, "2 file names were changed.");
    EXPECT_TRUE(files.kind("box/a") && files.kind("box/b") && !files.kind("box/A"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a > A", "b > B"));
    EXPECT_EQ(commands().description(RunKind::redo), "Redo Rename of 2 Items in box");
    // Nothing more to undo is said, not passed over.
    frontEnd.expect("alert nothingToTakeBack");
    commands().takeBack(RunKind::undo);
    waitUntilIdle();
    EXPECT_TRUE(frontEnd.isScriptOver());
    EXPECT_EQ(newestRun().heading.who, "window");
}

TEST_F(TakeBackCommandsTest, AnInterruptedRunIsToldAtTheStart) {
    renameTwo();
    const std::string record = newestRun().path.substr(data.path().size() + 1);
    const std::string text = data.read(record);
    data.write(record, text.substr(0, text.rfind("done\t")));
    std::filesystem::rename(files.path("box/B"), files.path("box/b"));
    frontEnd.expect("alert interruptedRun", AlertAnswer{1});
    frontEnd.expect("take back Finish Rename in box?", true);
    frontEnd.expect("alert summary");
    commands().tellInterruptedRun();
    waitUntilIdle();
    waitUntilIdle();
    EXPECT_TRUE(frontEnd.isScriptOver());
    EXPECT_TRUE(files.kind("box/A") && files.kind("box/B"));
    commands().tellInterruptedRun(); // seen to: no word of it
    waitUntilIdle();
}

} // namespace
} // namespace tavrin::test
