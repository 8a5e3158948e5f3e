#include "presentation/history/HistoryWindow.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/Dialogs.h"
#include "presentation/FileBrowser.h"
#include "presentation/WindowMemory.h"
#include "presentation/cards/Card.h"
#include "presentation/history/RunButtons.h"
#include "presentation/history/RunTable.h"
#include "presentation/history/RunWords.h"
#include "presentation/history/RunsPane.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSaveFile>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

QLabel* makeLabel(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QFrame* makeLine() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::VLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

} // namespace

HistoryWindow::HistoryWindow(const WindowServices& shared) : services(shared) {
    setObjectName("historyWindow");
    setWindowTitle(tr("History"));
    makeLabels();
    makeParts();
    connectButtons();
    pages = new QStackedWidget;
    pages->addWidget(layOutHalves());
    pages->addWidget(makeEmptyPage());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pages);
    applyColours();
    resize(1040, 640);
    restoreGeometry(WindowMemory::bytesUnder(services.defaults, "historyGeometry"));
    describe();
}

std::string HistoryWindow::folder() const { return services.controller.renameEngine().historyPlace().folder; }

// --- Making it ---

void HistoryWindow::makeLabels() {
    head = makeLabel("historyHead");
    QFont strong = font();
    strong.setPointSizeF(strong.pointSizeF() * 1.2);
    strong.setWeight(QFont::DemiBold);
    head->setFont(strong);
    details = makeLabel("historyDetails");
    details->setForegroundRole(QPalette::PlaceholderText);
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    summary = makeLabel("historySummary");
}

void HistoryWindow::makeParts() {
    left = new RunsPane(services.defaults);
    left->view()->installEventFilter(this);
    connect(left, &RunsPane::chose, this, &HistoryWindow::choose);
    connect(left, &RunsPane::hitChosen, this, &HistoryWindow::chooseHit);
    connect(left, &RunsPane::preferencesRequested, this, &HistoryWindow::preferencesRequested);
    filter = new QLineEdit;
    filter->setObjectName("historyFilter");
    filter->setPlaceholderText(tr("Filter by name"));
    filter->setAccessibleName(filter->placeholderText());
    filter->setClearButtonEnabled(true);
    table = new RunTable;
    table->installEventFilter(this);
    connect(filter, &QLineEdit::textChanged, table, &RunTable::setFilter);
    connect(table, &RunTable::looked, this, &HistoryWindow::describe);
    connect(table, &RunTable::typed, this, [this](const QString& text) {
        filter->setFocus();
        filter->setText(filter->text() + text);
    });
}

void HistoryWindow::connectButtons() {
    buttons = new RunButtons;
    connect(buttons, &RunButtons::forgetRequested, this, &HistoryWindow::forget);
    connect(buttons, &RunButtons::forgetAllRequested, this, &HistoryWindow::askToForgetAll);
    connect(buttons, &RunButtons::copyRequested, this, [this] { copyText(false); });
    connect(buttons, &RunButtons::exportRequested, this, &HistoryWindow::exportText);
    connect(buttons, &RunButtons::commandRequested, this, &HistoryWindow::perform);
    connect(buttons, &RunButtons::revealRequested, this, [this] {
        if (const std::string path = table->pathInHand(); !path.empty())
            FileBrowser::reveal(path);
    });
}

QWidget* HistoryWindow::layOutRun() {
    auto* said = new QHBoxLayout;
    said->addWidget(summary, 1);
    said->addWidget(filter, 0, Qt::AlignBottom);
    auto* top = new QVBoxLayout;
    top->setContentsMargins(18, 14, 18, 10);
    top->setSpacing(6);
    top->addWidget(head);
    top->addWidget(details);
    top->addLayout(said);
    auto* right = new QWidget;
    auto* layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(table, 1);
    layout->addWidget(buttons);
    return right;
}

QWidget* HistoryWindow::layOutHalves() {
    auto* halves = new QWidget;
    auto* row = new QHBoxLayout(halves);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(left);
    row->addWidget(makeLine());
    row->addWidget(layOutRun(), 1);
    return halves;
}

QWidget* HistoryWindow::makeEmptyPage() {
    auto* page = new QWidget;
    auto* title = makeLabel("historyEmpty");
    title->setText(tr("No runs yet."));
    title->setAlignment(Qt::AlignCenter);
    title->setFont(head->font());
    auto* text = makeLabel("historyEmptyText");
    text->setText(tr("Each rename is recorded here and can be undone, also after a restart."));
    text->setAlignment(Qt::AlignCenter);
    text->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QVBoxLayout(page);
    layout->addStretch(1);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addStretch(1);
    return page;
}

// --- Which run ---

void HistoryWindow::showRun(const std::string& run) {
    if (!run.empty()) {
        wanted = run;
        left->endSearch();
    }
    const bool isToBeRead = isVisible();
    show();
    raise();
    activateWindow();
    if (isToBeRead || !isActiveWindow()) // else becoming active reads it
        reload();
    left->takeFocus();
}

void HistoryWindow::reload() {
    if (!isVisible())
        return;
    left->describeLimits();
    ShownRun::ByName known;
    for (const ShownRun& run : left->runs())
        known.emplace(run.run.name, run);
    listing.start([place = folder(), known = std::move(known)](
                      const auto&) { return ShownRun::readAll(RunHistory(place), known); },
                  [this](std::vector<ShownRun> read) { runsRead(std::move(read)); });
}

void HistoryWindow::runsRead(std::vector<ShownRun> read) {
    pages->setCurrentIndex(read.empty() ? 1 : 0);
    left->setRuns(std::move(read), wanted.empty() ? chosenRun : std::exchange(wanted, {}));
}

const ShownRun* HistoryWindow::chosen() const {
    const ShownRun* run = left->chosen();
    return run && run->run.name == chosenRun ? run : nullptr;
}

void HistoryWindow::choose() {
    const ShownRun* run = left->chosen();
    const bool isSame = run && run->run.name == chosenRun;
    chosenRun = run ? run->run.name : std::string();
    if (!isSame) {
        table->clear();
        filter->setText(std::exchange(filterToBe, {}));
    }
    describe();
    if (!run || !run->run.problem.empty())
        return;
    table->setPictures(services.controller.globalSettings().values().shouldShowQuickLookThumbnail != 0);
    if (!isSame)
        table->read(run->run);
    else if (run->isUsable())
        table->look(run->run); // as it was shown before, until that has come
}

void HistoryWindow::chooseHit(const NamesFound::Hit& hit, const std::string& run, const QString& text) {
    if (run == chosenRun) {
        filter->setText(text);
    } else {
        filterToBe = text;
        left->choose(run);
    }
    table->seek(hit.item);
}

// --- What is shown ---

void HistoryWindow::describe() {
    const ShownRun* run = chosen();
    head->setText(run ? RunWords::headline(RunListModel::countOf(*run), run->run.heading.began().value_or(0))
                      : QString());
    details->setText(run ? detailsOf(*run) : QString());
    summary->setText(run ? RunChoices(*run, table->contents()).sentence() : QString());
    buttons->describe(run, table->contents(), services.controller.validateUserInterfaceItem());
}

QString HistoryWindow::detailsOf(const ShownRun& run) const {
    QStringList words;
    if (run.folderCount > 1)
        words += RunWords::place(run.folder, run.folderCount);
    words += RunWords::pathText(run.folder);
    words += RunWords::origin(run.run.heading.who);
    words += ShownName::of(text::fromUtf8(run.recipe), false);
    words.removeAll(QString());
    return words.join(QStringLiteral(" · "));
}

void HistoryWindow::applyColours() {
    left->applyColours();
    table->applyColours();
}

// --- What is done ---

void HistoryWindow::perform(RunChoice choice) {
    const ShownRun* run = chosen();
    if (!run || choice == RunChoice::none)
        return;
    UndoCommands& undos = services.controller.undoCommands();
    if (RunChoices(*run, table->contents()).isByUndo(choice))
        undos.undoRun(chosenRun);
    else
        undos.redoRun(chosenRun);
}

void HistoryWindow::forget() {
    const ShownRun* run = chosen();
    if (!run || !buttons->canForget())
        return;
    const std::vector<ShownRun>& all = left->runs();
    const auto next = static_cast<std::size_t>(run - all.data()) + 1;
    wanted = next < all.size() ? all[next].run.name : all.size() > 1 ? all[next - 2].run.name : std::string();
    chosenRun.clear();
    commands.start([past = run->run](const auto&) { return RunHistory::forget(past); },
                   [this](int error) {
                       if (error != 0)
                           summary->setText(
                               tr("The record can’t be removed: %1.").arg(qt_error_string(error)));
                       else
                           reload();
                   });
}

void HistoryWindow::askToForgetAll() {
    const auto settled = static_cast<std::size_t>(std::ranges::count_if(
        left->runs(), [](const ShownRun& run) { return run.run.isSettled && run.isUsable(); }));
    CardContent content{.objectName = "forgetAllCard",
                        .head = tr("Forget 1 run?||Forget %Ln runs?", nullptr, static_cast<int>(settled)),
                        .text =
                            tr("What they have renamed keeps its names, and can’t be undone any more. Runs "
                               "that were interrupted stay until they are finished or undone.")};
    content.buttons = {{"cancel", tr("&Cancel")}, {"forgetAll", tr("&Forget All")}};
    content.defaultButton = 1;
    Card::open(*pages, content, [this](std::size_t button) {
        if (button == 0)
            return;
        commands.start([place = folder()](const auto&) { return RunHistory(place).clear().size(); },
                       [this](std::size_t) { reload(); });
    });
}

void HistoryWindow::copyText(bool onlySelected) {
    table->withText(onlySelected, [](const QString& text) { QApplication::clipboard()->setText(text); });
}

void HistoryWindow::exportText() {
    Dialogs::askForSavePath(this, "Export List", [this](std::optional<std::string> path) {
        if (path)
            table->withText(false, [this, to = *path](const QString& text) { write(text, to); });
    });
}

void HistoryWindow::write(const QString& text, const std::string& path) {
    commands.start(
        [text, name = QFile::decodeName(QByteArray::fromStdString(path))](const auto&) {
            QSaveFile file(name);
            const QByteArray bytes = text.toUtf8();
            const bool isWritten =
                file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
            return isWritten ? QString() : file.errorString();
        },
        [this](const QString& reason) {
            if (!reason.isEmpty())
                summary->setText(tr("The list can’t be written: %1.").arg(reason));
        });
}

// --- Events ---

void HistoryWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        reload();
    else if (event->type() == QEvent::PaletteChange)
        applyColours();
}

void HistoryWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    table->stopLooking();
    const QByteArray geometry = saveGeometry();
    services.defaults.setObject("historyGeometry", WindowMemory::dataOf(geometry));
}

void HistoryWindow::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        close();
    else if (isReturn && qobject_cast<QPushButton*>(focusWidget()))
        qobject_cast<QPushButton*>(focusWidget())->click();
    else if (isReturn && filter->hasFocus())
        table->setFocus();
    else if (isReturn)
        buttons->clickMain();
    else
        QWidget::keyPressEvent(event);
}

bool HistoryWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Delete)
        forget();
    else if (key->matches(QKeySequence::Copy))
        copyText(watched == table && table->selectionModel()->hasSelection());
    else
        return QWidget::eventFilter(watched, event);
    return true;
}

} // namespace tavrin
