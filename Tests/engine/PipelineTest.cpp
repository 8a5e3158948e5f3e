#include "RenameBench.h"
#include "common/Testing.h"
#include "engine/pipeline/ProcessingPipeline.h"
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
                if (number == failing && context.store().kind() == ItemStore::Kind::file)
                    throw StoreError("disk I/O error");
                return true;
            });
        }
        EXPECT_TRUE(process(inFile, stages));
        EXPECT_EQ(ran, std::string("123").substr(0, static_cast<std::size_t>(failing)) + "123");
        EXPECT_EQ(inFile.defaults.integerForKey("store"), 1);
        EXPECT_TRUE(inFile.defaults.boolForKey("hasFailedOnSQLiteStoreBefore"));
        EXPECT_EQ(inFile.events, std::vector<std::string>{"updatePreview"});
        EXPECT_TRUE(inFile.finalNames().empty()) << "rows do not survive the move";
        EXPECT_FALSE(inFile.engine.busyMigratingStore());
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

} // namespace
} // namespace tavrin::test
