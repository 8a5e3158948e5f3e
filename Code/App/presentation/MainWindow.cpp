#include "presentation/MainWindow.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/Buttons.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowCommands.h"
#include "presentation/WindowKeys.h"
#include "presentation/WindowPlace.h"
#include "presentation/WindowSpeech.h"
#include "presentation/dialogs/PreferencesWindow.h"
#include "presentation/help/HelpWindow.h"
#include "presentation/history/HistoryWindow.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/run/DropletRunWindow.h"
#include "presentation/run/RunReportText.h"
#include "presentation/run/RunStrip.h"
#include "presentation/run/Veil.h"
#include "presentation/settings/SettingsPane.h"
#include "presentation/start/FileAddress.h"
#include "presentation/steps/RecipeClipboard.h"
#include "presentation/steps/RecipeLine.h"
#include "presentation/steps/StepsPane.h"
#include "shell/MainController.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int narrowWidth = 860;
constexpr qint64 restBetweenLooks = 2000;  // milliseconds
constexpr int leastWidthOfBottomRow = 720; // for all its buttons
constexpr int lowHeight = 560;
constexpr int paneMargin = 12;
constexpr int leastSettingsWidth = 300;
constexpr int firstSettingsWidth = 346;
constexpr int leastPreviewWidth = 440;
constexpr int leastStepsWidth = 176;
constexpr int firstStepsWidth = 216;
constexpr int mostStepsWidth = 320;

} // namespace

MainWindow::MainWindow(const WindowServices& services)
    : shared(services), windowCommands(std::make_unique<WindowCommands>(*this, services)),
      help(std::make_unique<HelpWindow>()) {
    setObjectName("mainWindow");
    setWindowTitle("Tavrin");
    setAcceptDrops(true);
    setCentralWidget(buildWorkPage());
    closeKey = new QShortcut(QKeySequence("Ctrl+Q"), this, [this] { close(); });
    closeKey->setEnabled(false);
    connect(windowCommands.get(), &WindowCommands::undoRequested, this, &MainWindow::goToUndoOfRun);
    connect(windowCommands->clearPreview, &QAction::triggered, this, [this] {
        preview->messageBars().dismiss(RunReportText::barName);
        preview->messageBars().dismiss("itemsWereGone");
    });
    connect(windowCommands->addFiles, &QAction::triggered, this, [this] { addByDialog(false); });
    connect(windowCommands->showHistory, &QAction::triggered, this, [this] { showHistory({}); });
    connect(windowCommands->addFolder, &QAction::triggered, this, [this] { addByDialog(true); });
    connect(steps, &StepsPane::changed, this, [this] {
        refreshCommands();
        arrangeForSize();
    });
    connect(preview, &PreviewPane::selectionChanged, this, &MainWindow::refreshCommands);
    connect(preview, &PreviewPane::begun, this, [this] {
        settings->focusFirstField();
        if (shared.controller.previewControl().isPreviewEmpty())
            addByDialog(false);
    });
    recipeClipboard =
        std::make_unique<RecipeClipboard>(shared, *windowCommands, preview->messageBars(), *steps, *preview);
    keys = std::make_unique<WindowKeys>(
        *this, std::vector<QWidget*>{steps, settings, &preview->listPages(),
                                     preview->findChild<QWidget*>("messageBars"), mainTabView});
    speech = std::make_unique<WindowSpeech>(shared, [this] { return preview->problemCount(); });
    setMinimumSize(WindowPlace::least);
    resize(WindowPlace::first(screen()->availableGeometry()).size());
    connect(qApp, &QGuiApplication::screenRemoved, this, &MainWindow::returnToScreen, Qt::QueuedConnection);
    shared.controller.progressInfo().setObserver(this);
}

MainWindow::~MainWindow() { shared.controller.progressInfo().setObserver(nullptr); }

QWidget* MainWindow::buildWorkPage() {
    steps = new StepsPane(shared, *windowCommands);
    preview = new PreviewPane(shared, *windowCommands);
    settings = new SettingsPane(shared, *windowCommands, *preview);
    settings->setMinimumWidth(leastSettingsWidth);
    preview->setMinimumWidth(leastPreviewWidth);
    innerSplitter = new QSplitter(Qt::Horizontal);
    innerSplitter->setObjectName("innerSplitter");
    innerSplitter->setChildrenCollapsible(false);
    innerSplitter->addWidget(settings);
    innerSplitter->addWidget(preview);
    innerSplitter->setStretchFactor(0, 0);
    innerSplitter->setStretchFactor(1, 1);
    innerSplitter->setSizes({firstSettingsWidth, 800});
    outerSplitter = new QSplitter(Qt::Horizontal);
    outerSplitter->setObjectName("outerSplitter");
    outerSplitter->addWidget(steps);
    outerSplitter->addWidget(innerSplitter);
    outerSplitter->setStretchFactor(0, 0);
    outerSplitter->setStretchFactor(1, 1);
    outerSplitter->setCollapsible(1, false);
    steps->setMinimumWidth(leastStepsWidth);
    steps->setMaximumWidth(mostStepsWidth);
    connect(outerSplitter, &QSplitter::splitterMoved, this, [this] { dividerMoved(); });
    preview->installEventFilter(this);

    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(outerSplitter, 1);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    layout->addWidget(line);
    mainTabView = new QStackedWidget;
    mainTabView->setObjectName("mainTabView");
    mainTabView->addWidget(buildBottomRow());
    strip = new RunStrip(shared);
    mainTabView->addWidget(strip);
    mainTabView->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    layout->addWidget(mainTabView);
    new Spoken(page); // at a corner, in no layout
    return page;
}

QWidget* MainWindow::buildBottomRow() {
    bottomRow = new QWidget;
    bottomRow->setObjectName("bottomRow");
    auto* layout = new QHBoxLayout(bottomRow);
    createDropletButton = new QPushButton(tr("Create &Droplet…"));
    createDropletButton->setObjectName("createDropletButton");
    createFileListButton = new QPushButton(tr("Save &List…"));
    createFileListButton->setObjectName("createFileListButton");
    okButton = new ProminentButton(tr("&Rename"));
    okButton->setObjectName("okButton");
    okButton->setDefault(true);
    recipeLine = new RecipeLine;
    recipeLine->setVisible(windowCommands->showRecipeLine->isChecked());
    connect(windowCommands->showRecipeLine, &QAction::toggled, recipeLine, [this](bool isShown) {
        recipeLine->setVisible(isShown);
        refreshRecipeLine();
    });
    okMenuButton = new MenuButton;
    okMenuButton->setObjectName("okMenuButton");
    okMenuButton->setAccessibleName(tr("More ways to rename"));
    okMenuButton->setPopupMode(QToolButton::InstantPopup);
    okMenuButton->setArrowType(Qt::DownArrow);
    layout->addWidget(createDropletButton);
    layout->addWidget(createFileListButton);
    layout->addWidget(recipeLine, 100);
    layout->addStretch(1);
    layout->addWidget(okButton);
    layout->addWidget(okMenuButton);
    performs(*createDropletButton, *windowCommands->createDroplet);
    performs(*createFileListButton, *windowCommands->createFileList);
    performs(*okButton, *windowCommands->ok);
    okMenuButton->addActions({windowCommands->applyAndQuit, windowCommands->applyButDontQuit});
    return bottomRow;
}

// --- What the application says ---

void MainWindow::selectMainTab(MainTab tab) {
    const bool isRun = tab == MainTab::progress;
    if (isRun != isRunShown)
        setRunShown(isRun);
}

void MainWindow::setRunShown(bool isShown) {
    isRunShown = isShown;
    Veil::lay(*steps, isShown);
    Veil::lay(*settings, isShown);
    closeKey->setEnabled(isShown);
    if (isShown) {
        preview->messageBars().dismiss(RunReportText::barName);
        strip->setStopWidth(okButton->width() + (okMenuButton->isHidden() ? 0 : okMenuButton->width()));
        preview->beginRun();
        preview->focusList();
        strip->begin();
    } else {
        preview->endRun();
        setWindowTitle(ownTitle());
        taskbar.show(std::nullopt);
    }
    mainTabView->setCurrentIndex(static_cast<int>(isShown ? MainTab::progress : MainTab::interface));
}

void MainWindow::setRunning(bool isRunning) {
    windowCommands->setRunning(isRunning);
    speech->runChanged(isRunning, static_cast<std::size_t>(std::max(0, preview->itemsToRename())));
    if (!isRunning)
        preview->forgetPictures(); // which the run has moved to other names
    if (history)
        history->reload();
    refreshRenameButton();
}

QString MainWindow::ownTitle() const {
    return isInDropletEditMode ? tr("Editing Rename Droplet") : QString("Tavrin");
}

void MainWindow::setDividerPosition(double position) {
    isMovingDivider = true;
    // The least position stands for one that nobody has chosen.
    stepsWidth = position <= 0                                  ? 0
                 : position <= ActionListCommands::minimumWidth ? firstStepsWidth
                                                                : static_cast<int>(position);
    steps->setVisible(stepsWidth > 0);
    arrangeForSize();
    if (stepsWidth > 0)
        outerSplitter->setSizes({stepsWidth, std::max(1, outerSplitter->width() - stepsWidth)});
    isMovingDivider = false;
}

void MainWindow::dividerMoved() {
    if (isMovingDivider)
        return;
    const int width = outerSplitter->sizes().front();
    if (width == 0 && !shared.controller.actionListCommands().canCollapse()) {
        setDividerPosition(ActionListCommands::minimumWidth);
        return;
    }
    shared.controller.actionListCommands().splitViewDidResizeSubviews(width == 0, width);
}

void MainWindow::fillPresetMenu(const std::vector<std::u16string>& titles) {
    windowCommands->fillPresetMenu(titles);
}

void MainWindow::enterDropletEditMode() {
    isInDropletEditMode = true;
    setWindowTitle(ownTitle());
    windowCommands->enterDropletEditMode();
    settings->enterDropletEditMode();
    preview->enterDropletEditMode();
    refreshRenameButton();
}

DropletRunWindow& MainWindow::dropletWindow() {
    if (!dropletRunWindow) {
        dropletRunWindow = new DropletRunWindow(shared, this);
        connect(dropletRunWindow, &DropletRunWindow::closeWanted, this,
                [this] { shared.controller.windowWillClose(); });
    }
    return *dropletRunWindow;
}

void MainWindow::showRunAlone(bool isRunning) {
    if (isRunning)
        dropletWindow().begin();
    else
        dropletWindow().end();
}

void MainWindow::setWaiting(bool waits) {
    if (dropletRunWindow)
        dropletRunWindow->setWaiting(waits);
    if (!isRunShown)
        return;
    strip->setWaiting(waits);
    preview->setWaiting(waits);
}

void MainWindow::showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer) {
    forgetTextHistory();
    if (!isVisible()) {
        dropletWindow().showReport(report, std::move(answer));
        return;
    }
    if (report.endsProgram) {
        const RunReportText::Card card = RunReportText::cardOf(report);
        closeKey->setEnabled(true);
        Card::open(preview->questionPlace().over, card.content,
                   [this, answers = card.answers, answer = std::move(answer)](std::size_t button) {
                       closeKey->setEnabled(false);
                       answer(answers[button]);
                   });
        return;
    }
    UndoCommands& undos = shared.controller.undoCommands();
    RunReportText::Effects effects;
    effects.undo = [&undos, run = report.run] { undos.undoRun(run); };
    effects.redo = [&undos, run = report.run] { undos.redoRun(run); };
    effects.showHistory = [this, run = report.run] { showHistory(run); };
    if (!report.clearsList)
        effects.showNotRenamed = [this] { preview->setShow(PreviewPane::Show::notRenamed); };
    preview->messageBars().present(RunReportText::barOf(report, effects));
    answer(ReportAnswer::close);
}

/// What was typed before a run is not to be taken back by a key that was meant for the run.
void MainWindow::forgetTextHistory() {
    for (QLineEdit* line : settings->findChildren<QLineEdit*>())
        if (line->isUndoAvailable())
            line->setText(QString(line->text()));
    for (QTextEdit* text : settings->findChildren<QTextEdit*>())
        text->document()->clearUndoRedoStacks();
}

void MainWindow::goToUndoOfRun() {
    QPushButton* undo = preview->messageBars().findChild<QPushButton*>("undoRun");
    if (!undo || !undo->isVisible())
        return;
    undo->setFocus(Qt::ShortcutFocusReason);
    Spoken::say(tr("Alt+U undoes the rename."));
}

QuestionCard::Place MainWindow::questionPlace() {
    return isVisible() ? preview->questionPlace() : dropletWindow().questionPlace();
}

void MainWindow::centre() {
    const QRect available = screen()->availableGeometry();
    move(available.center() - rect().center());
}

void MainWindow::returnToScreen() {
    if (isMaximized() || isFullScreen())
        return;
    QList<QRect> available;
    for (const QScreen* each : QGuiApplication::screens())
        available.append(each->availableGeometry());
    if (!available.isEmpty())
        setGeometry(WindowPlace::cut(geometry(), available));
}

void MainWindow::showHelp(std::string_view anchor) {
    help->show();
    help->showAnchor(anchor);
    help->raise();
    help->activateWindow();
}

void MainWindow::showHistory(const std::string& run) {
    if (!history) {
        history = std::make_unique<HistoryWindow>(shared);
        connect(history.get(), &HistoryWindow::preferencesRequested, this,
                [this] { PreferencesWindow::open(this, shared, PreferencesWindow::Page::history); });
    }
    history->showRun(run);
}

void MainWindow::refreshRenameButton() {
    const std::int32_t count = preview->itemsToRename();
    if (isInDropletEditMode)
        okButton->setText(tr("&Save"));
    else if (isPreviewDue || count <= 0)
        okButton->setText(tr("&Rename"));
    else
        okButton->setText(tr("&Rename 1 Item||&Rename %Ln Items", nullptr, count));
    arrangeBottomRow();
    refreshCommands();
}

void MainWindow::refreshCommands() {
    windowCommands->refresh(preview->selection());
    refreshRecipeLine();
}

void MainWindow::refreshRecipeLine() {
    if (windowCommands->showRecipeLine->isChecked())
        recipeLine->setRecipe(toQString(shared.controller.recipeCommands().line()));
}

void MainWindow::setPreviewDue(bool isDue) {
    isPreviewDue = isDue;
    speech->previewChanged(isDue);
    refreshRenameButton();
}

void MainWindow::progressChanged(std::string_view) {
    preview->refreshProgress();
    if (dropletRunWindow)
        dropletRunWindow->refresh();
    if (!isRunShown)
        return;
    strip->refresh();
    const auto percent = strip->percent();
    //: Title of the window during a run
    setWindowTitle(percent ? tr("%L1 % – Tavrin").arg(*percent) : ownTitle());
    taskbar.show(percent);
}

// --- What the user does ---

void MainWindow::addByDialog(bool folders) {
    asksForFolders = folders;
    shared.controller.showFileDialog();
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    const bool isDue = !lastLook.isValid() || lastLook.hasExpired(restBetweenLooks);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow() || isRunShown || !isDue)
        return;
    lastLook.start();
    shared.controller.lookAgain();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    shared.controller.windowWillClose();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == preview && event->type() == QEvent::Resize)
        rememberPaneWidth();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
    if (isRunShown && event->key() == Qt::Key_Escape && !event->isAutoRepeat())
        strip->stop();
    else
        QMainWindow::keyPressEvent(event);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    arrangeForSize();
}

/// What does not fit beside the main button stands in its menu.
void MainWindow::arrangeBottomRow() {
    const bool isWhole = width() >= leastWidthOfBottomRow;
    createDropletButton->setVisible(isWhole && !isInDropletEditMode);
    createFileListButton->setVisible(isWhole && !isInDropletEditMode);
    okMenuButton->setVisible(!isInDropletEditMode);
    for (QAction* each : {windowCommands->createDroplet, windowCommands->createFileList}) {
        okMenuButton->removeAction(each);
        if (!isWhole)
            okMenuButton->addAction(each);
    }
    const int margin = height() < lowHeight ? 2 : 8;
    bottomRow->layout()->setContentsMargins(paneMargin, margin, paneMargin, margin);
}

void MainWindow::arrangeForSize() {
    const int beside = steps->isHidden() ? 0 : steps->minimumWidth() + outerSplitter->handleWidth();
    const int needed = beside + settings->minimumWidth() + innerSplitter->handleWidth() + leastPreviewWidth;
    const bool isNarrow = width() < std::max(narrowWidth, needed);
    const int highest = height() * 45 / 100;
    settings->setMaximumHeight(isNarrow ? highest : QWIDGETSIZE_MAX);
    preview->setMinimumWidth(isNarrow ? 0 : leastPreviewWidth);
    preview->setLow(height() < lowHeight);
    arrangeBottomRow();
    const Qt::Orientation orientation = isNarrow ? Qt::Vertical : Qt::Horizontal;
    if (innerSplitter->orientation() == orientation)
        return;
    innerSplitter->setOrientation(orientation);
    if (!isNarrow)
        return;
    // The splitter gets its own new height only after this.
    QMetaObject::invokeMethod(
        innerSplitter,
        [this] {
            const int share = settings->maximumHeight();
            innerSplitter->setSizes({share, innerSplitter->height() - share});
        },
        Qt::QueuedConnection);
}

/// Of the list beside the settings, which keep theirs when the window grows.
void MainWindow::rememberPaneWidth() {
    if (isVisible() && innerSplitter->orientation() == Qt::Horizontal)
        shared.controller.globalSettings().setPreviewPaneWidthAsInt(preview->width());
}

void MainWindow::restorePaneWidth() {
    const std::int32_t stored = shared.controller.globalSettings().values().previewPaneWidth;
    if (stored <= 0 || stored == Settings::firstPreviewPaneWidth)
        return;
    const int beside = steps->isHidden() ? 0 : stepsWidth + outerSplitter->handleWidth();
    const int whole = isMaximized() ? screen()->availableGeometry().width() : width();
    const int room = whole - beside - innerSplitter->handleWidth();
    innerSplitter->setSizes({std::max(leastSettingsWidth, room - stored), stored});
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (DroppedFiles::areIn(*event->mimeData()) && shared.controller.validateUserInterfaceItem())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const std::vector<std::string> paths = DroppedFiles::paths(*event->mimeData());
    event->setAccepted(!paths.empty());
    const QWidget* target = childAt(event->position().toPoint());
    const bool isOnSteps = target && (target == steps || steps->isAncestorOf(target));
    if (paths.empty() || (isOnSteps && recipeClipboard->openDropped(paths)))
        return;
    shared.controller.addFilePaths(paths, true);
    shared.controller.previewControl().showPreview();
}

} // namespace tavrin
