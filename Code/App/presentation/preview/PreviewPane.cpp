#include "presentation/preview/PreviewPane.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/DroppedFiles.h"
#include "presentation/FileBrowser.h"
#include "presentation/MainWindow.h"
#include "presentation/QtText.h"
#include "presentation/WindowCommands.h"
#include "presentation/preview/DropletBanner.h"
#include "presentation/preview/EmptyListPage.h"
#include "presentation/preview/FindBar.h"
#include "presentation/preview/ListBar.h"
#include "presentation/preview/NameDelegate.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/preview/ProblemBar.h"
#include "presentation/preview/ProblemScan.h"
#include "presentation/preview/StatusRow.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/commands/MainController.h"
#include "shell/preview/SlicedWork.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::size_t rowsAtOnce = 256;
/// Each cell that is painted is looked up in all of them, so a selection that falls into more is given up.
constexpr qsizetype mostRanges = 1000;
constexpr int thumbnailRowHeight = 33;
constexpr int thumbnailSize = 28;
constexpr std::chrono::milliseconds restAfterScrolling(150);

} // namespace

struct PreviewPane::Parts {
    Parts(WindowServices shared, PreviewPane& pane)
        : services(shared), controller(shared.controller), owner(pane),
          thumbnails([this](RowId id) { model.thumbnailChanged(id); }), model(shared, thumbnails, &pane),
          view(new PreviewTableView(model, shared.controller.dndArrayController())),
          longWork(shared.controller.runLoop()),
          scan(shared, [this](ProblemScan::Findings found) { foreseen(std::move(found)); }) {}

    void buildTable();
    void listenToSettings();
    void applyRowHeight();
    void sortByColumn(int column);
    void foreseen(ProblemScan::Findings found);
    void removeSelected();
    [[nodiscard]] std::optional<PreviewList::Row> currentRow() const;
    void showPage(bool isEmpty);
    void showListIfDue();
    [[nodiscard]] RowId idAt(int row) const;
    /// Where these rows are now.
    [[nodiscard]] QItemSelection placesOf(const std::vector<RowId>& selected) const;
    void goTo(int row);

    const WindowServices services;
    MainController& controller;
    PreviewPane& owner;
    ThumbnailLoader thumbnails;
    PreviewTableModel model;
    PreviewTableView* view;
    SlicedWork longWork;
    ProblemScan scan;
    QStackedWidget* pages = nullptr; ///< the table, or the invitation
    ListBar* listBar = nullptr;
    FindBar* findBar = nullptr;
    ProblemBar* problemBar = nullptr;
    StatusRow* statusRow = nullptr;
    QTimer scrollRest;
    bool isListDue = false; ///< the rows have been put in another order, which does not show yet
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
    std::shared_ptr<void> invisiblesObservation;
    std::array<std::pair<int, int>, PreviewTableModel::columnCount_> widthLimits{};
};

// --- Building ---

void PreviewPane::Parts::buildTable() {
    view->setObjectName("previewTableView");
    view->setAccessibleName("Files and new names");
    view->setItemDelegate(new NameDelegate(view));
    view->setAlternatingRowColors(true);
    view->setShowGrid(false);
    view->setWordWrap(false);
    view->setFrameShape(QFrame::NoFrame);
    view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->setIconSize({thumbnailSize, thumbnailSize});
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->verticalHeader()->hide();
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* header = view->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setSectionsClickable(true);
    header->setMinimumSectionSize(20);
    view->setColumnWidth(PreviewTableModel::icon, 40);
    view->setColumnWidth(PreviewTableModel::state, 34);
    for (const int column : {PreviewTableModel::icon, PreviewTableModel::state})
        header->setSectionResizeMode(column, QHeaderView::Fixed);
    connect(header, &QHeaderView::sectionClicked, view, [this](int column) { sortByColumn(column); });
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, &owner, [this] {
        if (auto* window = dynamic_cast<MainWindow*>(owner.window()))
            window->commands().refresh();
    });
    view->removeHandler = [this] { removeSelected(); };
    view->moveHandler = [this](bool up) { owner.moveSelection(up); };
    view->openHandler = [this] { owner.openSelected(); };
    view->widthHandler = [this] { owner.sizeColumnsToFit(); };
    scrollRest.setSingleShot(true);
    scrollRest.setInterval(restAfterScrolling);
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, &owner, [this] {
        thumbnails.setPaused(true);
        scrollRest.start();
    });
    connect(&scrollRest, &QTimer::timeout, &owner, [this] {
        thumbnails.setPaused(false);
        view->viewport()->update();
    });
    connect(view, &QTableView::customContextMenuRequested, &owner, [this](const QPoint& place) {
        auto* window = dynamic_cast<MainWindow*>(owner.window());
        if (!window)
            return;
        auto* menu = new QMenu(&owner);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (const char* name : {"openFile", "revealFile", "copy", "removeFile", "moveRowUp", "moveRowDown"})
            menu->addAction(window->commands().command(name));
        menu->popup(view->viewport()->mapToGlobal(place));
    });
}

void PreviewPane::Parts::listenToSettings() {
    TVRNGlobalPreferencesPseudoAction& settings = controller.globalSettings();
    bindings.push_back(
        std::make_unique<ParameterBinding>(settings, "quickLookThumbnail", [this](const auto& value) {
            model.setShowsThumbnails(value && boolValue(*value));
            applyRowHeight();
        }));
    const auto invisiblesChanged = [this] {
        model.setShowsInvisibles(services.defaults.boolForKey("showInvisibles"));
    };
    invisiblesChanged();
    invisiblesObservation = services.defaults.observe("showInvisibles", [this, invisiblesChanged] {
        QMetaObject::invokeMethod(&owner, invisiblesChanged, Qt::QueuedConnection);
    });
}

void PreviewPane::Parts::applyRowHeight() {
    const bool hasThumbnails = controller.globalSettings().values().shouldShowQuickLookThumbnail;
    const int plain = view->fontMetrics().height() + 8;
    view->verticalHeader()->setDefaultSectionSize(hasThumbnails ? std::max(plain, thumbnailRowHeight)
                                                                : plain);
    view->setColumnWidth(PreviewTableModel::icon, hasThumbnails ? 40 : 28);
    const int pictureSize = hasThumbnails ? thumbnailSize : 16;
    view->setIconSize({pictureSize, pictureSize});
    const double ratio = view->devicePixelRatioF();
    thumbnails.setSize(static_cast<int>(pictureSize * ratio), ratio);
}

PreviewPane::PreviewPane(WindowServices services, QWidget* parent)
    : QWidget(parent), parts(std::make_unique<Parts>(services, *this)) {
    setObjectName("previewPane");
    parts->buildTable();
    parts->listBar = new ListBar(services, *this);
    parts->findBar = new FindBar(*parts->view, parts->model);
    parts->problemBar = new ProblemBar(*this);
    parts->pages = new QStackedWidget;
    parts->pages->setObjectName("listPages");
    parts->pages->addWidget(parts->view);
    parts->pages->addWidget(new EmptyListPage(services));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(parts->listBar);
    layout->addWidget(parts->findBar);
    layout->addWidget(parts->pages, 1);
    layout->addWidget(parts->problemBar);
    parts->statusRow = new StatusRow(services.controller);
    layout->addWidget(parts->statusRow);
    parts->showPage(true);
    parts->listenToSettings();
}

PreviewPane::~PreviewPane() = default;

// --- What the application says ---

void PreviewPane::setColumnWidth(PreviewColumn column, int minimum, int maximum, int width) {
    const int section = PreviewTableModel::columnOf(column);
    parts->widthLimits[static_cast<std::size_t>(section)] = {minimum, maximum};
    parts->view->setColumnWidth(section, width);
}

void PreviewPane::setColumnHidden(PreviewColumn column, bool hidden) {
    parts->view->setColumnHidden(PreviewTableModel::columnOf(column), hidden);
}

/// The names share what the other columns leave, in the proportions that the user has given them and within
/// their limits.
void PreviewPane::sizeColumnsToFit() {
    PreviewTableView& view = *parts->view;
    int left = view.viewport()->width();
    int wanted = 0;
    std::vector<int> flexible;
    for (int column = 0; column < PreviewTableModel::columnCount_; ++column) {
        if (view.isColumnHidden(column))
            continue;
        if (column == PreviewTableModel::currentName || column == PreviewTableModel::newName ||
            column == PreviewTableModel::folder) {
            flexible.push_back(column);
            wanted += view.columnWidth(column);
        } else
            left -= view.columnWidth(column);
    }
    for (std::size_t i = 0; i < flexible.size(); ++i) {
        const auto [minimum, maximum] = parts->widthLimits[static_cast<std::size_t>(flexible[i])];
        const int before = view.columnWidth(flexible[i]);
        const int share = left * before / std::max(1, wanted);
        const int width = std::clamp(share, std::max(40, minimum), std::max(minimum + 1, maximum));
        view.setColumnWidth(flexible[i], width);
        left -= width;
        wanted -= before;
    }
}

void PreviewPane::Parts::showPage(bool isEmpty) {
    // The invitation is high, and must not keep a narrow window's list so too.
    pages->widget(1)->setSizePolicy(QSizePolicy::Preferred,
                                    isEmpty ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    pages->setCurrentIndex(isEmpty ? 1 : 0);
}

void PreviewPane::Parts::showListIfDue() {
    if (isListDue)
        owner.listChanged();
}

RowId PreviewPane::Parts::idAt(int row) const {
    const std::vector<RowId>& ids = model.rowIds();
    return row >= 0 && static_cast<std::size_t>(row) < ids.size() ? ids[static_cast<std::size_t>(row)]
                                                                  : noRow;
}

QItemSelection PreviewPane::Parts::placesOf(const std::vector<RowId>& selected) const {
    QItemSelection places;
    const std::unordered_set<RowId> wanted(selected.begin(), selected.end());
    const std::vector<RowId>& ids = model.rowIds();
    const auto isWanted = [&](std::size_t row) { return wanted.contains(ids[row]); };
    for (std::size_t row = 0; row < ids.size() && !wanted.empty(); ++row) {
        if (!isWanted(row))
            continue;
        const std::size_t first = row;
        while (row + 1 < ids.size() && isWanted(row + 1))
            ++row;
        if (places.size() == mostRanges)
            return {};
        places.select(model.index(static_cast<int>(first), 0),
                      model.index(static_cast<int>(row), PreviewTableModel::columnCount_ - 1));
    }
    return places;
}

void PreviewPane::listChanged() {
    PreviewTableView& view = *parts->view;
    // To number all rows takes its time, so what shows them is an event of its own.
    if (view.isReordering()) {
        parts->isListDue = true;
        QMetaObject::invokeMethod(
            this, [this] { parts->showListIfDue(); }, Qt::QueuedConnection);
        return;
    }
    parts->isListDue = false;
    const std::vector<RowId> selected = selection();
    const RowId top = parts->idAt(view.rowAt(0));
    const RowId current = parts->idAt(view.currentIndex().row());
    const std::vector<RowId> before = parts->model.rowIds();
    parts->model.listChanged();
    parts->showPage(parts->controller.previewControl().isPreviewEmpty());
    if (parts->model.rowIds() == before)
        return;
    // The same items stay selected and in sight where they are.
    view.selectionModel()->select(parts->placesOf(selected), QItemSelectionModel::ClearAndSelect);
    if (const auto row = current == noRow ? std::nullopt : parts->model.rowOf(current))
        view.selectionModel()->setCurrentIndex(parts->model.index(*row, PreviewTableModel::currentName),
                                               QItemSelectionModel::NoUpdate);
    if (const auto row = top == noRow ? std::nullopt : parts->model.rowOf(top))
        view.scrollTo(parts->model.index(*row, PreviewTableModel::currentName),
                      QAbstractItemView::PositionAtTop);
}

void PreviewPane::previewFinished() {
    listChanged();
    parts->scan.start();
    sizeColumnsToFit();
}

void PreviewPane::refreshProgress() { parts->statusRow->refreshProgress(); }

void PreviewPane::selectPreviewTab(PreviewTab tab) { parts->statusRow->selectPreviewTab(tab); }

void PreviewPane::enterDropletEditMode() {
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, new DropletBanner);
    if (auto* promise = findChild<QLabel*>("emptyListPromise"))
        promise->setText("Files you add here only show the effect.");
}

void PreviewPane::Parts::foreseen(ProblemScan::Findings found) {
    const std::size_t problems = found.problems.size();
    model.setProblems(std::move(found.problems));
    problemBar->showCounts(problems, found.madeDistinct);
}

void PreviewPane::forgetPictures() { parts->thumbnails.clear(); }

// --- What the user does ---

std::vector<RowId> PreviewPane::selection() const { return parts->view->selectedIds(); }

std::int32_t PreviewPane::itemsToRename() const {
    StoreContext& context = parts->controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return context.engineControl().numberOfFilesThatNeedRenaming;
}

void PreviewPane::setShow(Show what) {
    parts->model.setShow(static_cast<PreviewTableModel::Show>(what));
    parts->listBar->setShow(what);
}

void PreviewPane::openFind() { parts->findBar->open(); }

void PreviewPane::goToProblem(bool forward) {
    const std::vector<RowId>& rows = parts->model.rowIds();
    const int count = static_cast<int>(rows.size());
    const int start = parts->view->currentIndex().isValid() ? parts->view->currentIndex().row() : -1;
    for (int step = 1; step <= count; ++step) {
        const int row = ((forward ? start + step : start - step) % count + count) % count;
        if (parts->model.problems().contains(rows[static_cast<std::size_t>(row)])) {
            parts->goTo(row);
            return;
        }
    }
}

void PreviewPane::Parts::goTo(int row) {
    view->setCurrentIndex(model.index(row, PreviewTableModel::currentName));
    view->scrollTo(view->currentIndex(), QAbstractItemView::PositionAtCenter);
    view->setFocus();
}

void PreviewPane::Parts::removeSelected() {
    const std::vector<RowId> selected = owner.selection();
    if (controller.validateUserInterfaceItem() && controller.sourceCommands().canRemove(selected))
        controller.removeFile(selected);
}

/// In front of the row above the first, or behind the row below the last, of those on show.
void PreviewPane::moveSelection(bool up) {
    parts->showListIfDue();
    const std::vector<std::size_t> selected = parts->view->selectedRows();
    const std::vector<RowId>& shown = parts->model.rowIds();
    if (selected.empty() || !parts->controller.validateUserInterfaceItem())
        return;
    if (up ? selected.front() == 0 : selected.back() + 1 >= shown.size())
        return;
    const DNDArrayController::Place place{shown[up ? selected.front() - 1 : selected.back() + 1], !up};
    parts->view->reorder(
        [&] { parts->controller.dndArrayController().insertRows(parts->view->selectedIds(), place); });
}

std::optional<PreviewList::Row> PreviewPane::Parts::currentRow() const {
    const QModelIndex index = view->currentIndex();
    return index.isValid() ? std::optional(model.rowAt(index.row())) : std::nullopt;
}

void PreviewPane::openSelected() {
    if (const auto row = parts->currentRow())
        FileBrowser::open(row->fullPath);
}

void PreviewPane::revealSelected() {
    if (const auto row = parts->currentRow())
        FileBrowser::reveal(row->fullPath);
}

void PreviewPane::copySelected() {
    parts->longWork.finish();
    parts->longWork.begin([this, ids = selection(), first = std::size_t{0}, lines = QString()]() mutable {
        const std::size_t count = std::min(rowsAtOnce, ids.size() - first);
        for (const PreviewList::Row& row :
             parts->controller.nodeController().rowsWithIds(std::span(ids).subspan(first, count)))
            if (row.id != noRow)
                lines.append(toQString(row.name)).append('\t').append(toQString(row.finalName)).append('\n');
        first += count;
        if (first == ids.size())
            QGuiApplication::clipboard()->setText(lines);
        return first < ids.size();
    });
}

void PreviewPane::pasteFiles() {
    if (const QMimeData* content = QGuiApplication::clipboard()->mimeData())
        parts->controller.addFilePaths(DroppedFiles::paths(*content), true);
}

void PreviewPane::Parts::sortByColumn(int column) {
    if (column == PreviewTableModel::currentName && controller.validateUserInterfaceItem())
        controller.previewControl().sortByCurrentName();
}

} // namespace tavrin
