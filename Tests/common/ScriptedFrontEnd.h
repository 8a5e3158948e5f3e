#pragma once

#include "actions/BaseRenameAction.h"
#include "common/QuestionWords.h"
#include "common/Testing.h"
#include "engine/asking/RunQuestion.h"
#include "shell/asking/FrontEnd.h"

#include <deque>
#include <variant>

namespace tavrin::test {

/// A front end whose user follows a script: each question must be the next one expected, and gets its
/// answer. Any other question fails the test and is dropped unanswered; so does an expectation that is left
/// at the end. Questions are named "alert summary", "notice noFilesSelected", by the first word of a run's
/// question, "errors", "files to add", "list format", "save path", "droplet path", "droplets", "folder",
/// "undo POSSIBLE of TOTAL" ("redo", "finish"), "interrupted CHANGED of TOTAL", "fetch ADDRESS".
class ScriptedFrontEnd : public FrontEnd {
  public:
    /// The question goes unanswered, as when the window is closed.
    struct Closed {};
    /// The question stays open until answerHeld.
    struct Held {};
    using Answer = std::variant<Closed, Held, AlertAnswer, NoticeAnswer, ConfirmationChoice, ReportAnswer,
                                std::optional<FilesToAdd>, FileListChoice, std::optional<std::string>,
                                std::optional<std::vector<std::string>>, FetchedAddress, UndoAnswer,
                                InterruptedRunAnswer>;

    template <typename Given> using Handler = std::function<void(Given)>;

    ~ScriptedFrontEnd() override;

    void expect(std::string question, Answer answer = AlertAnswer()) {
        script.push_back({std::move(question), std::move(answer)});
    }
    /// Answers the question that is held.
    void answerHeld(const Answer& answer);
    [[nodiscard]] bool isHolding() const { return held != nullptr; }
    /// Whether every expected question has come.
    [[nodiscard]] bool isScriptOver() const { return script.empty(); }

    // What was shown.
    std::vector<std::string> events; ///< in order, in the words of the operations below
    std::vector<Alert> alerts;
    FailureReport failures;
    RunReport lastReport;
    std::optional<UndoQuestion> undoQuestion;     ///< the last one
    std::optional<InterruptedRun> interruptedRun; ///< the last one
    std::vector<std::string> presented;
    std::map<PreviewColumn, bool> hiddenColumns;
    int finishedPreviews = 0;
    bool isTerminated = false;
    /// Called at the end of each preview, and when the application ends.
    std::function<void()> onProgress = [] {};
    /// Called where a window would look at the list anew.
    std::function<void()> onListChanged = [] {};
    /// Told of every divider position, as a window that reports its own moves would be.
    std::function<void(double)> onDividerMoved = [](double) {};

    void showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) override;
    void itemsWereGone(std::size_t count) override { note(fmt::format("gone {}", count)); }
    void handEditsChanged() override { note("hand edits"); }
    void showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) override;
    void ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) override;
    void showProcessingErrors(const FailureReport& report, std::function<void()> closed) override {
        failures = report;
        askFor<AlertAnswer>("errors", [closed](const AlertAnswer&) { closed(); });
    }
    /// As an alert or as "errors", unless the script waits for a "report".
    void showRunReport(const RunReport& report, Handler<ReportAnswer> answer) override {
        lastReport = report;
        if (!script.empty() && script.front().question == "report")
            askFor("report", answer);
        else
            FrontEnd::showRunReport(report, std::move(answer));
    }
    void withdrawQuestions() override {
        note("withdrawQuestions");
        held = nullptr;
    }
    void askForFilesToAdd(const std::string& startFolder,
                          Handler<std::optional<FilesToAdd>> answer) override {
        note("panel starts at " + startFolder);
        askFor("files to add", answer);
    }
    void askForFileListFormat(Handler<FileListChoice> answer) override { askFor("list format", answer); }
    void askForSavePath(const std::string&, Handler<std::optional<std::string>> answer) override {
        askFor("save path", answer);
    }
    void askForDropletPath(const std::string& title, const std::string& startFolder,
                           Handler<std::optional<std::string>> answer) override {
        note("panel titled " + title + " starts at " + startFolder);
        askFor("droplet path", answer);
    }
    void askToUndo(const UndoQuestion& question, Handler<UndoAnswer> answer) override {
        undoQuestion = question;
        const std::string_view verb = question.finishes                ? "finish"
                                      : question.what == RunKind::undo ? "undo"
                                                                       : "redo";
        askFor(fmt::format("{} {} of {}", verb, question.possible, question.total), answer);
    }
    void tellInterruptedRun(const InterruptedRun& run, Handler<InterruptedRunAnswer> answer) override {
        interruptedRun = run;
        askFor(fmt::format("interrupted {} of {}", run.changed, run.total), answer);
    }
    void showHistory(const std::string& run) override { note("history " + run); }
    void askForDroplets(const LocatePanel&,
                        Handler<std::optional<std::vector<std::string>>> answer) override {
        askFor("droplets", answer);
    }
    void askForFolder(const LocatePanel&, Handler<std::optional<std::string>> answer) override {
        askFor("folder", answer);
    }
    void fetchAddress(const std::string& address, std::size_t, Handler<FetchedAddress> answer) override {
        askFor("fetch " + address, answer);
    }

    void presentNotice(const std::string& text) override { presented.push_back(text); }
    void presentError(const std::string& message) override { presented.push_back(message); }
    void terminate() override;
    void selectMainTab(MainTab tab) override { note("mainTab " + std::to_string(static_cast<int>(tab))); }
    void selectPreviewTab(PreviewTab tab) override {
        note("previewTab " + std::to_string(static_cast<int>(tab)));
    }
    void setColumnHidden(PreviewColumn column, bool isHidden) override { hiddenColumns[column] = isHidden; }
    void previewListChanged() override { onListChanged(); }
    void previewFinished() override {
        ++finishedPreviews;
        onProgress();
    }
    void runStateChanged(bool isRunning) override { note(isRunning ? "run begins" : "run ends"); }
    void fillPresetMenu(const std::vector<std::u16string>& titles) override {
        note("fillPresetMenu " + std::to_string(titles.size()));
    }
    void showActionPanel(BaseRenameAction& action) override { note("panel " + action.actionName()); }
    void setDividerPosition(double position) override {
        note(fmt::format("divider {}", position));
        onDividerMoved(position);
    }
    void centreWindow() override { note("centreWindow"); }
    void showWindow() override { note("showWindow"); }
    void hideWindow() override { note("hideWindow"); }
    void enterDropletEditMode() override { note("enterDropletEditMode"); }
    void showHelp(std::string_view anchor) override { note("help " + std::string(anchor)); }
    void openAddress(const std::string& address) override { note("open " + address); }
    void beep() override { note("beep"); }

  private:
    struct Expectation {
        std::string question;
        Answer answer;
    };
    void note(std::string_view event) { events.emplace_back(event); }
    /// The answer of the script, unless this is another question than it expects.
    std::optional<Answer> nextAnswer(const std::string& question);
    template <typename Given> void askFor(const std::string& question, const Handler<Given>& handler) {
        const auto answer = nextAnswer(question);
        if (!answer)
            return;
        const Handler<const Answer&> give = [handler](const Answer& chosen) {
            if (const auto* given = std::get_if<Given>(&chosen))
                handler(*given);
            else if (!std::holds_alternative<Closed>(chosen))
                ADD_FAILURE() << "the script has an answer of another kind";
        };
        if (std::holds_alternative<Held>(*answer))
            held = give;
        else
            give(*answer);
    }

    std::deque<Expectation> script;
    Handler<const Answer&> held;
};

} // namespace tavrin::test
