#include "StageTest.h"
#include "common/LogRecorder.h"
#include "engine/asking/UserQuestions.h"

#include <map>
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
    const auto expectEvents = [&](void (RenameEngine::*start)(ProgressInfo&), const Events& events) {
        host.events.clear();
        host.engine.requestStop();
        EXPECT_TRUE(host.engine.isStopRequested());
        (host.engine.*start)(host.progress);
        host.waitUntilIdle();
        EXPECT_FALSE(host.engine.isStopRequested()) << "it ends with the next rename";
        EXPECT_EQ(host.events, events);
    };
    expectEvents(&RenameEngine::processRenamingPipelineThenContinue,
                 {"startProgressWindow", "stopProgressWindow", "reloadPreview", "showCompletionDialog"});
    EXPECT_TRUE(host.finalNames().empty()) << "a run that continues drops the rows";
    expectEvents(&RenameEngine::processRenamingPipelineThenQuit,
                 {"startProgressWindow", "stopProgressWindow", "showCompletionDialog", "terminate"});
    expectEvents(&RenameEngine::processRenamingPipelineThenClearList,
                 {"startProgressWindow", "stopProgressWindow", "showCompletionDialog", "clearList"});
    host.events.clear();
    host.saveList(1, false, folder.path("list"));
    EXPECT_EQ(host.events, (Events{"startProgressWindow", "stopProgressWindow", "refreshPreview",
                                   "showFileListSavingCompletionDialog 1"}));
}

/// A pass marks what it has handled: until its marker comes again a hundred passes go by.
TEST_F(EngineThreadsTest, PassMarkersHaveTheirPeriod) {
    for (int pass = 2; pass < 202; ++pass)
        EXPECT_EQ(host.engine.nextStageFlagCounter(), pass % 100);
}

/// The list changes while a preview runs, at each of its log lines in turn.
TEST_F(EngineThreadsTest, ItemsMayComeAndGoDuringARun) {
    for (const char* name : {"d/x", "e/y", "a", "b", "f/c", "g"})
        folder.write(name);
    bool reachedTheEnd = false;
    std::size_t at = 1;
    for (; !reachedTheEnd; ++at) {
        SCOPED_TRACE(at);
        EngineTestHost one;
        one.set("processSubfolders", 1);
        one.setSteps({{"Make uppercase", {}}, {"Produce numbered list", {{"sortEachFolderSeparately", 1}}}});
        one.add({folder.path("d"), folder.path("a"), folder.path("b")});
        one.preview();
        one.add({folder.path("e"), folder.path("f/c")});
        LogRecorder log;
        std::size_t lines = 0;
        log.onLine = [&](std::string_view) {
            if (one.loop.isCurrent() || ++lines != at)
                return;
            one.loop.performAndWait([&] {
                for (const char* name : {"d", "b", "e", "f/c"})
                    one.sourceItems.removeItem(folder.path(name));
                one.add({folder.path("g")});
            });
        };
        one.preview();
        reachedTheEnd = lines < at;
        one.preview();
        const std::map<std::string, std::string> names = one.finalNames();
        ASSERT_EQ(one.errors(), Events{});
        ASSERT_TRUE(names.contains(folder.path("a")));
        ASSERT_TRUE(reachedTheEnd || (names.contains(folder.path("g")) && !names.contains(folder.path("b"))));
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
        void ask(const RunQuestion&, const ConfirmationAnswerPointer& answer) override {
            for (const ConfirmationChoice choice : answers)
                answer->give(choice);
        }
        std::vector<ConfirmationChoice> answers{ConfirmationChoice::all, ConfirmationChoice::one};
    } host;
    std::vector<ConfirmationChoice> unanswered;
    ConfirmationChoice heard = ConfirmationChoice::leaveOut;
    const auto ask = [&] { heard = askUser(host, NameCycleQuestion{"/f"}); };
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::all) << "the first answer counts";
    std::swap(host.answers, unanswered);
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::stop) << "nobody answers";
    std::swap(host.answers, unanswered);
    host.loop.close();
    std::thread(ask).join();
    EXPECT_EQ(heard, ConfirmationChoice::stop) << "the loop has ended";
}

} // namespace
} // namespace tavrin::test
