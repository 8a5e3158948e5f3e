#include "StageTest.h"
#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/reading/CleanUpStages.h"
#include "platform/files/SandboxHelper.h"
#include "store/paging/StoreError.h"

#include <functional>
#include <memory>
#include <stdexcept>

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
    std::unique_ptr<ProcessingPipeline> pipeline;

    void SetUp() override {
        SandboxHelper::setApplicationSupportFolderPath(folder.path("data"));
        begin(host);
    }
    void TearDown() override { SandboxHelper::setApplicationSupportFolderPath(std::nullopt); }

    void begin(EngineTestHost& on) {
        pipeline = std::make_unique<ProcessingPipeline>(on.engine);
        pipeline->setProgressInfo(&on.progress);
    }
    void addStage(LambdaStage::Work work) {
        pipeline->addStage(std::make_unique<LambdaStage>(host.engine, std::move(work)));
    }
    static bool process(EngineTestHost& on, ProcessingPipeline& pipeline) {
        bool result = false;
        on.onWorker([&] { result = pipeline.process(); });
        on.loop.runPosted();
        on.progress.forceUpdate();
        return result;
    }
    bool process() { return process(host, *pipeline); }
};

TEST_F(PipelineTest, WithoutAStoreNothingChanges) {
    host.dropStore();
    addStage([](StoreContext&) { return true; });
    EXPECT_FALSE(process());
    EXPECT_FALSE(host.progress.isDone());
    EXPECT_EQ(host.progress.stageText(), "");
}

TEST_F(PipelineTest, EachStageIsCommittedAndMayInterrupt) {
    for (const int last : {0, 1, 3}) {
        begin(host);
        for (int stage = 1; stage <= 3; ++stage) {
            addStage([=](StoreContext& context) {
                EXPECT_EQ(context.processingErrors().size(), stage - 1U);
                context.insertProcessingError({std::to_string(stage), "", ""});
                return stage != last;
            });
        }
        EXPECT_EQ(process(), last == 0);
        EXPECT_EQ(host.errors().size(), last == 0 ? 3U : last);
        EXPECT_TRUE(host.progress.isDone());
        EXPECT_EQ(host.progress.stageText(), "Done.");
        EXPECT_TRUE(run<CleanUpProcessingErrorsStage>());
    }
}

/// A stage fails on a store in a file: everything is run again in memory.
TEST_F(PipelineTest, AFailureOfAFileMovesIntoMemoryAndRunsAgain) {
    for (int failing = 1; failing <= 3; ++failing) {
        EngineTestHost inFile(EngineTestHost::inFile(folder.path()));
        inFile.add({folder.write("a"), folder.write("b")});
        inFile.preview();
        ASSERT_EQ(inFile.finalNames().size(), 2U);
        inFile.events.clear();
        begin(inFile);
        std::vector<int> ran;
        for (int number = 1; number <= 3; ++number) {
            addStage([&, number](StoreContext& context) {
                ran.push_back(number);
                if (number == failing && context.store().kind() == ItemStore::Kind::file)
                    throw StoreError("disk I/O error");
                return true;
            });
        }
        EXPECT_TRUE(process(inFile, *pipeline));
        std::vector<int> expected{1, 2, 3};
        expected.resize(static_cast<std::size_t>(failing));
        expected.insert(expected.end(), {1, 2, 3});
        EXPECT_EQ(ran, expected);
        EXPECT_EQ(inFile.defaults.integerForKey("store"), 1);
        EXPECT_TRUE(inFile.defaults.boolForKey("hasFailedOnSQLiteStoreBefore"));
        EXPECT_EQ(inFile.events, std::vector<std::string>{"updatePreview"});
        EXPECT_TRUE(inFile.finalNames().empty()) << "rows do not survive the move";
        EXPECT_FALSE(inFile.engine.busyMigratingStore());
        EXPECT_TRUE(inFile.prompts.asked.empty());
        inFile.preview();
        EXPECT_EQ(inFile.finalNames().size(), 2U) << "source items do, as unread ones";
    }
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
    addStage([&](StoreContext&) -> bool {
        ++runs;
        throw std::out_of_range("beyond the end");
    });
    EXPECT_FALSE(process());
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

TEST_F(PipelineTest, CleaningUpDeletesAllBatches) {
    constexpr int rows = 4500;
    {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        const RowId top = context.insertGhostNode("/a");
        for (int i = 0; i < rows; ++i) {
            context.insertProcessingError({"t", "m", std::to_string(i)});
            context.insertFile(top, std::to_string(i), true, false, i);
        }
        context.commit();
    }
    EXPECT_TRUE(run<CleanUpProcessingErrorsStage>());
    EXPECT_TRUE(host.errors().empty());
    EXPECT_EQ(host.finalNames().size(), std::size_t{rows});
    EXPECT_TRUE(run<CleanUpFilesStage>());
    EXPECT_TRUE(host.finalNames().empty());
}

} // namespace
} // namespace tavrin::test
