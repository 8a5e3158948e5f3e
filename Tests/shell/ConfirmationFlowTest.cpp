#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class ConfirmationFlowTest : public ShellFixture {
  protected:
    ConfirmationFlow& flow() { return controller().confirmationFlow(); }
    /// What applyCurrentSettings tells; absent when it tells nothing.
    std::optional<bool> apply() {
        std::optional<bool> result;
        flow().applyCurrentSettings(false, [&](bool started) { result = started; });
        return result;
    }
    bool stopRun() {
        return flow().stopRun([](const std::string&) {});
    }
    /// What a run has left behind.
    void setResult(int renamed, int notRenamed, int planned, const std::vector<ProcessingError>& errors) {
        StoreContext& context = controller().managedObjectContext();
        const std::lock_guard lock(context.mutex());
        context.changeEngineControl().numberOfActuallyRenamedFiles = renamed;
        context.changeEngineControl().numberOfItemsNotRenamed = notRenamed;
        context.changeEngineControl().numberOfFilesThatNeedRenaming = planned;
        for (const ProcessingError& error : errors)
            context.insertProcessingError(error);
        context.commit();
    }
    /// The answer that a worker would hear at once.
    std::optional<ConfirmationChoice> heard(const RunQuestion& question) {
        std::optional<ConfirmationChoice> given;
        controller().ask(question, std::make_shared<ConfirmationAnswer>(
                                       [&](ConfirmationChoice choice) { given = choice; }));
        return given;
    }
};

TEST_F(ConfirmationFlowTest, WhatCannotBeDoneIsToldAndStartsNothing) {
    start();
    for (const auto& [choice, isLast] : {std::pair{NoticeAnswer::ok, false}, {NoticeAnswer::help, true}}) {
        frontEnd.expect("notice noFilesSelected", NoticeAnswer{choice, isLast});
        EXPECT_EQ(apply(), false);
    }
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic7");
    EXPECT_EQ(apply(), false); // and nothing is said
    setSteps({{"Add to end", {{"active", 0}}}});
    add({"a"});
    frontEnd.expect("alert noActiveActions");
    EXPECT_EQ(apply(), false);
    frontEnd.expect("alert noActiveActions");
    controller().createFileList();

    // Settings that leave nothing are mended unless the user knows.
    setSteps({{"Add to end", {}}});
    struct Case {
        std::optional<ScriptedFrontEnd::Answer> answer; ///< absent: nothing is asked
        std::optional<bool> result;
        int processFiles;
    };
    for (const Case& each : {Case{ScriptedFrontEnd::Closed(), std::nullopt, 0},
                             {NoticeAnswer{NoticeAnswer::help, false}, true, 0},
                             {NoticeAnswer{NoticeAnswer::ok, false}, false, 1},
                             {NoticeAnswer{NoticeAnswer::cancel, true}, false, 1},
                             {std::nullopt, true, 0}}) {
        set("processFiles", 0);
        set("processFolders", 0);
        if (each.answer)
            frontEnd.expect("notice inconsistentSettings", *each.answer);
        EXPECT_EQ(apply(), each.result);
        EXPECT_EQ(controller().globalSettings().values().shouldProcessFiles, each.processFiles);
        EXPECT_EQ(controller().globalSettings().values().shouldProcessFolders, each.processFiles);
    }
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(ConfirmationFlowTest, QuestionsReachTheUserUnlessNobodyIsToBeAsked) {
    using enum ConfirmationChoice;
    start();
    const RunQuestion iTunes = LibraryWarning{LibraryWarning::Library::iTunes};
    const RunQuestion iPhoto = LibraryWarning{LibraryWarning::Library::iPhoto};
    const RunQuestion swap = SwapQuestion{"/f", "/f/a", "/f/b", "a", "b"};
    const RunQuestion problem = ProblemReport{"T", "M", "/f/a"};
    for (const RunQuestion& question :
         {RunQuestion(RenameQuestion{"/f", {}, "a", "b"}), swap, RunQuestion(NameCycleQuestion{"/f"}),
          problem, iTunes, iPhoto, RunQuestion(NoRecordQuestion{"R"}),
          RunQuestion(PipelineFailure{"T", "M"})}) {
        const std::string words = inWords(question);
        const std::string name = words.substr(0, words.find(' '));
        for (const ConfirmationChoice choice : allowedAnswers(question)) {
            frontEnd.expect(name, choice);
            EXPECT_EQ(heard(question), choice) << name;
        }
        frontEnd.expect(name, ScriptedFrontEnd::Closed());
        EXPECT_EQ(heard(question), stop) << name << ": a window that is closed stops the run";
        if (const std::optional<Alert> alert = alertOf(question)) {
            EXPECT_EQ(alert->buttons.size(), allowedAnswers(question).size()) << name;
        }
    }
    set("preventAccidentalITunesLibraryDamage", false);
    EXPECT_EQ(heard(iTunes), one);
    frontEnd.expect("iPhoto", stop);
    EXPECT_EQ(heard(iPhoto), stop);
    // A run that is being stopped asks nothing more, but what fails is told while somebody is left to be
    // told.
    controller().startProgressWindow();
    controller().renameEngine().requestStop();
    EXPECT_EQ(heard(swap), stop);
    EXPECT_EQ(heard(iPhoto), stop);
    frontEnd.expect("problem", one);
    EXPECT_EQ(heard(problem), one);
    EXPECT_TRUE(stopRun());
    EXPECT_EQ(heard(problem), stop);
}

TEST_F(ConfirmationFlowTest, TheReportOfARunFitsWhatHappened) {
    start();
    struct Case {
        int renamed, notRenamed, planned;
        bool isStopped;
        std::string report;
    };
    const std::string cut = " The rename was stopped: 1 of 3 items have got their new names.";
    for (const Case& each :
         {Case{-1, 0, 0, false, "No file names were changed. "},
          Case{1, 0, 3, false, "1 file name was changed. "},
          Case{2, 1, 3, false, "2 file names were changed. 1 item was not renamed."},
          Case{1, 0, 3, true, "1 file name was changed." + cut},
          Case{1, 2, 3, true, "1 file name was changed." + cut + " 2 items were not renamed."},
          Case{3, 0, 3, true, "3 file names were changed."}}) {
        std::string told;
        controller().startProgressWindow();
        if (each.isStopped)
            EXPECT_TRUE(flow().stopRun([&](const std::string& report) { told = report; }));
        else
            frontEnd.expect("alert summary");
        controller().stopProgressWindow();
        setResult(each.renamed, each.notRenamed, each.planned, {});
        controller().showCompletionDialog();
        if (!each.isStopped)
            told = frontEnd.alerts.back().title + " " + frontEnd.alerts.back().text;
        EXPECT_EQ(told, each.report);
        EXPECT_FALSE(stopRun()) << "no run is under way";
    }
    set("showSummary", 2);
    controller().showCompletionDialog();
    // Failures are listed whatever the settings say, those that were told before counted.
    setResult(1, 300000, 0, {{"T", "M", "/p"}});
    frontEnd.expect("errors");
    controller().showCompletionDialog();
    EXPECT_EQ(frontEnd.failures.errors, (std::vector<ProcessingError>{{"T", "M", "/p"}}));
    EXPECT_EQ(frontEnd.failures.notRenamed, 300000U);
    EXPECT_EQ(frontEnd.failures.done, "1 file name was changed.");
}

TEST_F(ConfirmationFlowTest, TheEndWaitsUntilTheReportIsClosed) {
    for (const ScriptedFrontEnd::Answer& way :
         std::vector<ScriptedFrontEnd::Answer>{AlertAnswer(), ScriptedFrontEnd::Closed()}) {
        start();
        frontEnd.expect("alert summary", ScriptedFrontEnd::Held());
        controller().showCompletionDialog();
        controller().terminate();
        EXPECT_FALSE(frontEnd.isTerminated);
        frontEnd.answerHeld(way);
        EXPECT_TRUE(frontEnd.isTerminated);
        frontEnd.isTerminated = false;
        endController();
        loop.reopen();
    }
}

} // namespace
} // namespace tavrin::test
