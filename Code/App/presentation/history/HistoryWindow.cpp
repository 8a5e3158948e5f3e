#include "presentation/history/HistoryWindow.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/Buttons.h"
#include "presentation/Dialogs.h"
#include "presentation/FileBrowser.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowMemory.h"
#include "presentation/cards/Card.h"
#include "presentation/history/RunList.h"
#include "presentation/history/RunWords.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QMenu>
#include <QPointer>
#include <QSaveFile>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int leftWidth = 312;
constexpr int pictureSize = 20;
constexpr int mostThreads = 2;

QLabel* makeLabel(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

template <typename Work, typename Then> void HistoryWindow::inBackground(int& newest, Work work, Then then) {
    threads.start(
        [this, &newest, asked = ++newest, work = std::move(work), then = std::move(then)]() mutable {
            auto result = std::make_shared<decltype(work())>(work());
            QMetaObject::invokeMethod(
                this,
                [&newest, asked, result = std::move(result), then = std::move(then)] {
                    if (asked == newest)
                        then(std::move(*result));
                },
                Qt::QueuedConnection);
        });
}

HistoryWindow::HistoryWindow(const WindowServices& shared)
    : services(shared), runs(new RunListModel(this)), items(new RunItemsModel(this)) {
    setObjectName("historyWindow");
    setWindowTitle(tr("History"));
    threads.setMaxThreadCount(mostThreads);
    auto* halves = new QWidget;
    auto* row = new QHBoxLayout(halves);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(buildLeft());
    auto* line = new QFrame;
    line->setFrameShape(QFrame::VLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    row->addWidget(line);
    row->addWidget(buildRight(), 1);
    pages = new QStackedWidget;
    pages->addWidget(halves);
    pages->addWidget(buildEmpty());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pages);
    applyColours();
    resize(1040, 640);
    restoreGeometry(WindowMemory::bytesUnder(services.defaults, "historyGeometry"));
    describe();
}

HistoryWindow::~HistoryWindow() {
    *isLookUnwanted = true;
    threads.clear();
    threads.waitForDone();
}

std::string HistoryWindow::folder() const { return services.controller.renameEngine().historyPlace().folder; }

// --- Making it ---

QWidget* HistoryWindow::buildLeft() {
    list = new QListView;
    list->setObjectName("historyRuns");
    list->setAccessibleName(tr("Past renames"));
    list->setModel(runs);
    list->setItemDelegate(new RunDelegate(list));
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->viewport()->setAutoFillBackground(false);
    list->installEventFilter(this);
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) { choose(index); });
    foot = makeLabel("historyKept");
    foot->setTextFormat(Qt::RichText);
    foot->setContentsMargins(12, 8, 12, 12);
    connect(foot, &QLabel::linkActivated, this, &HistoryWindow::preferencesRequested);
    auto* left = new QWidget;
    left->setFixedWidth(std::max(leftWidth, fontMetrics().averageCharWidth() * 40));
    auto* layout = new QVBoxLayout(left);
    layout->setContentsMargins(0, 8, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(list, 1);
    layout->addWidget(foot);
    return left;
}

QWidget* HistoryWindow::buildRight() {
    head = makeLabel("historyHead");
    QFont strong = font();
    strong.setPointSizeF(strong.pointSizeF() * 1.2);
    strong.setWeight(QFont::DemiBold);
    head->setFont(strong);
    details = makeLabel("historyDetails");
    details->setForegroundRole(QPalette::PlaceholderText);
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    summary = makeLabel("historySummary");
    filter = new QLineEdit;
    filter->setObjectName("historyFilter");
    filter->setPlaceholderText(tr("Filter by name"));
    filter->setAccessibleName(filter->placeholderText());
    filter->setClearButtonEnabled(true);
    connect(filter, &QLineEdit::textChanged, this, [this](const QString& text) {
        arrangement.filter = text;
        arrange();
    });
    auto* said = new QHBoxLayout;
    said->addWidget(summary, 1);
    said->addWidget(filter, 0, Qt::AlignBottom);
    auto* top = new QVBoxLayout;
    top->setContentsMargins(18, 14, 18, 10);
    top->setSpacing(6);
    top->addWidget(head);
    top->addWidget(details);
    top->addLayout(said);
    buildTable();
    auto* right = new QWidget;
    auto* layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(table, 1);
    layout->addWidget(buildButtons());
    return right;
}

void HistoryWindow::buildTable() {
    table = new QTableView;
    table->setObjectName("historyItems");
    table->setAccessibleName(tr("Items of this rename"));
    table->setModel(items);
    table->setFrameShape(QFrame::NoFrame);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setTextElideMode(Qt::ElideMiddle);
    table->setIconSize({pictureSize, pictureSize});
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(std::max(pictureSize, fontMetrics().height()) + 8);
    QHeaderView* header = table->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionsClickable(true);
    header->setStretchLastSection(true);
    header->setMinimumSectionSize(pictureSize + 16);
    header->resizeSection(RunItemsModel::pictureColumn, pictureSize + 20);
    connect(header, &QHeaderView::sectionResized, this, [this](int column) {
        if (column < RunItemsModel::nowColumn && !isSizingColumns)
            areColumnsOwn = true;
    });
    connect(header, &QHeaderView::sectionClicked, this, [this, header](int column) {
        if (column == RunItemsModel::pictureColumn)
            return;
        // Ascending, descending, back.
        const bool isSorted = arrangement.column == column;
        if (isSorted && arrangement.direction == Qt::DescendingOrder)
            arrangement.column = -1;
        arrangement.direction = isSorted ? Qt::DescendingOrder : Qt::AscendingOrder;
        if (!isSorted)
            arrangement.column = column;
        header->setSortIndicatorShown(arrangement.column >= 0);
        header->setSortIndicator(column, arrangement.direction);
        arrange();
    });
    table->installEventFilter(this);
}

QWidget* HistoryWindow::buildButtons() {
    const auto make = [this](const char* name, const QString& label, auto effect) {
        auto* button = new QPushButton(label);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, effect);
        return button;
    };
    forgetButton = make("forgetRun", tr("&Forget This Run"), [this] { forget(); });
    revealButton = make("revealRun", tr("Show in File &Manager"), [this] { reveal(); });
    copyButton = make("copyRun", tr("&Copy as Text"), [this] { copyText(false); });
    otherButton = make("otherRunCommand", {}, [this] { perform(choices().second()); });
    mainButton = new ProminentButton({});
    mainButton->setDefault(true);
    connect(mainButton, &QPushButton::clicked, this, [this] { perform(choices().first()); });
    moreButton = new MenuButton;
    moreButton->setObjectName("historyMore");
    moreButton->setAccessibleName(tr("More"));
    moreButton->setArrowType(Qt::DownArrow);
    moreButton->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(moreButton);
    QAction* forgetAll =
        menu->addAction(tr("Forget &All Settled Runs…"), this, [this] { forgetAllSettled(); });
    forgetAll->setObjectName("forgetAllRuns");
    QAction* exportList = menu->addAction(tr("&Export List…"), this, [this] { exportText(); });
    exportList->setObjectName("exportRun");
    moreButton->setMenu(menu);
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(12, 8, 12, 8);
    for (QWidget* button : std::initializer_list<QWidget*>{forgetButton, revealButton})
        layout->addWidget(button);
    layout->addStretch(1);
    for (QWidget* button : std::initializer_list<QWidget*>{copyButton, otherButton, mainButton, moreButton})
        layout->addWidget(button);
    return bar;
}

QWidget* HistoryWindow::buildEmpty() {
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

// --- Reading ---

void HistoryWindow::showRun(const std::string& run) {
    if (!run.empty())
        wanted = run;
    const bool isToBeRead = isVisible();
    show();
    raise();
    activateWindow();
    if (isToBeRead || !isActiveWindow()) // else becoming active reads it
        reload();
    list->setFocus();
}

void HistoryWindow::reload() {
    if (!isVisible())
        return;
    describeLimits();
    ShownRun::ByName known;
    for (const ShownRun& run : runs->runs())
        known.emplace(run.run.name, run);
    inBackground(
        newestList,
        [place = folder(), known = std::move(known)] { return ShownRun::readAll(RunHistory(place), known); },
        [this](std::vector<ShownRun> read) { runsRead(std::move(read)); });
}

void HistoryWindow::runsRead(std::vector<ShownRun> read) {
    const std::string name = wanted.empty() ? chosenRun : std::exchange(wanted, {});
    const bool isSame = name == chosenRun;
    runs->setRuns(std::move(read));
    pages->setCurrentIndex(runs->runs().empty() ? 1 : 0);
    const QModelIndex index = runs->indexOf(name);
    chosenRun = isSame && runs->runAt(index) && runs->runAt(index)->run.name == name ? name : std::string();
    list->setCurrentIndex(index);
    list->scrollTo(index);
    if (!index.isValid())
        choose(index);
}

void HistoryWindow::choose(const QModelIndex& index) {
    const ShownRun* run = runs->runAt(index);
    if (run && run->run.name == chosenRun) {
        describe();
        look(); // as it was shown before, until that has come
        return;
    }
    chosenRun = run ? run->run.name : std::string();
    items->setContents(std::make_shared<RunContents>(), {});
    {
        const QSignalBlocker blocker(filter);
        filter->clear();
        arrangement.filter.clear();
    }
    describe();
    readItems();
}

const ShownRun* HistoryWindow::chosen() const {
    const ShownRun* run = runs->runAt(list->currentIndex());
    return run && run->run.name == chosenRun ? run : nullptr;
}

void HistoryWindow::readItems() {
    *isLookUnwanted = true;
    const ShownRun* run = chosen();
    if (!run || !run->run.problem.empty())
        return;
    inBackground(
        newestItems,
        [past = run->run, how = arrangement] {
            auto contents = std::make_shared<RunContents>(RunContents::read(past));
            auto order = RunItemsModel::arranged(*contents, how);
            return std::pair(std::move(contents), std::move(order));
        },
        [this](auto read) {
            items->setPictures(services.controller.globalSettings().values().shouldShowQuickLookThumbnail !=
                                   0,
                               pictureSize, devicePixelRatioF());
            items->setContents(std::move(read.first), std::move(read.second));
            look();
        });
}

void HistoryWindow::look() {
    *isLookUnwanted = true;
    isLookUnwanted = std::make_shared<std::atomic<bool>>(false);
    const ShownRun* run = chosen();
    if (!run || !run->isUsable())
        return;
    inBackground(
        newestItems,
        [past = run->run, how = arrangement, isUnwanted = isLookUnwanted] {
            auto contents = std::make_shared<RunContents>(
                RunContents::lookedAt(past, [&isUnwanted] { return isUnwanted->load(); }));
            auto order = RunItemsModel::arranged(*contents, how);
            return std::pair(std::move(contents), std::move(order));
        },
        [this](auto looked) {
            if (!looked.first->isLookedAt)
                return;
            items->setContents(std::move(looked.first), std::move(looked.second));
            arrange(); // it may have changed meanwhile
            describe();
        });
}

void HistoryWindow::arrange() {
    inBackground(
        newestOrder,
        [contents = items->contents(), how = arrangement] {
            return std::pair(contents, RunItemsModel::arranged(*contents, how));
        },
        [this](auto arranged) {
            if (arranged.first == items->contents())
                items->setContents(arranged.first, std::move(arranged.second));
        });
}

// --- What is shown ---

RunChoices HistoryWindow::choices() const {
    static const ShownRun none;
    const ShownRun* run = chosen();
    return {run ? *run : none, *items->contents()};
}

void HistoryWindow::describe() {
    const ShownRun* run = chosen();
    QStringList words;
    if (run) {
        words = {run->folderCount > 1 ? RunWords::place(run->folder, run->folderCount) + " · " +
                                            RunWords::pathText(run->folder)
                                      : RunWords::pathText(run->folder),
                 RunWords::origin(run->run.heading.who), ShownName::of(text::fromUtf8(run->recipe), false)};
        words.removeAll(QString());
        head->setText(RunWords::headline(RunListModel::countOf(*run), run->run.heading.began().value_or(0)));
    } else {
        head->clear();
    }
    details->setText(words.join(QStringLiteral(" · ")));
    summary->setText(run ? choices().sentence() : QString());
    present(*mainButton, run ? choices().first() : RunChoice::none);
    present(*otherButton, run ? choices().second() : RunChoice::none);
    forgetButton->setEnabled(run && !run->run.isUnderWay);
    revealButton->setEnabled(run && !run->folder.empty() && !items->contents()->isFolderMissing);
    copyButton->setEnabled(run && run->isUsable());
}

/// Its words, and whether it is to be seen and on.
void HistoryWindow::present(QPushButton& button, RunChoice choice) {
    button.setVisible(choice != RunChoice::none);
    button.setObjectName(RunChoices::objectNameOf(choice));
    button.setText(choices().labelOf(choice, &button == mainButton));
    button.setEnabled(choices().isOn(choice) && services.controller.validateUserInterfaceItem());
}

// --- What is done ---

void HistoryWindow::perform(RunChoice choice) {
    if (!chosen() || choice == RunChoice::none)
        return;
    UndoCommands& undos = services.controller.undoCommands();
    if (choices().isByUndo(choice))
        undos.undoRun(chosenRun);
    else
        undos.redoRun(chosenRun);
}

void HistoryWindow::forget() {
    const ShownRun* run = chosen();
    if (!run || !forgetButton->isEnabled())
        return;
    const std::vector<ShownRun>& all = runs->runs();
    const auto next = static_cast<std::size_t>(run - all.data()) + 1;
    wanted = next < all.size() ? all[next].run.name : all.size() > 1 ? all[next - 2].run.name : std::string();
    chosenRun.clear();
    inBackground(
        newestCommand, [past = run->run] { return RunHistory::forget(past); },
        [this](int error) {
            if (error != 0)
                summary->setText(tr("The record can’t be removed: %1.").arg(qt_error_string(error)));
            else
                reload();
        });
}

void HistoryWindow::forgetAllSettled() {
    const auto settled = static_cast<std::size_t>(std::ranges::count_if(
        runs->runs(), [](const ShownRun& run) { return run.run.isSettled && run.isUsable(); }));
    CardContent content{.objectName = "forgetAllCard",
                        .head = counted(settled, tr("Forget 1 run?"), tr("Forget %L1 runs?")),
                        .text =
                            tr("What they have renamed keeps its names, and can’t be undone any more. Runs "
                               "that were interrupted stay until they are finished or undone.")};
    content.buttons = {{"cancel", tr("&Cancel")}, {"forgetAll", tr("&Forget All")}};
    content.defaultButton = 1;
    Card::open(*pages, content, [this](std::size_t button) {
        if (button == 0)
            return;
        inBackground(
            newestCommand, [place = folder()] { return RunHistory(place).clear().size(); },
            [this](std::size_t) { reload(); });
    });
}

void HistoryWindow::reveal() {
    const ShownRun* run = chosen();
    if (!run)
        return;
    const QModelIndex current = table->currentIndex();
    if (current.isValid() && table->selectionModel()->isRowSelected(current.row()))
        FileBrowser::reveal(items->contents()->pathOf(items->itemAt(current.row())));
    else if (!items->contents()->items.empty())
        FileBrowser::reveal(items->contents()->pathOf(items->itemAt(0)));
}

/// The rows as text, made by a worker.
void HistoryWindow::withText(bool onlySelected, std::function<void(const QString&)> then) {
    RunItemsModel::Order rows = items->rows();
    if (onlySelected) {
        RunItemsModel::Order selected;
        QItemSelection ranges = table->selectionModel()->selection();
        std::ranges::sort(ranges, {}, &QItemSelectionRange::top);
        for (const QItemSelectionRange& range : ranges)
            selected.insert(selected.end(), rows.begin() + range.top(), rows.begin() + range.bottom() + 1);
        rows = std::move(selected);
    }
    inBackground(
        newestText,
        [contents = items->contents(), rows = std::move(rows)] {
            return RunItemsModel::textOf(*contents, rows);
        },
        [then = std::move(then)](const QString& text) { then(text); });
}

void HistoryWindow::copyText(bool onlySelected) {
    withText(onlySelected, [](const QString& text) { QApplication::clipboard()->setText(text); });
}

void HistoryWindow::exportText() {
    Dialogs::askForSavePath(this, "Export List", [this](std::optional<std::string> path) {
        if (!path)
            return;
        withText(false,
                 [this, name = QFile::decodeName(QByteArray::fromStdString(*path))](const QString& text) {
                     inBackground(
                         newestCommand,
                         [name, text] {
                             QSaveFile file(name);
                             const QByteArray bytes = text.toUtf8();
                             const bool isWritten = file.open(QIODevice::WriteOnly) &&
                                                    file.write(bytes) == bytes.size() && file.commit();
                             return isWritten ? QString() : file.errorString();
                         },
                         [this](const QString& reason) {
                             if (!reason.isEmpty())
                                 summary->setText(tr("The list can’t be written: %1.").arg(reason));
                         });
                 });
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
    *isLookUnwanted = true;
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
    else if (isReturn && mainButton->isVisible())
        mainButton->click();
    else
        QWidget::keyPressEvent(event);
}

/// A share of the width for each name, until the user gives them another.
void HistoryWindow::sizeColumns() {
    if (areColumnsOwn)
        return;
    isSizingColumns = true;
    const int width = table->viewport()->width() - table->columnWidth(RunItemsModel::pictureColumn);
    for (const int names : {RunItemsModel::oldNameColumn, RunItemsModel::newNameColumn})
        table->setColumnWidth(names, std::max(80, width * 3 / 10));
    isSizingColumns = false;
}

bool HistoryWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == table && event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(
            this, [this] { sizeColumns(); }, Qt::QueuedConnection);
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Delete) {
        forget();
        return true;
    }
    if (key->matches(QKeySequence::Copy)) {
        copyText(watched == table && table->selectionModel()->hasSelection());
        return true;
    }
    const bool isText = !key->text().isEmpty() && key->text().front().isPrint() &&
                        !key->text().front().isSpace() && !(key->modifiers() & ~Qt::ShiftModifier);
    if (watched != table || !isText)
        return QWidget::eventFilter(watched, event);
    filter->setFocus();
    filter->setText(filter->text() + key->text());
    return true;
}

void HistoryWindow::describeLimits() {
    const HistoryLimits limits = HistoryLimits::of(services.defaults);
    const QLocale locale;
    foot->setText({}); // a link takes its colour when it is set
    foot->setText(QString("<a href='history'>%1</a>")
                      .arg(tr("Kept for %1 days, at most %2 runs.")
                               .arg(locale.toString(limits.days), locale.toString(limits.runs))));
}

void HistoryWindow::applyColours() {
    describeLimits();
    QPalette chosenColours = QApplication::palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        chosenColours.setColor(group, QPalette::Highlight, WindowColours::chosenGround(chosenColours));
        chosenColours.setColor(group, QPalette::HighlightedText, chosenColours.color(QPalette::Text));
    }
    if (table->palette() != chosenColours)
        table->setPalette(chosenColours);
    QPalette ground = QApplication::palette();
    ground.setColor(QPalette::Base, ground.color(QPalette::Window));
    if (list->palette() != ground)
        list->setPalette(ground);
}

} // namespace tavrin
