#include "documents/RecipeFile.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class ConfirmationFlowTest : public ShellFixture {
  protected:
    ConfirmationFlow& flow() { return controller().confirmationFlow(); }
    void startWithFile() {
        start();
        setSteps({{"Add to end", {{"string", u"X"}}}});
        controller().addFilePaths({files.write("a")}, true);
        waitForPreview();
        set("interactiveMode", 0);
    }
    /// What applyCurrentSettings tells; absent when it tells nothing.
    std::optional<bool> apply() {
        std::optional<bool> result;
        flow().applyCurrentSettings(false, [&](bool started) { result = started; });
        return result;
    }
    /// What a run has left behind.
    void setResult(int renamed, int notRenamed, const std::vector<ProcessingError>& errors, int planned = 0) {
        StoreContext& context = controller().managedObjectContext();
        const std::lock_guard lock(context.mutex());
        context.changeEngineControl().numberOfActuallyRenamedFiles = renamed;
        context.changeEngineControl().numberOfItemsNotRenamed = notRenamed;
        context.changeEngineControl().numberOfFilesThatNeedRenaming = planned;
        context.deleteProcessingErrors(100);
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

TEST_F(ConfirmationFlowTest, AnEmptyListStartsNothing) {
    start();
    frontEnd.expect("notice noFilesSelected", NoticeAnswer{NoticeAnswer::ok, false});
    EXPECT_EQ(apply(), false);
    EXPECT_FALSE(controller().renameEngine().isBusy());
    frontEnd.expect("notice noFilesSelected", NoticeAnswer{NoticeAnswer::help, true});
    EXPECT_EQ(apply(), false);
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic7");
    frontEnd.events.clear();
    EXPECT_EQ(apply(), false);
    EXPECT_TRUE(frontEnd.events.empty());
}

TEST_F(ConfirmationFlowTest, NoActiveStepStartsNothing) {
    startWithFile();
    setSteps({{"Add to end", {{"active", 0}}}});
    frontEnd.expect("alert noActiveActions");
    EXPECT_EQ(apply(), false);
    frontEnd.expect("alert noActiveActions");
    controller().createFileList();
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(ConfirmationFlowTest, SettingsThatLeaveNothingAreMendedUnlessTheUserKnows) {
    startWithFile();
    struct Case {
        ScriptedFrontEnd::Answer answer;
        std::optional<bool> result;
        int processFiles;
    };
    const std::vector<Case> cases{{ScriptedFrontEnd::Closed(), std::nullopt, 0},
                                  {NoticeAnswer{NoticeAnswer::help, false}, true, 0},
                                  {NoticeAnswer{NoticeAnswer::ok, false}, false, 1},
                                  {NoticeAnswer{NoticeAnswer::cancel, true}, false, 1}};
    for (const Case& each : cases) {
        set("processFiles", 0);
        set("processFolders", 0);
        frontEnd.expect("notice inconsistentSettings", each.answer);
        EXPECT_EQ(apply(), each.result);
        EXPECT_EQ(controller().globalSettings().values().shouldProcessFiles, each.processFiles);
        EXPECT_EQ(controller().globalSettings().values().shouldProcessFolders, each.processFiles);
    }
    set("processFiles", 0);
    set("processFolders", 0);
    EXPECT_EQ(apply(), true); // switched off by the last answer
    EXPECT_EQ(controller().globalSettings().values().shouldProcessFiles, 0);
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(ConfirmationFlowTest, QuestionsReachTheUserUnlessNobodyIsToBeAsked) {
    using enum ConfirmationChoice;
    start();
    const RunQuestion iTunes = LibraryWarning{LibraryWarning::Library::iTunes};
    const RunQuestion iPhoto = LibraryWarning{LibraryWarning::Library::iPhoto};
    const RunQuestion swap = SwapQuestion{"/f", "/f/a", "/f/b", "a", "b"};
    const RunQuestion problem = ProblemReport{"T", "M", "/f/a"};
    const std::vector<std::pair<RunQuestion, const char*>> questions{
        {RenameQuestion{"/f", {}, "a", "b"}, "rename"},
        {swap, "swap"},
        {NameCycleQuestion{"/f"}, "cycle"},
        {problem, "problem"},
        {iTunes, "iTunes"},
        {iPhoto, "iPhoto"},
        {NoRecordQuestion{"R"}, "no"},
        {PipelineFailure{"T", "M"}, "failed"}};
    for (const auto& [question, name] : questions) {
        for (const ConfirmationChoice choice : allowedAnswers(question)) {
            frontEnd.expect(name, choice);
            EXPECT_EQ(heard(question), choice) << name;
        }
        frontEnd.expect(name, ScriptedFrontEnd::Closed());
        EXPECT_EQ(heard(question), stop) << name << ": a window that is closed stops the run";
        const std::optional<Alert> alert = alertOf(question);
        EXPECT_EQ(alert.has_value(), question.index() > 3) << name;
        EXPECT_EQ(alert ? alert->buttons.size() : allowedAnswers(question).size(),
                  allowedAnswers(question).size());
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
    EXPECT_TRUE(flow().stopRun([](const std::string&) {}));
    EXPECT_EQ(heard(problem), stop);
}

TEST_F(ConfirmationFlowTest, TheReportOfARunFitsWhatHappened) {
    start();
    const std::vector<ProcessingError> error{{"T", "M", "/p"}};
    struct Case {
        int renamed, notRenamed, planned;
        bool isStopped;
        std::string title;
        std::string text;
    };
    const std::string cut = "The rename was stopped: 1 of 3 items have got their new names.";
    for (const Case& each :
         {Case{-1, 0, 0, false, "No file names were changed.", ""},
          Case{1, 0, 3, false, "1 file name was changed.", ""},
          Case{2, 1, 3, false, "2 file names were changed.", "1 item was not renamed."},
          Case{1, 0, 3, true, "1 file name was changed.", cut},
          Case{1, 2, 3, true, "1 file name was changed.", cut + " 2 items were not renamed."},
          Case{3, 0, 3, true, "3 file names were changed.", ""}}) {
        std::string told;
        controller().startProgressWindow();
        if (each.isStopped)
            EXPECT_TRUE(flow().stopRun([&](const std::string& report) { told = report; }));
        else
            frontEnd.expect("alert summary");
        controller().stopProgressWindow();
        setResult(each.renamed, each.notRenamed, {}, each.planned);
        controller().showCompletionDialog();
        if (each.isStopped)
            EXPECT_EQ(told, each.title + (each.text.empty() ? "" : " ") + each.text);
        else
            EXPECT_EQ(frontEnd.alerts.back().title + "|" + frontEnd.alerts.back().text,
                      each.title + "|" + each.text);
        EXPECT_FALSE(flow().stopRun([](const std::string&) {})) << "no run is under way";
    }
    set("showSummary", 2);
    controller().showCompletionDialog();
    // Failures are listed whatever the settings say, those that were told before counted.
    setResult(1, 300000, error);
    frontEnd.expect("errors");
    controller().showCompletionDialog();
    EXPECT_EQ(frontEnd.failures.errors, error);
    EXPECT_EQ(frontEnd.failures.notRenamed, 300000U);
    EXPECT_EQ(frontEnd.failures.done, "1 file name was changed.");
}

TEST_F(ConfirmationFlowTest, TheEndWaitsUntilTheReportIsClosed) {
    for (const ScriptedFrontEnd::Answer& way :
         std::vector<ScriptedFrontEnd::Answer>{AlertAnswer(), ScriptedFrontEnd::Closed()}) {
        ScriptedFrontEnd window;
        ManualRunLoop ownLoop;
        MainController own({window, ownLoop, defaults, catalogue}, options);
        window.expect("alert summary", ScriptedFrontEnd::Held());
        own.showCompletionDialog();
        own.terminate();
        EXPECT_FALSE(window.isTerminated);
        window.answerHeld(way);
        EXPECT_TRUE(window.isTerminated);
        ownLoop.close();
    }
}

TEST_F(ConfirmationFlowTest, TheProgressViewComesAndGoes) {
    start();
    controller().startProgressWindow();
    EXPECT_FALSE(controller().validateUserInterfaceItem());
    controller().stopProgressWindow();
    EXPECT_TRUE(controller().validateUserInterfaceItem());
    EXPECT_THAT(frontEnd.events,
                ::testing::ElementsAre("run begins", "mainTab 1", "run ends", "mainTab 0", "previewTab 0"));
    frontEnd.events.clear();
    controller().globalSettings().setShouldContinueAfterRename(false);
    controller().startProgressWindow();
    controller().stopProgressWindow();
    EXPECT_EQ(frontEnd.events.back(), "previewTab 1");
}

TEST_F(ConfirmationFlowTest, InADropletTheButtonSaves) {
    const std::string settingsPath = files.path("later/Settings.plist");
    defaults.setProcessObject(
        "droplet settings", PropertyDictionary{{"composite action", chain({{"Add to end", {{"active", 0}}}})},
                                               {"settings plist path", text::fromBytes(settingsPath)},
                                               {"Version", u"9"}});
    defaults.setObject("don't show droplet edit information again", true);
    start();
    controller().ok();
    ASSERT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_THAT(frontEnd.presented.back(), ::testing::StartsWith("The droplet could not be saved. "));
    EXPECT_FALSE(frontEnd.isTerminated);
    (void)files.makeFolder("later");
    controller().ok();
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_TRUE(std::holds_alternative<Recipe>(RecipeFile::read(settingsPath)));
    EXPECT_EQ(defaults.objectForKey("composite action"), std::nullopt);
}

} // namespace
} // namespace tavrin::test
