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
        return flow().stopRun([this](const std::string& report) { told = report; });
    }
    /// What a run has left behind.
    void setResult(int renamed, int notRenamed, const std::vector<ProcessingError>& errors = {}) {
        StoreContext& context = controller().managedObjectContext();
        const std::lock_guard lock(context.mutex());
        context.changeEngineControl().numberOfActuallyRenamedFiles = renamed;
        context.changeEngineControl().numberOfItemsNotRenamed = notRenamed;
        context.changeEngineControl().numberOfFilesThatNeedRenaming = 3;
        for (const ProcessingError& error : errors)
            context.insertProcessingError(error);
        context.commit();
    }
    std::string told; ///< the report of a run that was stopped
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
    for (const auto& answer : {NoticeAnswer{NoticeAnswer::ok, false}, {NoticeAnswer::help, true}}) {
        frontEnd.expect("notice noFilesSelected", answer);
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
    using Answer = std::optional<ScriptedFrontEnd::Answer>; // absent: nothing is asked
    const std::tuple<Answer, std::optional<bool>, int> cases[] = {
        {ScriptedFrontEnd::Closed(), std::nullopt, 0},
        {NoticeAnswer{NoticeAnswer::help, false}, true, 0},
        {NoticeAnswer{NoticeAnswer::ok, false}, false, 1},
        {NoticeAnswer{NoticeAnswer::cancel, true}, false, 1},
        {std::nullopt, true, 0}};
    for (const auto& [answer, result, processes] : cases) {
        set("processFiles", 0);
        set("processFolders", 0);
        if (answer)
            frontEnd.expect("notice inconsistentSettings", *answer);
        EXPECT_EQ(apply(), result);
        EXPECT_EQ(settings().shouldProcessFiles, processes);
        EXPECT_EQ(settings().shouldProcessFolders, processes);
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
        const std::optional<Alert> alert = alertOf(question);
        EXPECT_TRUE(!alert || alert->buttons.size() == allowedAnswers(question).size()) << name;
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
    const std::string cut =
        "1 file name was changed. The rename was stopped: 1 of 3 items have got their new names.";
    const std::tuple<int, int, bool, std::string> cases[] = {
        {-1, 0, false, "No file names were changed. "},
        {1, 0, false, "1 file name was changed. "},
        {2, 1, false, "2 file names were changed. 1 item was not renamed."},
        {1, 2, true, cut + " 2 items were not renamed."},
        {3, 0, true, "3 file names were changed."}};
    for (const auto& [renamed, notRenamed, isStopped, report] : cases) {
        controller().startProgressWindow();
        if (isStopped)
            EXPECT_TRUE(stopRun());
        else
            frontEnd.expect("alert summary");
        controller().stopProgressWindow();
        setResult(renamed, notRenamed);
        controller().showCompletionDialog();
        if (!isStopped)
            told = frontEnd.alerts.back().title + " " + frontEnd.alerts.back().text;
        EXPECT_EQ(told, report);
        EXPECT_FALSE(stopRun()) << "no run is under way";
    }
    set("showSummary", 2);
    controller().showCompletionDialog();
    // Failures are listed whatever the settings say, those that were told before counted.
    const std::vector<ProcessingError> errors{{"T", "M", "/p"}};
    setResult(1, 300000, errors);
    frontEnd.expect("errors");
    controller().showCompletionDialog();
    EXPECT_EQ(frontEnd.failures.errors, errors);
    EXPECT_EQ(frontEnd.failures.notRenamed, 300000U);
    EXPECT_EQ(frontEnd.failures.done, "1 file name was changed.");
}

} // namespace
} // namespace tavrin::test
