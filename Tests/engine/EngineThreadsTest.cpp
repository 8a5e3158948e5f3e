#include "StageTest.h"
#include "common/LogRecorder.h"
#include "engine/asking/UserQuestions.h"

#include <atomic>
#include <map>
#include <set>
#include <thread>

namespace tavrin::test {
namespace {

using Events = std::vector<std::string>;

class EngineThreadsTest : public StageTest {};

TEST_F(EngineThreadsTest, ABurstOfPreviewsBecomesOneMoreRun) {
    constexpr std::size_t burst = 10;
    const Events one{"refreshPreview", "showStats"};
    host.preview();
    EXPECT_EQ(host.events, one) << "an empty list is shown too";
    host.add({folder.write("a")});
    host.events.clear();
    LogRecorder log;
    host.onEvent = [&](const std::string&) {
        host.onEvent = nullptr;
        // The first run still holds the engine's lock: all of these come to wait behind it.
        for (std::size_t i = 0; i < burst; ++i)
            host.engine.processPreviewPipeline(host.progress);
        EXPECT_TRUE(log.waitFor("waiting for renameEngine lock", 1 + burst));
        EXPECT_TRUE(host.engine.isPreviewWaiting());
    };
    host.preview();
    EXPECT_EQ(host.events, (Events{"refreshPreview", "showStats", "refreshPreview", "showStats"}));
    host.events.clear();
    host.preview();
    EXPECT_EQ(host.events, one) << "the count is back at none";
}

TEST_F(EngineThreadsTest, EachKindOfRunEndsWithItsCallbacks) {
    host.add({folder.write("a")});
    host.preview();
    const auto eventsOf = [&](const std::function<void()>& start) {
        host.events.clear();
        start();
        host.waitUntilIdle();
        return host.events;
    };
    EXPECT_EQ(eventsOf([&] { host.engine.processRenamingPipelineThenContinue(host.progress); }),
              (Events{"startProgressWindow", "stopProgressWindow", "reloadPreview", "showCompletionDialog"}));
    EXPECT_TRUE(host.finalNames().empty()) << "a run that continues drops the rows";
    EXPECT_EQ(eventsOf([&] { host.engine.processRenamingPipelineThenQuit(host.progress); }),
              (Events{"startProgressWindow", "stopProgressWindow", "showCompletionDialog", "terminate"}));
    EXPECT_EQ(eventsOf([&] { host.saveList(1, false, folder.path("list")); }),
              (Events{"startProgressWindow", "stopProgressWindow", "refreshPreview",
                      "showFileListSavingCompletionDialog 1"}));
    EXPECT_EQ(eventsOf([&] { host.engine.processRenamingPipelineThenClearList(host.progress); }),
              (Events{"startProgressWindow", "stopProgressWindow", "showCompletionDialog", "clearList"}));
}

/// A pass marks what it has handled: until its marker comes again a hundred passes go by.
TEST_F(EngineThreadsTest, PassMarkersHaveTheirPeriod) {
    EXPECT_EQ(host.engine.nextStageFlagCounter(), 2);
    std::set<PassMarker> markers{2};
    for (int i = 1; i < 100; ++i)
        EXPECT_TRUE(markers.insert(host.engine.nextStageFlagCounter()).second);
    EXPECT_EQ(*markers.rbegin(), 99);
    EXPECT_EQ(host.engine.nextStageFlagCounter(), 2);
}

TEST_F(EngineThreadsTest, ARequestToStopEndsWithTheNextRename) {
    EXPECT_FALSE(host.engine.isStopRequested());
    host.engine.requestStop();
    EXPECT_TRUE(host.engine.isStopRequested());
    host.renameThenContinue();
    EXPECT_FALSE(host.engine.isStopRequested());
}

/// The list changes while a preview runs, at each of its log lines in turn.
TEST_F(EngineThreadsTest, ItemsMayComeAndGoDuringARun) {
    folder.write("d/x");
    folder.write("e/y");
    bool reachedTheEnd = false;
    std::size_t at = 1;
    for (; !reachedTheEnd; ++at) {
        EngineTestHost one;
        one.set("processSubfolders", 1);
        one.setSteps({{"Make uppercase", {}}, {"Produce numbered list", {{"sortEachFolderSeparately", 1}}}});
        one.add({folder.path("d"), folder.write("a"), folder.write("b")});
        one.preview();
        one.add({folder.path("e"), folder.write("f/c")});
        LogRecorder log;
        std::size_t lines = 0;
        log.onLine = [&](std::string_view) {
            if (one.loop.isCurrent() || ++lines != at)
                return;
            one.loop.performAndWait([&] {
                for (const char* name : {"d", "b", "e", "f/c"})
                    one.sourceItems.removeItem(folder.path(name));
                one.add({folder.write("g")});
            });
        };
        one.preview();
        reachedTheEnd = lines < at;
        one.preview();
        std::map<std::string, std::string> names = one.finalNames();
        ASSERT_EQ(one.errors(), Events{}) << at;
        ASSERT_EQ(names.count(folder.path("a")), 1U) << at;
        if (!reachedTheEnd) {
            ASSERT_EQ(names.count(folder.path("g")), 1U) << at;
            ASSERT_EQ(names.count(folder.path("b")), 0U) << at;
        }
    }
    EXPECT_GT(at, 30U);
}

TEST(EngineEndTest, AWorkerThatWaitsForTheMainThreadIsFreed) {
    TemporaryFolder folder;
    LogRecorder log;
    EngineTestHost host;
    host.add({folder.write("a")});
    host.engine.processPreviewPipeline(host.progress);
    // Nobody runs the loop, so the run comes to stand where it asks for the list of actions; the test ends.
    ASSERT_TRUE(log.waitFor("Computing new file names...", 1));
}

/// Ways in which a question ends, and what the worker hears.
TEST(QuestionTest, IsAlwaysAnswered) {
    struct Host : EngineTestHost {
        void ask(const RunQuestion&, const ConfirmationAnswerPointer& answer) override { respond(answer); }
        std::function<void(const ConfirmationAnswerPointer&)> respond;
    } host;
    ConfirmationChoice heard = ConfirmationChoice::leaveOut;
    const auto ask = [&] { heard = askUser(host, NameCycleQuestion{"/f"}); };
    host.respond = [](const auto& answer) {
        answer->give(ConfirmationChoice::all);
        answer->give(ConfirmationChoice::one);
    };
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::all) << "the first answer counts";
    host.respond = [](const auto&) {};
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::stop) << "nobody answers";
    host.respond = [](const auto& answer) { answer->give(ConfirmationChoice::all); };
    host.loop.close();
    std::thread(ask).join();
    EXPECT_EQ(heard, ConfirmationChoice::stop) << "the loop has ended";
}

} // namespace
} // namespace tavrin::test
