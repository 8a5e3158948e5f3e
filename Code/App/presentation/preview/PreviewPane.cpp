#include "presentation/preview/PreviewPane.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/FileBrowser.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowCommands.h"
#include "presentation/preview/EmptyListPage.h"
#include "presentation/preview/FindBar.h"
#include "presentation/preview/FolderOffer.h"
#include "presentation/preview/ListBar.h"
#include "presentation/preview/NameDelegate.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/preview/ProblemBar.h"
#include "presentation/preview/StatusRow.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/start/FileAddress.h"
#include "shell/MainController.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t rowsAtOnce = 256;
/// Each cell that is painted is looked up in all of them, so a selection that falls into more is given up.
constexpr qsizetype mostRanges = 1000;
constexpr int thumbnailRowHeight = 33;
constexpr int thumbnailSize = 28;
constexpr std::chrono::milliseconds restAfterScrolling(150);

/// The line above the list that tells that a droplet is being edited. Object name "dropletBanner".
class DropletBanner final : public QLabel {
  public:
    DropletBanner();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void applyColours();
};

DropletBanner::DropletBanner()
    : QLabel(PreviewPane::tr("You are editing a droplet. Files you add here only show the effect.")) {
    setObjectName("dropletBanner");
    setAutoFillBackground(true);
    setWordWrap(true);
    setMargin(8);
    applyColours();
}

void DropletBanner::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColours();
}

void DropletBanner::applyColours() {
    // Its own palette is tinted, so it does not tell what the desktop's has become.
    const WindowColours& colours = WindowColours::of(QGuiApplication::palette());
    QPalette tinted;
    tinted.setColor(QPalette::Window, colours.infoTint);
    tinted.setColor(QPalette::WindowText, colours.infoText);
    setPalette(tinted);
}

} // namespace

// --- Building ---

PreviewPane::PreviewPane(const WindowServices& shared, WindowCommands& windowCommands)
    : services(shared), controller(shared.controller), commands(windowCommands),
      thumbnails(new ThumbnailLoader(this)), model(new PreviewTableModel(shared, *thumbnails, this)),
      view(new PreviewTableView(*model, controller.dndArrayController())),
      listBar(new ListBar(shared, windowCommands)), findBar(new FindBar(*view, *model)),
      pages(new QStackedWidget), bars(new MessageBars), folderOffer(new FolderOffer(shared, *bars, this)),
      problemBar(new ProblemBar(windowCommands)), statusRow(new StatusRow(controller)),
      longWork(controller.runLoop()) {
    setObjectName("previewPane");
    buildTable();
    connectTable();
    connectCommands();
    auto* emptyPage = new EmptyListPage(services, commands);
    connect(emptyPage, &EmptyListPage::begun, this, &PreviewPane::begun);
    pages->setObjectName("listPages");
    pages->addWidget(view);
    pages->addWidget(emptyPage);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(listBar);
    layout->addWidget(findBar);
    layout->addWidget(pages, 1);
    layout->addWidget(bars);
    layout->addWidget(problemBar);
    layout->addWidget(statusRow);
    showPage(true);
    connect(thumbnails, &ThumbnailLoader::changed, model, &PreviewTableModel::thumbnailChanged);
    listenToSettings();
}

PreviewPane::~PreviewPane() = default;

void PreviewPane::buildTable() {
    view->setObjectName("previewTableView");
    view->setAccessibleName(tr("Files and new names"));
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
}

void PreviewPane::connectTable() {
    connect(view->horizontalHeader(), &QHeaderView::sectionClicked, this, &PreviewPane::sortByColumn);
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PreviewPane::selectionChanged);
    connect(view, &PreviewTableView::removeRequested, this, &PreviewPane::removeSelected);
    connect(view, &PreviewTableView::moveRequested, this, &PreviewPane::moveSelection);
    connect(view, &PreviewTableView::openRequested, this, &PreviewPane::openCurrent);
    connect(view, &PreviewTableView::widthChanged, this, &PreviewPane::sizeColumnsToFit);
    connect(view, &QTableView::customContextMenuRequested, this, &PreviewPane::offerCommands);
    scrollRest.setSingleShot(true);
    scrollRest.setInterval(restAfterScrolling);
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        thumbnails->setPaused(true);
        scrollRest.start();
    });
    connect(&scrollRest, &QTimer::timeout, this, [this] {
        thumbnails->setPaused(false);
        view->viewport()->update();
    });
}

void PreviewPane::connectCommands() {
    connect(commands.removeFile, &QAction::triggered, this, [this] { controller.removeFile(selection()); });
    connect(commands.openFile, &QAction::triggered, this, &PreviewPane::openCurrent);
    connect(commands.revealFile, &QAction::triggered, this, [this] {
        if (const auto row = currentRow())
            FileBrowser::reveal(row->fullPath);
    });
    connect(&commands, &WindowCommands::rowsCopied, this, &PreviewPane::copySelected);
    connect(&commands, &WindowCommands::filesPasted, this, &PreviewPane::pasteFiles);
    connect(commands.findInList, &QAction::triggered, findBar, &FindBar::open);
    connect(commands.nextProblem, &QAction::triggered, this, [this] { goToProblem(true); });
    connect(commands.previousProblem, &QAction::triggered, this, [this] { goToProblem(false); });
    connect(commands.showAllItems, &QAction::triggered, this, [this] { setShow(Show::all); });
    connect(commands.showItemsToBeRenamed, &QAction::triggered, this, [this] { setShow(Show::toBeRenamed); });
    connect(commands.showProblems, &QAction::triggered, this, [this] { setShow(Show::problems); });
    connect(commands.moveRowUp, &QAction::triggered, this, [this] { moveSelection(true); });
    connect(commands.moveRowDown, &QAction::triggered, this, [this] { moveSelection(false); });
}

void PreviewPane::offerCommands(const QPoint& place) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({commands.openFile, commands.revealFile, commands.copy, commands.removeFile,
                      commands.moveRowUp, commands.moveRowDown});
    menu->popup(view->viewport()->mapToGlobal(place));
}

void PreviewPane::listenToSettings() {
    thumbnailBinding = std::make_unique<ParameterBinding>(
        controller.globalSettings(), "quickLookThumbnail", [this](const auto& value) {
            model->setShowsThumbnails(value && boolValue(*value));
            applyRowHeight();
        });
    const auto invisiblesChanged = [this] {
        model->setShowsInvisibles(services.defaults.boolForKey("showInvisibles"));
    };
    invisiblesChanged();
    invisiblesObservation = services.defaults.observe("showInvisibles", [this, invisiblesChanged] {
        QMetaObject::invokeMethod(this, invisiblesChanged, Qt::QueuedConnection);
    });
}

void PreviewPane::applyRowHeight() {
    const bool hasThumbnails = controller.globalSettings().values().shouldShowQuickLookThumbnail;
    const int plain = view->fontMetrics().height() + 8;
    view->verticalHeader()->setDefaultSectionSize(hasThumbnails ? std::max(plain, thumbnailRowHeight)
                                                                : plain);
    view->setColumnWidth(PreviewTableModel::icon, hasThumbnails ? 40 : 28);
    const int pictureSize = hasThumbnails ? thumbnailSize : 16;
    view->setIconSize({pictureSize, pictureSize});
    const double ratio = view->devicePixelRatioF();
    thumbnails->setSize(static_cast<int>(pictureSize * ratio), ratio);
}

// --- What the application says ---

void PreviewPane::setColumnWidth(PreviewColumn column, int minimum, int maximum, int width) {
    const int section = PreviewTableModel::columnOf(column);
    widthLimits[static_cast<std::size_t>(section)] = {minimum, maximum};
    view->setColumnWidth(section, width);
}

void PreviewPane::setColumnHidden(PreviewColumn column, bool hidden) {
    view->setColumnHidden(PreviewTableModel::columnOf(column), hidden);
}

/// The names share what the other columns leave, in the proportions that the user has given them and within
/// their limits.
void PreviewPane::sizeColumnsToFit() {
    int left = view->viewport()->width();
    int wanted = 0;
    std::vector<int> flexible;
    for (int column = 0; column < PreviewTableModel::columnCount_; ++column) {
        if (view->isColumnHidden(column))
            continue;
        if (column == PreviewTableModel::currentName || column == PreviewTableModel::newName ||
            column == PreviewTableModel::folder) {
            flexible.push_back(column);
            wanted += view->columnWidth(column);
        } else
            left -= view->columnWidth(column);
    }
    for (std::size_t i = 0; i < flexible.size(); ++i) {
        const auto [minimum, maximum] = widthLimits[static_cast<std::size_t>(flexible[i])];
        const int before = view->columnWidth(flexible[i]);
        const int share = left * before / std::max(1, wanted);
        const int width = std::clamp(share, std::max(40, minimum), std::max(minimum + 1, maximum));
        view->setColumnWidth(flexible[i], width);
        left -= width;
        wanted -= before;
    }
}

void PreviewPane::showPage(bool isEmpty) {
    // The invitation is high, and must not keep a narrow window's list so too.
    pages->widget(1)->setSizePolicy(QSizePolicy::Preferred,
                                    isEmpty ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    pages->setCurrentIndex(isEmpty ? 1 : 0);
}

void PreviewPane::showListIfDue() {
    if (isListDue)
        listChanged();
}

RowId PreviewPane::idAt(int row) const {
    const std::vector<RowId>& ids = model->rowIds();
    return row >= 0 && static_cast<std::size_t>(row) < ids.size() ? ids[static_cast<std::size_t>(row)]
                                                                  : noRow;
}

QItemSelection PreviewPane::placesOf(const std::vector<RowId>& selected) const {
    QItemSelection places;
    const std::unordered_set<RowId> wanted(selected.begin(), selected.end());
    const std::vector<RowId>& ids = model->rowIds();
    const auto isWanted = [&](std::size_t row) { return wanted.contains(ids[row]); };
    for (std::size_t row = 0; row < ids.size() && !wanted.empty(); ++row) {
        if (!isWanted(row))
            continue;
        const std::size_t first = row;
        while (row + 1 < ids.size() && isWanted(row + 1))
            ++row;
        if (places.size() == mostRanges)
            return {};
        places.select(model->index(static_cast<int>(first), 0),
                      model->index(static_cast<int>(row), PreviewTableModel::columnCount_ - 1));
    }
    return places;
}

void PreviewPane::listChanged() {
    // To number all rows takes its time, so what shows them is an event of its own.
    if (view->isReordering()) {
        isListDue = true;
        QMetaObject::invokeMethod(
            this, [this] { showListIfDue(); }, Qt::QueuedConnection);
        return;
    }
    isListDue = false;
    const std::vector<RowId> selected = selection();
    const RowId top = idAt(view->rowAt(0));
    const RowId current = idAt(view->currentIndex().row());
    const std::vector<RowId> before = model->rowIds();
    model->listChanged();
    showPage(controller.previewControl().isPreviewEmpty());
    if (model->rowIds() == before)
        return;
    // The same items stay selected and in sight where they are.
    view->selectionModel()->select(placesOf(selected), QItemSelectionModel::ClearAndSelect);
    if (const auto row = current == noRow ? std::nullopt : model->rowOf(current))
        view->selectionModel()->setCurrentIndex(model->index(*row, PreviewTableModel::currentName),
                                                QItemSelectionModel::NoUpdate);
    if (const auto row = top == noRow ? std::nullopt : model->rowOf(top))
        view->scrollTo(model->index(*row, PreviewTableModel::currentName), QAbstractItemView::PositionAtTop);
}

void PreviewPane::previewFinished() {
    listChanged();
    showProblems();
    sizeColumnsToFit();
    if (controller.previewControl().isPreviewEmpty())
        folderOffer->withdraw();
}

void PreviewPane::refreshProgress() { statusRow->refreshProgress(); }

void PreviewPane::selectPreviewTab(PreviewTab tab) { statusRow->selectPreviewTab(tab); }

void PreviewPane::enterDropletEditMode() {
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, new DropletBanner);
    if (auto* promise = findChild<QLabel*>("emptyListPromise"))
        promise->setText(tr("Files you add here only show the effect."));
}

void PreviewPane::pathsAdded(const std::vector<std::string>& paths) { folderOffer->pathsAdded(paths); }

void PreviewPane::setLow(bool isLow) { listBar->setLow(isLow); }

void PreviewPane::showProblems() {
    model->setProblems(controller.nodeController().problemIds());
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const auto madeDistinct = static_cast<std::size_t>(context.engineControl().numberOfNamesMadeDistinct);
    problemBar->showCounts(model->problems().size(), madeDistinct);
}

void PreviewPane::forgetPictures() { thumbnails->clear(); }

// --- What the user does ---

std::vector<RowId> PreviewPane::selection() const { return view->selectedIds(); }

std::optional<PreviewList::Row> PreviewPane::firstRow() const {
    PreviewList& list = controller.nodeController();
    const RowId selected = idAt(view->firstSelectedRow());
    return selected == noRow ? list.rowAt(0) : list.rowWithId(selected);
}

std::int32_t PreviewPane::itemsToRename() const {
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return context.engineControl().numberOfFilesThatNeedRenaming;
}

void PreviewPane::setShow(Show what) {
    model->setShow(what);
    listBar->setShow(what);
}

void PreviewPane::goToProblem(bool forward) {
    const std::vector<RowId>& rows = model->rowIds();
    const int count = static_cast<int>(rows.size());
    const int start = view->currentIndex().isValid() ? view->currentIndex().row() : -1;
    for (int step = 1; step <= count; ++step) {
        const int row = ((forward ? start + step : start - step) % count + count) % count;
        if (model->hasProblem(rows[static_cast<std::size_t>(row)])) {
            goTo(row);
            return;
        }
    }
}

void PreviewPane::goTo(int row) {
    view->setCurrentIndex(model->index(row, PreviewTableModel::currentName));
    view->scrollTo(view->currentIndex(), QAbstractItemView::PositionAtCenter);
    view->setFocus();
}

// --- Questions ---

QuestionCard::Place PreviewPane::questionPlace() {
    return {*pages,
            [this] {
                QWidget* viewport = view->viewport();
                return pages->currentWidget() == view
                           ? QRect(viewport->mapTo(pages, QPoint()), viewport->size())
                           : pages->rect();
            },
            [this](const std::string& path) { revealForQuestion(path); },
            [this](const QuestionText::Rows& rows) { return rowsInView(rows); }};
}

/// Into the upper third, so that there is room for the card below.
void PreviewPane::revealForQuestion(const std::string& path) {
    const auto row = model->rowOf(controller.nodeController().rowWithPath(path));
    if (!row)
        return;
    const QModelIndex index = model->index(*row, PreviewTableModel::currentName);
    const int inView = view->viewport()->height() / std::max(1, view->rowHeight(*row));
    const QRect place = view->visualRect(index);
    if (place.top() >= 0 && place.bottom() < view->viewport()->height() / 3)
        return;
    view->scrollTo(model->index(std::max(0, *row - inView / 6), PreviewTableModel::currentName),
                   QAbstractItemView::PositionAtTop);
}

std::vector<QRect> PreviewPane::rowsInView(const QuestionText::Rows& rows) const {
    std::vector<QRect> places;
    const QWidget* viewport = view->viewport();
    if (pages->currentWidget() != view)
        return places;
    for (int row = view->rowAt(0); row >= 0 && row < model->rowCount(); ++row) {
        const QRect place(0, view->rowViewportPosition(row), viewport->width(), view->rowHeight(row));
        if (place.top() >= viewport->height())
            break;
        if (rows.hold(model->rowAt(row).fullPath))
            places.push_back(place.translated(viewport->mapTo(pages, QPoint())) &
                             QRect(viewport->mapTo(pages, QPoint()), viewport->size()));
    }
    return places;
}

void PreviewPane::removeSelected() {
    const std::vector<RowId> selected = selection();
    if (controller.validateUserInterfaceItem() && controller.sourceCommands().canRemove(selected))
        controller.removeFile(selected);
}

/// In front of the row above the first, or behind the row below the last, of those on show.
void PreviewPane::moveSelection(bool up) {
    showListIfDue();
    const std::vector<std::size_t> selected = view->selectedRows();
    const std::vector<RowId>& shown = model->rowIds();
    if (selected.empty() || !controller.validateUserInterfaceItem())
        return;
    if (up ? selected.front() == 0 : selected.back() + 1 >= shown.size())
        return;
    const DNDArrayController::Place place{shown[up ? selected.front() - 1 : selected.back() + 1], !up};
    view->reorder([&] { controller.dndArrayController().insertRows(view->selectedIds(), place); });
}

std::optional<PreviewList::Row> PreviewPane::currentRow() const {
    const QModelIndex index = view->currentIndex();
    return index.isValid() ? std::optional(model->rowAt(index.row())) : std::nullopt;
}

void PreviewPane::openCurrent() {
    if (const auto row = currentRow())
        FileBrowser::open(row->fullPath);
}

void PreviewPane::copySelected() {
    longWork.finish();
    longWork.begin([this, ids = selection(), first = std::size_t{0}, lines = QString()]() mutable {
        const std::size_t count = std::min(rowsAtOnce, ids.size() - first);
        for (const PreviewList::Row& row :
             controller.nodeController().rowsWithIds(std::span(ids).subspan(first, count)))
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
        controller.addFilePaths(DroppedFiles::paths(*content), true);
}

void PreviewPane::sortByColumn(int column) {
    if (column == PreviewTableModel::currentName && controller.validateUserInterfaceItem())
        controller.previewControl().sortByCurrentName();
}

} // namespace tavrin
