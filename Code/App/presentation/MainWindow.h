#pragma once

#include "engine/pipeline/ProgressInfo.h"
#include "presentation/WindowServices.h"
#include "presentation/cards/QuestionCard.h"
#include "shell/asking/FrontEnd.h"

#include <QMainWindow>
#include <QTimer>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QPushButton;
class QSplitter;
class QStackedWidget;
class QToolButton;

namespace tavrin {

class HelpWindow;
class PreviewPane;
class ProgressPage;
class RecipeClipboard;
class RecipeLine;
class SettingsPane;
class StepsPane;
class WindowCommands;

/// The one window: steps, settings and list side by side, and the progress page that takes their place during
/// a run. It arranges its panes and passes on what the application says; what they show is theirs.
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
    /// Shows the progress in a small window of its own, for a run without this window; soon, unless the run
    /// is over by then.
    void showProgressAlone(bool isRunning);
    void centre();
    /// Gives the list the width that it had last, where anyone has given it one.
    void restorePaneWidth();
    /// Where a question of a run is put.
    [[nodiscard]] QuestionCard::Place questionPlace();
    void showHelp(std::string_view anchor);
    /// The count on the rename button, and whether it is on.
    void refreshRenameButton();
    /// Whether what the list shows is out of date; the rename button then counts nothing.
    void setPreviewDue(bool isDue);
    /// Whether the dialog under way that adds something is for folders.
    [[nodiscard]] bool isAskingForFolders() const { return asksForFolders; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Of the progress window: to close it is to close this one. Of the list: its width is remembered.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void progressChanged(std::string_view key) override;
    [[nodiscard]] QWidget* buildWorkPage();
    [[nodiscard]] QWidget* buildBottomRow();
    void addByDialog(bool folders);
    void refreshCommands();
    void buildProgressWindow();
    void arrangeForSize();
    void arrangeBottomRow();
    void rememberPaneWidth();
    /// Back onto a screen, if its own has gone or become smaller.
    void returnToScreen();
    /// At once, with room for a question.
    void showProgressWindow();
    void dividerMoved();
    void refreshRecipeLine();

    WindowServices shared;
    bool isInDropletEditMode = false;
    bool isPreviewDue = true;
    bool isMovingDivider = false;
    bool asksForFolders = false;
    QStackedWidget* mainTabView = nullptr;
    QWidget* bottomRow = nullptr;
    QSplitter* outerSplitter = nullptr;
    QSplitter* innerSplitter = nullptr;
    StepsPane* steps = nullptr;
    SettingsPane* settings = nullptr;
    PreviewPane* preview = nullptr;
    ProgressPage* progress = nullptr;
    QWidget* progressWindow = nullptr; ///< where this window is not shown
    QTimer progressDelay;
    QPushButton* createDropletButton = nullptr;
    QPushButton* createFileListButton = nullptr;
    RecipeLine* recipeLine = nullptr;
    QPushButton* okButton = nullptr;
    QToolButton* okMenuButton = nullptr;
    std::unique_ptr<WindowCommands> windowCommands;
    std::unique_ptr<HelpWindow> help;
    std::unique_ptr<RecipeClipboard> recipeClipboard;
};

} // namespace tavrin
