#pragma once

#include "engine/asking/RunQuestion.h"
#include "shell/asking/FrontEnd.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavrin::test {

/// A question of a run in a few words: "rename old -> new", "swap old -> new", "cycle path",
/// "problem title: path", "iTunes", "iPhoto", "no record: reason", "failed title".
[[nodiscard]] std::string inWords(const RunQuestion& question);

/// A front end whose user follows a script: each question must be the next one expected, and gets its
/// answer. Any other question fails the test and is dropped unanswered; so does an expectation that is left
/// at the end. Questions are named "alert summary", "notice noFilesSelected", by the first word of a run's
/// question, "errors", "files to add", "list format", "save path", "droplet path", "droplets", "folder",
/// "take back TITLE", "fetch ADDRESS".
class ScriptedFrontEnd : public FrontEnd {
  public:
    /// The question goes unanswered, as when the window is closed.
    struct Closed {};
    /// The question stays open until answerHeld.
    struct Held {};
    using Answer = std::variant<Closed, Held, AlertAnswer, NoticeAnswer, ConfirmationChoice,
                                std::optional<FilesToAdd>, FileListChoice, std::optional<std::string>,
                                std::optional<std::vector<std::string>>, FetchedAddress, bool>;

    ~ScriptedFrontEnd() override;

    void expect(std::string question, Answer answer = AlertAnswer());
    /// Answers the question that is held.
    void answerHeld(const Answer& answer);
    [[nodiscard]] bool isHolding() const { return held != nullptr; }
    /// Whether every expected question has come.
    [[nodiscard]] bool isScriptOver() const { return script.empty(); }

    // What was shown.
    std::vector<std::string> events; ///< in order, in the words of the operations below
    std::vector<Alert> alerts;
    std::vector<RunQuestion> runQuestions;
    FailureReport failures;
    std::optional<TakeBackQuestion> takeBack; ///< the last one
    std::vector<std::string> presented;
    std::map<PreviewColumn, bool> hiddenColumns;
    int finishedPreviews = 0;
    bool isTerminated = false;
    /// Called at the end of each preview, and when the application ends.
    std::function<void()> onProgress = [] {};
    /// Told of every divider position, as a window that reports its own moves would be.
    std::function<void(double)> onDividerMoved = [](double) {};

    void showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) override;
    void showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) override;
    void ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) override;
    void showProcessingErrors(const FailureReport& report, std::function<void()> closed) override;
    void withdrawQuestions() override;
    void askForFilesToAdd(const std::string& startFolder,
                          std::function<void(std::optional<FilesToAdd>)> answer) override;
    void askForFileListFormat(std::function<void(FileListChoice)> answer) override;
    void askForSavePath(const std::string& title,
                        std::function<void(std::optional<std::string>)> answer) override;
    void askForDropletPath(const std::string& title, const std::string& startFolder,
                           std::function<void(std::optional<std::string>)> answer) override;
    void askToTakeBack(const TakeBackQuestion& question, std::function<void(bool)> answer) override;
    void askForDroplets(const LocatePanel& panel,
                        std::function<void(std::optional<std::vector<std::string>>)> answer) override;
    void askForFolder(const LocatePanel& panel,
                      std::function<void(std::optional<std::string>)> answer) override;
    void fetchAddress(const std::string& address, std::size_t limit,
                      std::function<void(FetchedAddress)> answer) override;

    void presentNotice(const std::string& text) override { presented.push_back(text); }
    void presentError(const std::string& message) override { presented.push_back(message); }
    void terminate() override;
    void selectMainTab(MainTab tab) override;
    void selectPreviewTab(PreviewTab tab) override;
    void setColumnHidden(PreviewColumn column, bool isHidden) override { hiddenColumns[column] = isHidden; }
    void previewFinished() override;
    void runStateChanged(bool isRunning) override { note(isRunning ? "run begins" : "run ends"); }
    void fillPresetMenu(const std::vector<std::u16string>& titles) override;
    void showActionPanel(BaseRenameAction& action) override;
    void setDividerPosition(double position) override;
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
    using Giver = std::function<void(const Answer&)>;

    void note(std::string_view event) { events.emplace_back(event); }
    template <typename Given>
    void askFor(const std::string& question, const std::function<void(Given)>& handler);

    std::deque<Expectation> script;
    Giver held;
};

} // namespace tavrin::test
