#pragma once

#include "presentation/cards/QuestionCard.h"
#include "shell/asking/FrontEnd.h"

#include <QObject>
#include <memory>

namespace tavrin {

class AddressFetcher;
class MainController;
class MainWindow;

/// Stands in front of the application with a window. It only passes on: questions to their dialogs, all else
/// to the main window. Until there is a window, showing does nothing and questions are held to be closed.
class QtFrontEnd final : public FrontEnd {
  public:
    QtFrontEnd();
    ~QtFrontEnd() override;

    /// Not owned; null withdraws it and drops what was still to be shown, unanswered.
    void setWindow(MainWindow* newWindow);

    void showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) override;
    void showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) override;
    void ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) override;
    void showProcessingErrors(const FailureReport& report, std::function<void()> closed) override;
    void showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer) override;
    void withdrawQuestions() override;
    void askForFilesToAdd(const std::string& startFolder,
                          std::function<void(std::optional<FilesToAdd>)> answer) override;
    void askForFileListFormat(std::function<void(FileListChoice)> answer) override;
    void askForSavePath(const std::string& title,
                        std::function<void(std::optional<std::string>)> answer) override;
    void askForDropletPath(const std::string& title, const std::string& startFolder,
                           std::function<void(std::optional<std::string>)> answer) override;
    void askToUndo(const UndoQuestion& question, std::function<void(UndoAnswer)> answer) override;
    void tellInterruptedRun(const InterruptedRun& run,
                            std::function<void(InterruptedRunAnswer)> answer) override;
    void askForDroplets(const LocatePanel& panel,
                        std::function<void(std::optional<std::vector<std::string>>)> answer) override;
    void askForFolder(const LocatePanel& panel,
                      std::function<void(std::optional<std::string>)> answer) override;
    void fetchAddress(const std::string& address, std::size_t limit,
                      std::function<void(FetchedAddress)> answer) override;

    void presentError(const std::string& message) override;
    void presentNotice(const std::string& text) override;
    /// Of a droplet that has no window, once the user has closed what it has to say.
    void terminate() override;
    /// Whatever is open, with this exit status.
    void terminateAtOnce(int status = 0);
    void selectMainTab(MainTab tab) override;
    void selectPreviewTab(PreviewTab tab) override;
    void setColumnWidth(PreviewColumn column, int minimum, int maximum, int width) override;
    void setColumnHidden(PreviewColumn column, bool hidden) override;
    void sizeColumnsToFit() override;
    void previewListChanged() override;
    void previewRequested() override;
    void previewFinished() override;
    void handEditsChanged() override;
    void addingPaths() override;
    void pathsAdded(const std::vector<std::string>& paths) override;
    void itemsWereGone(std::size_t count) override;
    void runStateChanged(bool isRunning) override;
    void fillPresetMenu(const std::vector<std::u16string>& titles) override;
    void actionListChanged() override;
    void showActionPanel(BaseRenameAction& action) override;
    void setDividerPosition(double position) override;
    void centreWindow() override;
    void showWindow() override;
    void hideWindow() override;
    void enterDropletEditMode() override;
    void showHelp(std::string_view anchor) override;
    void showHistory(const std::string& run) override;
    void revealPath(const std::string& path) override;
    void openAddress(const std::string& address) override;
    void beep() override;

  private:
    /// At once, or when the window that is about to come up stands.
    void whenShown(std::function<void()> action);
    /// Whether bars that need no answer would be seen.
    [[nodiscard]] bool hasBars() const;
    [[nodiscard]] bool isRunningDroplet() const;
    void terminateWhenAllIsRead();
    /// An alert as a card of the window.
    void tellNamesStayBehind();
    void showAsCard(const Alert& alert, std::function<void(AlertAnswer)> answer);

    MainWindow* window = nullptr;
    QuestionCard questionCard;
    std::unique_ptr<AddressFetcher> fetcher;                      ///< made when it is first needed
    std::unique_ptr<QObject> later = std::make_unique<QObject>(); ///< what is to be shown later goes with it
};

} // namespace tavrin
