#include "RenameBench.h"
#include "common/LogRecorder.h"
#include "common/ManualRunLoop.h"
#include "engine/asking/ErrorReportManager.h"
#include "engine/asking/UserQuestions.h"
#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/CleanUpStages.h"
#include "platform/files/SandboxHelper.h"
#include "store/paging/StoreError.h"

namespace tavrin::test {
namespace {

/// A stage that does what the test wants.
class LambdaStage : public ProcessingStage {
  public:
    using Work = std::function<bool(StoreContext&)>;
    LambdaStage(EngineState& owner, Work newWork) : ProcessingStage(owner), work(std::move(newWork)) {}
    [[nodiscard]] std::string className() const override { return "LambdaStage"; }
    bool process() override { return work(*context); }

  private:
    Work work;
};

class PipelineTest : public StageTest {
  protected:
    void SetUp() override { SandboxHelper::setApplicationSupportFolderPath(folder.path("data")); }
    void TearDown() override { SandboxHelper::setApplicationSupportFolderPath(std::nullopt); }

    /// Runs a pipeline of stages that do these.
    static bool process(EngineTestHost& on, const std::vector<LambdaStage::Work>& stages) {
        ProcessingPipeline pipeline(on.engine);
        pipeline.setProgressInfo(&on.progress);
        for (const LambdaStage::Work& work : stages)
            pipeline.addStage(std::make_unique<LambdaStage>(on.engine, work));
        bool result = false;
        on.onWorker([&] { result = pipeline.process(); });
        on.loop.runPosted();
        on.progress.forceUpdate();
        return result;
    }
};

TEST_F(PipelineTest, WithoutAStoreNothingChanges) {
    host.dropStore();
    EXPECT_FALSE(process(host, {[](StoreContext&) { return true; }}));
    EXPECT_FALSE(host.progress.isDone());
    EXPECT_EQ(host.progress.stageText(), "");
}

TEST_F(PipelineTest, EachStageIsCommittedAndMayInterrupt) {
    for (const std::size_t last : {1U, 3U, 4U}) {
        const LambdaStage::Work stage = [=](StoreContext& context) {
            context.insertProcessingError({"", "", ""});
            return context.processingErrors().size() < last;
        };
        EXPECT_EQ(process(host, {stage, stage, stage}), last == 4);
        EXPECT_EQ(host.errors().size(), std::min(last, std::size_t{3}));
        EXPECT_TRUE(host.progress.isDone());
        EXPECT_EQ(host.progress.stageText(), "Done.");
        EXPECT_TRUE(run<CleanUpProcessingErrorsStage>());
    }
}

/// A stage fails on a store in a file: everything is run again in memory.
TEST_F(PipelineTest, AFailureOfAFileMovesIntoMemoryAndRunsAgain) {
    for (const int failing : {1, 2, 3}) {
        EngineTestHost inFile(EngineTestHost::inFile(folder.path()));
        inFile.add({folder.write("a"), folder.write("b")});
        inFile.preview();
        ASSERT_EQ(inFile.finalNames().size(), 2U);
        inFile.events.clear();
        std::string ran;
        std::vector<LambdaStage::Work> stages;
        for (const int number : {1, 2, 3}) {
            stages.emplace_back([&, number](StoreContext& context) {
                ran += std::to_string(number);
                if (number != failing || context.store().kind() != ItemStore::Kind::file)
                    return true;
                context.insertProcessingError({"", "", "told before"});
                throw StoreError("disk I/O error");
            });
        }
        EXPECT_TRUE(process(inFile, stages));
        EXPECT_EQ(ran, std::string("123").substr(0, static_cast<std::size_t>(failing)) + "123");
        EXPECT_EQ(inFile.errors().size(), 1U);
        EXPECT_EQ(inFile.defaults.integerForKey("store"), 1);
        EXPECT_TRUE(inFile.defaults.boolForKey("hasFailedOnSQLiteStoreBefore"));
        EXPECT_EQ(inFile.events, std::vector<std::string>{"updatePreview"});
        EXPECT_TRUE(inFile.finalNames().empty()) << "rows do not survive the move";
        EXPECT_FALSE(inFile.engine.busyMigratingStore());
        inFile.preview();
        EXPECT_EQ(inFile.finalNames().size(), 2U) << "source items do, as unread ones";
    }
}

TEST_F(PipelineTest, ARenameThatLosesItsRowsIsBrokenOff) {
    BrokenHost broken(folder.path());
    broken.host.engine.processRenamingPipelineThenContinue(broken.host.progress);
    broken.host.waitUntilIdle();
    EXPECT_THAT(broken.host.errors(), ElementsAre(StartsWith("The renaming was broken off")));
}

TEST_F(PipelineTest, AFailureInMemoryIsFinal) {
    host.add({folder.write("a")});
    host.preview();
    int told = 0;
    host.prompts.onPipelineFailed = [&](const PipelineFailure& failure) {
        ++told;
        EXPECT_EQ(failure.title, "Processing Pipeline Failed.");
        EXPECT_TRUE(failure.text.starts_with("There was an unrecoverable error during processing."));
        return ConfirmationChoice::one;
    };
    int runs = 0;
    EXPECT_FALSE(process(host, {[&](StoreContext&) -> bool {
                             ++runs;
                             throw std::out_of_range("beyond the end");
                         }}));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(told, 1);
    EXPECT_NE(folder.read("data/TVRN_error_report.txt")
                  .find("Exception caught in the LambdaStage stage of ProcessingPipeline:\nout_of_range: "
                        "beyond the end\n"),
              std::string::npos);
    EXPECT_EQ(host.events.back(), "terminate");
    EXPECT_FALSE(host.engine.busyMigratingStore());
    EXPECT_EQ(host.finalNames().size(), 1U) << "a store in memory is not moved";
}

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
    // Nobody runs the loop, so the run comes to stand where it asks what the actions need; the test ends.
    ASSERT_TRUE(log.waitFor("Retrieving sorting information...", 1));
}

TEST(QuestionTest, IsAlwaysAnswered) {
    struct Host : EngineTestHost {
        void ask(const RunQuestion&, const ConfirmationAnswerPointer& answer) override {
            for (const ConfirmationChoice choice : answers)
                answer->give(choice);
        }
        std::vector<ConfirmationChoice> answers{ConfirmationChoice::all, ConfirmationChoice::one};
    } host;
    ConfirmationChoice heard = ConfirmationChoice::leaveOut;
    const auto ask = [&] { heard = askUser(host, NameCycleQuestion{"/f"}); };
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::all) << "the first answer counts";
    host.answers.clear();
    host.onWorker(ask);
    EXPECT_EQ(heard, ConfirmationChoice::stop) << "nobody answers";
}

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

class ErrorReportTest : public StageTest {
  protected:
    void SetUp() override { SandboxHelper::setApplicationSupportFolderPath(folder.path("data/Tavrin 9")); }
    void TearDown() override { SandboxHelper::setApplicationSupportFolderPath(std::nullopt); }

    /// The parts must follow each other in this order, from the front.
    void expectReport(const std::vector<std::string>& parts) const {
        const std::string text = folder.read("data/Tavrin 9/TVRN_error_report.txt");
        EXPECT_TRUE(text.starts_with(parts.front()));
        std::size_t at = 0;
        for (const std::string& part : parts) {
            const std::size_t found = text.find(part, at);
            ASSERT_NE(found, std::string::npos) << part;
            at = found + part.size();
        }
    }
};

TEST_F(ErrorReportTest, HoldsItsPartsInOrder) {
    host.add({folder.write("a/x"), folder.write("b/y")});
    host.preview();
    folder.write("data/Tavrin 9/TVRN_error_report.txt", "an earlier report");
    host.onWorker(
        [&] { ErrorReportManager(host).writeErrorReportWithString("the body\n\n", "the title\n\n"); });
    expectReport({"the title\n\nVersion: ", " Time: ", "\n\nthe body\n\n",
                  "----- Database Dump ---------\n\nEngineControl: 0\nsourceItems:\n" + folder.path("a/x") +
                      "\n" + folder.path("b/y") + "\n\nNodes:\n",
                  "File at " + folder.path("a/x") + "\n", "File at " + folder.path("b/y") + "\n",
                  "\n----- System Survey ---------\n", "Linux", "----- Folders ---------"});
    EXPECT_EQ(host.events.back(), "revealReport " + ErrorReportManager::reportPath());
    ErrorReportManager(host).writeErrorReport();
    expectReport({"This report contains information designed to", "make Tavrin 9 an even better product",
                  "GhostNode at " + folder.path("a") + "\n"});
    BrokenHost broken(folder.path());
    ErrorReportManager(broken.host).writeErrorReportWithException(StoreError("it broke"));
    expectReport({"This is an error report that", "support@tavrin.example.", "Version: ",
                  "Exception caught:\nStoreError: it broke\n", "database dump failed.\n", "System Survey"});
}

TEST_F(ErrorReportTest, CommandsAreReadInTheirOldEncoding) {
    const std::pair<const char*, const char*> cases[] = {
        {"echo plain; exit 3", "plain\n"},
        {R"(printf '\241\263\351\377')", "\u0104\u0142\u00e9\u02d9"},
        {"echo seen; echo unseen >/dev/null", "seen\n"},
        {"no-such-command-at-all", ""},
    };
    for (const auto& [command, output] : cases)
        EXPECT_EQ(ErrorReportManager::runWithCommand(command), output) << command;
    EXPECT_EQ(ErrorReportManager::runWithCommand("head -c 3000000 /dev/zero | tr '\\0' x").size(), 1U << 20);
}

} // namespace
} // namespace tavrin::test
