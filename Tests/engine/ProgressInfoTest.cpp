#include "engine/pipeline/ProgressInfo.h"

#include "common/ManualRunLoop.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace tavrin::test {
namespace {

using std::chrono::milliseconds;

class ProgressInfoTest : public ::testing::Test, public ProgressObserver {
  protected:
    ManualRunLoop loop;
    ProgressInfo progress{loop};
    std::vector<std::string> changes;

    void SetUp() override { progress.setObserver(this); }
    void progressChanged(std::string_view key) override {
        EXPECT_TRUE(loop.isCurrent());
        changes.emplace_back(key);
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
    EXPECT_TRUE(changes.empty());
    loop.advance(milliseconds(1));
    EXPECT_EQ(progress.stageText(), "stage 25");
    EXPECT_EQ(progress.currentActionDescription(), "working");
    EXPECT_EQ(changes, (std::vector<std::string>{"stageText", "currentActionDescription", "currentItemNumber",
                                                 "itemText"}));
    loop.advance(milliseconds(1000));
    EXPECT_EQ(changes.size(), 4U) << "an idle tick announces nothing";
    progress.updateStageText("stage 25");
    progress.forceUpdate();
    EXPECT_EQ(changes.back(), "stageText") << "an equal text is announced again";
}

TEST_F(ProgressInfoTest, ForceUpdateShowsTheNumberAtOnce) {
    onThread([&] {
        progress.setNumberOfItems(12);
        progress.updateCurrentItemNumber(3);
    });
    progress.forceUpdate();
    EXPECT_EQ(progress.itemText(), "3 out of 12 items");
    onThread([&] { progress.updateIsIndeterminate(true); });
    EXPECT_EQ(progress.itemText(), "");
}

TEST_F(ProgressInfoTest, ARunIsLongAfterThreeSecondsOrSoonerOnASignal) {
    struct Step {
        const char* what;
        int milliseconds;
        bool isLong;
    };
    const auto expect = [&](const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            loop.advance(milliseconds(step.milliseconds));
            EXPECT_EQ(progress.isLong(), step.isLong) << step.what;
        }
    };
    expect({{"the first run has not ended", 2900, false}, {"it still has not", 200, true}});
    onThread([&] { progress.updateIsDone(true); });
    expect({{"no run", 60000, false}});
    onThread([&] { progress.updateIsDone(false); });
    expect({{"just begun", 2900, false}, {"long", 200, true}});
    progress.updateIsDone(true);
    expect({{"done", 0, false}});
    progress.updateIsDone(false);
    onThread([&] { progress.signalQuickSwitchToLongProcessingMode(); });
    expect({{"soon", 100, false}, {"now", 200, true}});
}

TEST_F(ProgressInfoTest, AnnouncesTheStateOnTheMainThread) {
    onThread([&] {
        progress.updateIsDone(false);
        progress.updateIsIndeterminate(true);
        progress.setNumberOfItems(1);
    });
    EXPECT_TRUE(progress.isIndeterminate());
    loop.runPosted();
    EXPECT_EQ(changes, (std::vector<std::string>{"isDone", "isIndeterminate", "itemText", "numberOfItems"}));
}

TEST_F(ProgressInfoTest, TextsPerItemAreWantedOncePerTick) {
    EXPECT_TRUE(progress.wantsItemDescription());
    EXPECT_FALSE(progress.wantsItemDescription());
    loop.advance(milliseconds(100));
    EXPECT_TRUE(progress.wantsItemDescription());
    EXPECT_FALSE(progress.wantsItemDescription());
}

TEST_F(ProgressInfoTest, AnnouncementsOnTheirWayOutliveTheRecord) {
    auto shortLived = std::make_unique<ProgressInfo>(loop);
    shortLived->setObserver(this);
    onThread([&] { shortLived->updateIsDone(true); });
    shortLived.reset();
    loop.runPosted();
    EXPECT_TRUE(changes.empty());
}

} // namespace
} // namespace tavrin::test
