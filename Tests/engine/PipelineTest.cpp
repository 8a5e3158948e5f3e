#include "StageTest.h"
#include "common/LogRecorder.h"
#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/reading/CleanUpStages.h"
#include "platform/files/SandboxHelper.h"
#include "store/paging/StoreError.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

namespace tavrin::test {
namespace {

/// A stage that does what the test wants.
class LambdaStage : public ProcessingStage {
  public:
    using Work = std::function<bool(StoreContext&)>;
    LambdaStage(RenameEngine& owner, Work newWork) : ProcessingStage(owner), work(std::move(newWork)) {}
    [[nodiscard]] std::string className() const override { return "LambdaStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Working..."; }
    bool process() override { return work(*context); }

  private:
    Work work;
};

class PipelineTest : public StageTest {
  protected:
    ProcessingPipeline pipeline{host.engine};

    void SetUp() override {
        SandboxHelper::setApplicationSupportFolderPath(folder.path("data"));
        pipeline.setProgressInfo(&host.progress);
    }
    void TearDown() override { SandboxHelper::setApplicationSupportFolderPath(std::nullopt); }

    void addStage(LambdaStage::Work work) {
        pipeline.addStage(std::make_unique<LambdaStage>(host.engine, std::move(work)));
    }
    bool process() {
        bool result = false;
        host.onWorker([&] { result = pipeline.process(); });
        host.loop.runPosted();
        host.progress.forceUpdate();
        return result;
    }
};

TEST_F(PipelineTest, WithoutStagesItIsDoneAtOnce) {
    EXPECT_TRUE(process());
    EXPECT_TRUE(host.progress.isDone());
    EXPECT_EQ(host.progress.stageText(), "Done.");
}

TEST_F(PipelineTest, WithoutAStoreNothingChanges) {
    host.dropStore();
    addStage([](StoreContext&) { return true; });
    EXPECT_FALSE(process());
    EXPECT_FALSE(host.progress.isDone());
    EXPECT_EQ(host.progress.stageText(), "");
}

TEST_F(PipelineTest, AStageMayInterrupt) {
    std::vector<int> ran;
    addStage([&](StoreContext& context) {
        ran.push_back(1);
        context.insertProcessingError({"kept", "", ""});
        return false;
    });
    addStage([&](StoreContext&) {
        ran.push_back(2);
        return true;
    });
    LogRecorder log;
    EXPECT_FALSE(process());
    EXPECT_EQ(ran, std::vector<int>{1});
    EXPECT_EQ(log.count("ProcessingPipeline interrupted by stage: LambdaStage"), 1U);
    EXPECT_EQ(host.progress.stageText(), "Done.");
    EXPECT_TRUE(host.progress.isDone());
    EXPECT_EQ(host.errors(), std::vector<std::string>{"kept |  | "}) << "committed all the same";
}

TEST_F(PipelineTest, EachStageIsCommittedAndTimed) {
    for (int stage = 1; stage <= 3; ++stage) {
        addStage([=, this](StoreContext& context) {
            EXPECT_EQ(host.errors().size(), stage - 1U);
            EXPECT_EQ(context.processingErrors().size(), stage - 1U);
            context.insertProcessingError({std::to_string(stage), "", ""});
            return true;
        });
    }
    LogRecorder log;
    EXPECT_TRUE(process());
    EXPECT_EQ(host.errors().size(), 3U);
    EXPECT_EQ(log.count("pipeline contains 3 stages"), 1U);
    EXPECT_EQ(log.count("--> Stage 3: LambdaStage took "), 1U);
    EXPECT_EQ(log.count("InMemory"), 1U);
    EXPECT_FALSE(host.errors().empty());
}

/// A stage fails on a store in a file: everything is run again in memory.
class FailoverTest : public ::testing::TestWithParam<int> {
  protected:
    TemporaryFolder folder;
    EngineTestHost host{EngineTestHost::inFile(folder.path())};
};

TEST_P(FailoverTest, MovesIntoMemoryAndRunsAgain) {
    host.add({folder.write("a"), folder.write("b")});
    host.preview();
    ASSERT_EQ(host.finalNames().size(), 2U);
    host.events.clear();

    std::vector<int> ran;
    ProcessingPipeline pipeline(host.engine);
    pipeline.setProgressInfo(&host.progress);
    for (int number = 1; number <= 3; ++number) {
        pipeline.addStage(std::make_unique<LambdaStage>(host.engine, [&, number](StoreContext& context) {
            ran.push_back(number);
            if (number == GetParam() && context.store().kind() == ItemStore::Kind::file)
                throw StoreError("disk I/O error");
            return true;
        }));
    }
    bool result = false;
    host.onWorker([&] { result = pipeline.process(); });
    host.loop.runPosted();
    EXPECT_TRUE(result);
    std::vector<int> expected;
    for (int number = 1; number <= GetParam(); ++number)
        expected.push_back(number);
    expected.insert(expected.end(), {1, 2, 3});
    EXPECT_EQ(ran, expected);
    EXPECT_EQ(host.defaults.integerForKey("store"), 1);
    EXPECT_TRUE(host.defaults.boolForKey("hasFailedOnSQLiteStoreBefore"));
    EXPECT_EQ(host.events, std::vector<std::string>{"updatePreview"});
    EXPECT_TRUE(host.finalNames().empty()) << "rows do not survive the move";
    EXPECT_FALSE(host.engine.busyMigratingStore());
    EXPECT_TRUE(host.prompts.asked.empty());

    host.preview();
    EXPECT_EQ(host.finalNames().size(), 2U) << "source items do, as unread ones";
}

INSTANTIATE_TEST_SUITE_P(AtStage, FailoverTest, ::testing::Values(1, 2, 3));

TEST_F(PipelineTest, AFailureInMemoryIsFinal) {
    std::vector<std::string> seen;
    host.prompts.onPipelineFailed = [&](const PipelineFailure& failure) {
        seen = {failure.title, failure.text};
        EXPECT_FALSE(std::filesystem::exists(folder.path("data/TVRN_error_report.txt")));
        return ConfirmationChoice::one;
    };
    int runs = 0;
    addStage([&](StoreContext&) -> bool {
        ++runs;
        throw std::out_of_range("beyond the end");
    });
    EXPECT_FALSE(process());
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(seen,
              (std::vector<std::string>{"Processing Pipeline Failed.",
                                        "There was an unrecoverable error during "
                                        "processing.\n\nRestarting the application will usually resolve "
                                        "such problems."}));
    const std::string report = folder.read("data/TVRN_error_report.txt");
    EXPECT_NE(report.find("Exception caught in the LambdaStage stage of ProcessingPipeline:\nout_of_range: "
                          "beyond the end\n"),
              std::string::npos);
    EXPECT_EQ(report.find("Stack Trace"), std::string::npos);
    ASSERT_FALSE(host.events.empty());
    EXPECT_EQ(host.events.back(), "terminate");
}

TEST_F(PipelineTest, CleaningUpDeletesInBatches) {
    constexpr int errors = 4500;
    {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        for (int i = 0; i < errors; ++i)
            context.insertProcessingError({"t", "m", std::to_string(i)});
        const RowId top = context.insertGhostNode("/a");
        for (int i = 0; i < errors; ++i)
            context.insertFile(top, std::to_string(i), true, false, i);
        context.commit();
    }
    pipeline.addStage(std::make_unique<CleanUpProcessingErrorsStage>(host.engine));
    pipeline.addStage(std::make_unique<CleanUpFilesStage>(host.engine));
    LogRecorder log;
    EXPECT_TRUE(process());
    EXPECT_EQ(log.count("2000 errors cleaned up. Committing.."), 1U);
    EXPECT_EQ(log.count("4500 errors cleaned up. Committing.."), 1U);
    EXPECT_EQ(log.count("4501 files cleaned up. Committing.."), 1U);
    EXPECT_TRUE(host.finalNames().empty());
    EXPECT_TRUE(host.errors().empty());
}

} // namespace
} // namespace tavrin::test
