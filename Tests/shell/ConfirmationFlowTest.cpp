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
    ConfirmationAnswerPointer answer() {
        given.reset();
        return std::make_unique<ConfirmationAnswer>([this](ConfirmationChoice choice) { given = choice; });
    }
    std::optional<ConfirmationChoice> given;
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
        EXPECT_EQ(controller().globalSettings().shouldProcessFiles(), each.processFiles);
        EXPECT_EQ(controller().globalSettings().shouldProcessFolders(), each.processFiles);
    }
    set("processFiles", 0);
    set("processFolders", 0);
    EXPECT_EQ(apply(), true); // switched off by the last answer
    EXPECT_EQ(controller().globalSettings().shouldProcessFiles(), 0);
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(ConfirmationFlowTest, SheetsShowTheQuestionAndGiveTheAnswer) {
    start();
    frontEnd.expect("sheet rename", ConfirmationChoice::all);
    flow().confirmRename({"/a b/ü%", "/a b/ü%/x", "x", "y"}, answer());
    EXPECT_EQ(given, ConfirmationChoice::all);
    EXPECT_EQ(flow().confirmationDialogChoice(), 55);
    EXPECT_EQ(frontEnd.sheets.back().context, (PropertyDictionary{{"path", u"/a%20b/%C3%BC%25"},
                                                                  {"fullPath", u"/a b/ü%/x"},
                                                                  {"oldName", u"x"},
                                                                  {"newName", u"y"}}));
    EXPECT_EQ(frontEnd.sheets.back().previewPath, "/a b/ü%/x");

    // A later item of a chain has no path of its own; what stood there stays, but is not pictured.
    frontEnd.expect("sheet rename", ConfirmationChoice::one);
    flow().confirmRename({"/f", std::nullopt, "p", "q"}, answer());
    EXPECT_EQ(flow().confirmationDialogChoice(), 1);
    EXPECT_EQ(frontEnd.sheets.back().previewPath, std::nullopt);
    EXPECT_EQ(*find(flow().confirmationDialogContext(), "fullPath"), PropertyValue(u"/a b/ü%/x"));

    frontEnd.expect("sheet swap", ConfirmationChoice::leaveOut);
    flow().confirmSwap({"/f", "/f/a", "/f/b", "a", "b"}, answer());
    EXPECT_EQ(given, ConfirmationChoice::leaveOut);
    EXPECT_EQ(*find(flow().confirmationDialogContext(), "fullPathSecond"), PropertyValue(u"/f/b"));

    frontEnd.expect("sheet nameCycle", ConfirmationChoice::stop);
    flow().confirmNameCycle({"/f"}, answer());
    EXPECT_EQ(given, ConfirmationChoice::stop);
    EXPECT_EQ(flow().confirmationDialogChoice(), 0);

    frontEnd.expect("sheet problem", ScriptedFrontEnd::Closed());
    flow().reportProblem({"T", "M", "/f/a", "/f"}, answer());
    EXPECT_EQ(given, ConfirmationChoice::stop) << "a window that is closed stops the run";
    EXPECT_EQ(*find(frontEnd.sheets.back().context, "message"), PropertyValue(u"M"));
    EXPECT_EQ(*find(frontEnd.sheets.back().context, "newName"), PropertyValue(u"b"));
}

TEST_F(ConfirmationFlowTest, LibraryWarningsAskOnlyWhileSwitchedOn) {
    start();
    for (const bool isITunes : {true, false}) {
        const auto warn = [&] {
            if (isITunes)
                flow().showITunesWarning(answer());
            else
                flow().showIPhotoWarning(answer());
            return given;
        };
        const std::string question = isITunes ? "alert iTunesWarning" : "alert iPhotoWarning";
        frontEnd.expect(question, AlertAnswer{0, false});
        EXPECT_EQ(warn(), ConfirmationChoice::one);
        frontEnd.expect(question, AlertAnswer{1, false});
        EXPECT_EQ(warn(), ConfirmationChoice::stop);
        EXPECT_EQ(flow().confirmationDialogChoice(), 0);
        EXPECT_EQ(frontEnd.alerts.back().buttons, (std::vector<std::string>{"Continue", "Abort"}));
        EXPECT_THAT(frontEnd.alerts.back().text, ::testing::StartsWith("Tavrin 9 thinks that you"));
        set(isITunes ? "preventAccidentalITunesLibraryDamage" : "preventAccidentalIPhotoLibraryDamage",
            false);
        EXPECT_EQ(warn(), ConfirmationChoice::one);
        EXPECT_EQ(flow().confirmationDialogChoice(), 1);
    }
}

TEST_F(ConfirmationFlowTest, TheReportOfARunFitsWhatHappened) {
    start();
    const std::vector<std::pair<int, std::string>> texts{{-1, "No file names were changed."},
                                                         {0, "No file names were changed."},
                                                         {1, "1 file name was changed."},
                                                         {2, "2 file names were changed."}};
    for (const auto& [count, text] : texts) {
        setResult(count, 0, {});
        frontEnd.expect("alert summary");
        controller().showCompletionDialog();
        EXPECT_EQ(frontEnd.alerts.back().title, text);
        EXPECT_EQ(frontEnd.alerts.back().text, "");
    }
    // Those that were told during the run left no record, and are counted all the same.
    setResult(1, 1, {});
    frontEnd.expect("alert summary");
    controller().showCompletionDialog();
    EXPECT_EQ(frontEnd.alerts.back().text, "1 item was not renamed.");
    set("showSummary", 2);
    controller().showCompletionDialog();
    const ProcessingError error{"T", "M", "/p"};
    for (const std::size_t notRenamed : {1U, 300000U}) {
        setResult(1, static_cast<int>(notRenamed), {error});
        frontEnd.expect("errors");
        controller().showCompletionDialog();
        EXPECT_EQ(frontEnd.failures.errors, std::vector<ProcessingError>{error});
        EXPECT_EQ(frontEnd.failures.notRenamed, notRenamed);
        EXPECT_EQ(frontEnd.failures.done, "1 file name was changed.");
    }
}

// Whatever the settings say: a run that was cut short is reported, and only then all ends.
TEST_F(ConfirmationFlowTest, AClosedWindowStopsTheRunAndReportsIt) {
    const ProcessingError error{"T", "M", "/p"};
    for (const bool hasErrors : {false, true}) {
        start();
        set("showSummary", 0);
        controller().startProgressWindow();
        EXPECT_FALSE(controller().renameEngine().isStopRequested());
        controller().windowWillClose();
        EXPECT_TRUE(controller().renameEngine().isStopRequested());
        EXPECT_EQ(frontEnd.events.back(), "withdrawQuestions");
        // No question comes any more, but what fails is still told.
        flow().confirmRename({"/f", "/f/a", "a", "b"}, answer());
        EXPECT_EQ(given, ConfirmationChoice::stop);
        flow().showITunesWarning(answer());
        EXPECT_EQ(given, ConfirmationChoice::stop);
        frontEnd.expect("sheet problem", ConfirmationChoice::one);
        flow().reportProblem({"T", "M", "/f/a", "/f"}, answer());
        controller().stopProgressWindow();
        controller().windowWillClose(); // once more, between the run and its report
        EXPECT_FALSE(frontEnd.isTerminated);
        setResult(2, hasErrors, hasErrors ? std::vector{error} : std::vector<ProcessingError>(), 9);
        frontEnd.expect(hasErrors ? "errors" : "alert summary", ScriptedFrontEnd::Held());
        controller().showCompletionDialog();
        const std::string stopped = "The rename was stopped: 2 of 9 items have got their new names.";
        EXPECT_EQ(hasErrors ? frontEnd.failures.done : frontEnd.alerts.back().text,
                  hasErrors ? "2 file names were changed. " + stopped : stopped);
        EXPECT_FALSE(frontEnd.isTerminated);
        frontEnd.answerHeld(AlertAnswer());
        EXPECT_TRUE(frontEnd.isTerminated);
        endController();
        frontEnd.isTerminated = false;
        loop.reopen();
    }
}

TEST_F(ConfirmationFlowTest, AnEndThatCannotWaitIsToldInOneLine) {
    start();
    std::vector<std::string> told;
    const auto tell = [&](const std::string& report) { told.push_back(report); };
    EXPECT_FALSE(flow().stopRun(tell));
    struct Case {
        int renamed, notRenamed, planned;
        std::string report;
    };
    for (const Case& each :
         {Case{1, 0, 3,
               "1 file name was changed. The rename was stopped: 1 of 3 items have got their new names."},
          Case{3, 0, 3, "3 file names were changed."},
          Case{0, 2, 3,
               "No file names were changed. The rename was stopped: 0 of 3 items have got their new names. 2 "
               "items "
               "were not renamed."}}) {
        controller().startProgressWindow();
        EXPECT_TRUE(flow().stopRun(tell));
        flow().reportProblem({"T", "M", "/f/a", "/f"}, answer());
        EXPECT_EQ(given, ConfirmationChoice::stop);
        controller().stopProgressWindow();
        setResult(each.renamed, each.notRenamed, {}, each.planned);
        controller().showCompletionDialog();
        EXPECT_EQ(told.back(), each.report);
        EXPECT_FALSE(flow().stopRun(tell));
    }
    controller().startProgressWindow();
    EXPECT_TRUE(flow().stopRun(tell));
    controller().showFileListNotSaved("/l", "No space left on device");
    EXPECT_EQ(told.back(),
              "The file list could not be saved. \"/l\" could not be written: No space left on device");
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

TEST_F(ConfirmationFlowTest, AWrittenListIsConfirmedOrExplained) {
    start();
    struct Case {
        int format;
        const char* action;
        const char* question;
    };
    const std::vector<Case> cases{{0, "Add to end", "alert fileListSaved"},
                                  {1, "Add to end", "notice simpleTemplateFileList"},
                                  {1, "Produce numbered list", "alert fileListSaved"},
                                  {2, "Add to end", "alert fileListSaved"}};
    for (const Case& each : cases) {
        setSteps({{each.action, {}}});
        if (std::string(each.question).starts_with("alert"))
            frontEnd.expect(each.question);
        else
            frontEnd.expect(each.question, NoticeAnswer{NoticeAnswer::help, false});
        controller().showFileListSavingCompletionDialog(each.format);
    }
    EXPECT_THAT(frontEnd.events, ::testing::Contains("help helpTopic29"));
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
    set("silentDroplet", 1);
    controller().ok();
    EXPECT_TRUE(frontEnd.isTerminated);
    const auto saved = RecipeFile::read(settingsPath);
    ASSERT_TRUE(std::holds_alternative<Recipe>(saved));
    EXPECT_EQ(std::get<Recipe>(saved).flatParameterList,
              controller().compositeAction().getFlatParameterList());
    EXPECT_EQ(std::get<Recipe>(saved).globalSettings, controller().globalSettings().parameterList());
    EXPECT_EQ(defaults.objectForKey("composite action"), std::nullopt);
}

} // namespace
} // namespace tavrin::test
