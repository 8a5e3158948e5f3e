#pragma once

#include "engine/pipeline/ProgressInfo.h"
#include "presentation/WindowServices.h"
#include "presentation/cards/QuestionCard.h"
#include "presentation/run/TaskbarProgress.h"
#include "shell/asking/FrontEnd.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QPushButton;
class QShortcut;
class QSplitter;
class QStackedWidget;
class QToolButton;

namespace tavrin {

class HelpWindow;
class HistoryWindow;
class PreviewPane;
class DropletRunWindow;
class RunStrip;
class RecipeClipboard;
class RecipeLine;
class SettingsPane;
class StepsPane;
class WindowCommands;
class WindowKeys;
class WindowSpeech;

/// The one window: steps, settings and list side by side, and during a run the strip that tells how far
/// it is. It arranges its panes and passes on what the application says; what they show is theirs.
class MainWindow final : public QMainWindow, private ProgressObserver {
    Q_OBJECT

  public:
    explicit MainWindow(const WindowServices& shared);
    ~MainWindow() override;

    [[nodiscard]] const WindowServices& services() const { return shared; }
    [[nodiscard]] SettingsPane& settingsPane() { return *settings; }
    [[nodiscard]] StepsPane& stepsPane() { return *steps; }
    [[nodiscard]] PreviewPane& previewPane() { return *preview; }

    void selectMainTab(MainTab tab);
    void setRunning(bool isRunning);
    void setDividerPosition(double position);
    void fillPresetMenu(const std::vector<std::u16string>& titles);
    void enterDropletEditMode();
    /// Shows the run in a small window of its own, where this one is not shown.
    void showRunAlone(bool isRunning);
    /// Whether a question of the run waits for its answer.
    void setWaiting(bool waits);
    /// At once how far the run is, and that it is being stopped, however long its item in hand takes.
    void showProgress();
    /// The end of a run: a bar below the list, or a card where the application ends with it.
    void showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer);
    void centre();
    /// Gives the list the width that it had last, where anyone has given it one.
    void restorePaneWidth();
    /// Wholly onto a screen, if it lies beyond the edge of its own, or that has gone or become smaller.
    void returnToScreen();
    /// Where a question of a run is put.
    [[nodiscard]] QuestionCard::Place questionPlace();
    void showHelp(std::string_view anchor);
    /// With this run chosen where one is named.
    void showHistory(const std::string& run);
    /// The count on the rename button, and whether it is on.
    void refreshRenameButton();
    /// Whether what the list shows is out of date; the rename button then counts nothing.
    void setPreviewDue(bool isDue);
    /// Whether the dialog under way that adds something is for folders.
    [[nodiscard]] bool isAskingForFolders() const { return asksForFolders; }

  protected:
    /// Others may have changed something while this was not the active window.
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Of the list: its width is remembered.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void progressChanged(std::string_view) override { showProgress(); }
    [[nodiscard]] QWidget* buildWorkPage();
    [[nodiscard]] QWidget* buildBottomRow();
    void addByDialog(bool folders);
    void refreshCommands();
    void arrangeForSize();
    void arrangeBottomRow();
    void rememberPaneWidth();
    void setRunShown(bool isShown);
    [[nodiscard]] DropletRunWindow& dropletWindow();
    [[nodiscard]] QString ownTitle() const;
    void forgetTextHistory();
    void goToUndoOfRun();
    void dividerMoved();
    void refreshRecipeLine();

    WindowServices shared;
    bool isInDropletEditMode = false;
    bool isPreviewDue = true;
    bool isMovingDivider = false;
    int stepsWidth = 0; ///< asked for last; the splitter has it only once it is laid out
    bool asksForFolders = false;
    QElapsedTimer lastLook;                ///< at what others may have changed
    QStackedWidget* mainTabView = nullptr; ///< the bottom row, or the strip of a run
    QWidget* bottomRow = nullptr;
    bool isRunShown = false;
    QSplitter* outerSplitter = nullptr;
    QSplitter* innerSplitter = nullptr;
    StepsPane* steps = nullptr;
    SettingsPane* settings = nullptr;
    PreviewPane* preview = nullptr;
    RunStrip* strip = nullptr;
    TaskbarProgress taskbar;
    DropletRunWindow* dropletRunWindow = nullptr; ///< where this window is not shown
    QShortcut* closeKey = nullptr;
    QPushButton* createDropletButton = nullptr;
    QPushButton* createFileListButton = nullptr;
    RecipeLine* recipeLine = nullptr;
    QPushButton* okButton = nullptr;
    QToolButton* okMenuButton = nullptr;
    std::unique_ptr<WindowCommands> windowCommands;
    std::unique_ptr<HelpWindow> help;
    std::unique_ptr<HistoryWindow> history; ///< made when it is first wanted
    std::unique_ptr<RecipeClipboard> recipeClipboard;
    std::unique_ptr<WindowKeys> keys;
    std::unique_ptr<WindowSpeech> speech;
};

} // namespace tavrin
