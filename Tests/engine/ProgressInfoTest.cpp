#include "engine/pipeline/ProgressInfo.h"

#include "common/ManualRunLoop.h"
#include "common/Testing.h"

namespace tavrin::test {
namespace {

using std::chrono::milliseconds;

class ProgressInfoTest : public ::testing::Test, public ProgressObserver {
  protected:
    ManualRunLoop loop;
    ProgressInfo progress{loop};
    std::string changes;

    void SetUp() override { progress.setObserver(this); }
    void progressChanged(std::string_view key) override {
        EXPECT_TRUE(loop.isCurrent());
        changes.append(key) += ' ';
    }
    static void onThread(const std::function<void()>& work) { std::thread(work).join(); }
};

TEST_F(ProgressInfoTest, ShowsTheLastTextOfATickOnly) {
    onThread([&] {
        for (int i = 1; i <= 25; ++i)
            progress.updateStageText("stage " + std::to_string(i));
        progress.updateCurrentActionDescription("working");
        progress.updateCurrentItemNumber(7);
    });
    EXPECT_EQ(progress.stageText(), "");
    loop.advance(milliseconds(99));
    EXPECT_EQ(changes, "");
    loop.advance(milliseconds(1));
    EXPECT_EQ(progress.stageText(), "stage 25");
    EXPECT_EQ(progress.currentActionDescription(), "working");
    EXPECT_EQ(changes, "stageText currentActionDescription currentItemNumber itemText ");
    loop.advance(milliseconds(1000));
    progress.updateStageText("stage 25");
    progress.forceUpdate();
    EXPECT_EQ(changes, "stageText currentActionDescription currentItemNumber itemText stageText ")
        << "an idle tick announces nothing, an equal text is announced again";
}

TEST_F(ProgressInfoTest, ARunIsLongAfterThreeSecondsOrSoonerOnASignal) {
    const auto expectLong = [&](int after, bool isLong) {
        loop.advance(milliseconds(after));
        EXPECT_EQ(progress.isLong(), isLong);
    };
    expectLong(2900, false); // the first run has not ended
    expectLong(200, true);
    onThread([&] { progress.updateIsDone(true); });
    expectLong(60000, false);
    onThread([&] { progress.updateIsDone(false); });
    expectLong(2900, false);
    expectLong(200, true);
    progress.updateIsDone(true);
    expectLong(0, false);
    progress.updateIsDone(false);
    onThread([&] { progress.signalQuickSwitchToLongProcessingMode(); });
    expectLong(100, false);
    expectLong(200, true);
}

TEST_F(ProgressInfoTest, AnnouncesTheStateOnTheMainThreadWhileItLives) {
    onThread([&] {
        progress.updateIsDone(false);
        progress.setNumberOfItems(12);
        progress.updateCurrentItemNumber(3);
    });
    loop.runPosted();
    EXPECT_EQ(changes, "isDone numberOfItems ");
    progress.forceUpdate();
    EXPECT_EQ(progress.itemText(), "3 out of 12 items");
    onThread([&] { progress.updateIsIndeterminate(true); });
    EXPECT_TRUE(progress.isIndeterminate());
    EXPECT_EQ(progress.itemText(), "");
    changes.clear();
    loop.runPosted();
    EXPECT_EQ(changes, "isIndeterminate itemText ");
    auto shortLived = std::make_unique<ProgressInfo>(loop);
    shortLived->setObserver(this);
    onThread([&] { shortLived->updateIsDone(true); });
    shortLived.reset();
    changes.clear();
    loop.runPosted();
    EXPECT_EQ(changes, "");
}

TEST_F(ProgressInfoTest, TextsPerItemAreWantedOncePerTick) {
    for (int tick = 0; tick < 2; ++tick) {
        EXPECT_TRUE(progress.wantsItemDescription());
        EXPECT_FALSE(progress.wantsItemDescription());
        loop.advance(milliseconds(100));
    }
}

} // namespace
} // namespace tavrin::test
