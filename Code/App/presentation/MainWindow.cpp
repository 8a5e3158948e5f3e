#include "presentation/MainWindow.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/Buttons.h"
#include "presentation/ProgressPage.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowCommands.h"
#include "presentation/dialogs/PreferencesWindow.h"
#include "presentation/help/HelpWindow.h"
#include "presentation/history/HistoryWindow.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/settings/SettingsPane.h"
#include "presentation/start/FileAddress.h"
#include "presentation/steps/StepsPane.h"
#include "shell/MainController.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>

namespace tavrin {

namespace {

constexpr int narrowWidth = 860;
constexpr int paneMargin = 12;
constexpr int leastSettingsWidth = 300;
constexpr int firstSettingsWidth = 346;
constexpr int leastPreviewWidth = 440;
constexpr QSize questionWindowSize(640, 380);
constexpr std::chrono::milliseconds patienceWithoutProgress(700);

} // namespace

MainWindow::MainWindow(const WindowServices& services)
    : shared(services), windowCommands(std::make_unique<WindowCommands>(*this, services)),
      help(std::make_unique<HelpWindow>()) {
    setObjectName("mainWindow");
    setWindowTitle("Tavrin");
    setAcceptDrops(true);
    mainTabView = new QStackedWidget;
    mainTabView->setObjectName("mainTabView");
    setCentralWidget(mainTabView);
    mainTabView->addWidget(buildWorkPage());
    progress = new ProgressPage(shared, this);
    mainTabView->addWidget(progress);
    connect(windowCommands->addFiles, &QAction::triggered, this, [this] { addByDialog(false); });
    connect(windowCommands->showHistory, &QAction::triggered, this, [this] { showHistory({}); });
    connect(windowCommands->addFolder, &QAction::triggered, this, [this] { addByDialog(true); });
    connect(steps, &StepsPane::changed, this, &MainWindow::refreshCommands);
    connect(preview, &PreviewPane::selectionChanged, this, &MainWindow::refreshCommands);
    connect(preview, &PreviewPane::begun, this, [this] {
        settings->focusFirstField();
        if (shared.controller.previewControl().isPreviewEmpty())
            addByDialog(false);
    });
    setMinimumSize(640, 520);
    resize(1180, 760);
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
    steps->setMinimumWidth(static_cast<int>(ActionListCommands::minimumWidth));
    steps->setMaximumWidth(static_cast<int>(ActionListCommands::maximumWidth));
    connect(outerSplitter, &QSplitter::splitterMoved, this, [this] { dividerMoved(); });
    connect(innerSplitter, &QSplitter::splitterMoved, this, [this] {
        if (innerSplitter->orientation() == Qt::Horizontal)
            shared.controller.globalSettings().setPreviewPaneWidthAsInt(preview->width());
    });

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
    layout->addWidget(buildBottomRow());
    new Spoken(page); // at a corner, in no layout
    return page;
}

QWidget* MainWindow::buildBottomRow() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(paneMargin, 8, paneMargin, 8);
    createDropletButton = new QPushButton(tr("Create &Droplet…"));
    createDropletButton->setObjectName("createDropletButton");
    createFileListButton = new QPushButton(tr("Save &List…"));
    createFileListButton->setObjectName("createFileListButton");
    okButton = new ProminentButton(tr("&Rename"));
    okButton->setObjectName("okButton");
    okButton->setDefault(true);
    okMenuButton = new MenuButton;
    okMenuButton->setObjectName("okMenuButton");
    okMenuButton->setAccessibleName(tr("More ways to rename"));
    okMenuButton->setPopupMode(QToolButton::InstantPopup);
    okMenuButton->setArrowType(Qt::DownArrow);
    layout->addWidget(createDropletButton);
    layout->addWidget(createFileListButton);
    layout->addStretch(1);
    layout->addWidget(okButton);
    layout->addWidget(okMenuButton);
    performs(*createDropletButton, *windowCommands->createDroplet);
    performs(*createFileListButton, *windowCommands->createFileList);
    performs(*okButton, *windowCommands->ok);
    okMenuButton->addActions({windowCommands->applyAndQuit, windowCommands->applyButDontQuit});
    connect(windowCommands->ok, &QAction::enabledChanged, okMenuButton, &QWidget::setEnabled);
    return row;
}

// --- What the application says ---

void MainWindow::selectMainTab(MainTab tab) { mainTabView->setCurrentIndex(static_cast<int>(tab)); }

void MainWindow::setRunning(bool isRunning) {
    windowCommands->setRunning(isRunning);
    if (history)
        history->reload();
    preview->forgetPictures();
    refreshRenameButton();
}

void MainWindow::setDividerPosition(double position) {
    isMovingDivider = true;
    const int width = static_cast<int>(position);
    steps->setVisible(width > 0);
    if (width > 0)
        outerSplitter->setSizes({width, std::max(1, outerSplitter->width() - width)});
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
    setWindowTitle(tr("Editing Rename Droplet"));
    createDropletButton->hide();
    createFileListButton->hide();
    windowCommands->enterDropletEditMode();
    settings->enterDropletEditMode();
    preview->enterDropletEditMode();
    refreshRenameButton();
}

void MainWindow::buildProgressWindow() {
    // No button to close it: the run has one to stop it.
    progressWindow = new QWidget(this, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                           Qt::WindowMinimizeButtonHint);
    progressWindow->setObjectName("progressWindow");
    progressWindow->installEventFilter(this);
    auto* layout = new QVBoxLayout(progressWindow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(progress);
    progress->show();
    progressWindow->resize(520, 300);
    progressWindow->setAttribute(Qt::WA_ShowWithoutActivating);
    progressDelay.setSingleShot(true);
    connect(&progressDelay, &QTimer::timeout, progressWindow, &QWidget::show);
}

void MainWindow::showProgressWindow() {
    if (!progressWindow)
        buildProgressWindow();
    progressDelay.stop();
    progressWindow->resize(questionWindowSize.expandedTo(progressWindow->size()));
    progressWindow->show();
}

void MainWindow::showProgressAlone(bool isRunning) {
    if (!progressWindow)
        buildProgressWindow();
    if (isRunning) {
        progressDelay.start(patienceWithoutProgress);
        return;
    }
    progressDelay.stop();
    progressWindow->hide();
}

QuestionCard::Place MainWindow::questionPlace() {
    if (!isVisible()) {
        showProgressWindow();
        return {*progressWindow};
    }
    return preview->questionPlace();
}

void MainWindow::centre() {
    const QRect available = screen()->availableGeometry();
    move(available.center() - rect().center());
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
        okButton->setText(
            counted(static_cast<std::size_t>(count), tr("&Rename 1 Item"), tr("&Rename %L1 Items")));
    okMenuButton->setVisible(!isInDropletEditMode);
    refreshCommands();
}

void MainWindow::refreshCommands() { windowCommands->refresh(preview->selection()); }

void MainWindow::setPreviewDue(bool isDue) {
    isPreviewDue = isDue;
    refreshRenameButton();
}

void MainWindow::progressChanged(std::string_view) {
    progress->refresh();
    preview->refreshProgress();
}

// --- What the user does ---

void MainWindow::addByDialog(bool folders) {
    asksForFolders = folders;
    shared.controller.showFileDialog();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    shared.controller.windowWillClose();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != progressWindow || event->type() != QEvent::Close)
        return QMainWindow::eventFilter(watched, event);
    closeEvent(static_cast<QCloseEvent*>(event));
    return true;
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    arrangeForWidth();
}

void MainWindow::arrangeForWidth() {
    const bool isNarrow = width() < narrowWidth;
    const int highest = height() * 45 / 100;
    settings->setMaximumHeight(isNarrow ? highest : QWIDGETSIZE_MAX);
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

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (DroppedFiles::areIn(*event->mimeData()) && shared.controller.validateUserInterfaceItem())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const std::vector<std::string> paths = DroppedFiles::paths(*event->mimeData());
    event->setAccepted(!paths.empty());
    if (paths.empty())
        return;
    shared.controller.addFilePaths(paths, true);
    shared.controller.previewControl().showPreview();
}

} // namespace tavrin
