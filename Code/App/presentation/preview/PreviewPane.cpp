#include "presentation/preview/PreviewPane.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/RenameEngine.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/FileBrowser.h"
#include "presentation/GlyphIcon.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowCommands.h"
#include "presentation/names/NamesAsTextPage.h"
#include "presentation/preview/Chip.h"
#include "presentation/preview/DropletBanner.h"
#include "presentation/preview/EmptyListPage.h"
#include "presentation/preview/EmptyView.h"
#include "presentation/preview/FindBar.h"
#include "presentation/preview/FolderOffer.h"
#include "presentation/preview/HandEditing.h"
#include "presentation/preview/ListBar.h"
#include "presentation/preview/NameDelegate.h"
#include "presentation/preview/PreviewColumns.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/preview/ProblemGuide.h"
#include "presentation/preview/RowMap.h"
#include "presentation/preview/StatusRow.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "presentation/preview/TickHeader.h"
#include "presentation/run/Veil.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/start/FileAddress.h"
#include "shell/MainController.h"
#include "store/paging/StoreError.h"
#include "store/queries/FilterManager.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
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

} // namespace

// --- Building ---

PreviewPane::PreviewPane(const WindowServices& shared, WindowCommands& windowCommands)
    : services(shared), controller(shared.controller), commands(windowCommands),
      thumbnails(new ThumbnailLoader(this)), model(new PreviewTableModel(shared, *thumbnails, this)),
      view(new PreviewTableView(*model, controller.dndArrayController())),
      listBar(new ListBar(shared, windowCommands)),
      findBar(new FindBar(*view, *model, controller.renameEngine())), rowMap(new RowMap(*view, *model)),
      pages(new QStackedWidget), emptyView(new EmptyView), bars(new MessageBars),
      folderOffer(new FolderOffer(shared, *bars, this)), textPage(new NamesAsTextPage(shared, *model, *bars)),
      questionRows(controller, *pages, *view, *model), statusRow(new StatusRow(controller)),
      longWork(controller.runLoop()), sortingChip(new Chip("sortingChip", Glyph::close)) {
    setObjectName("previewPane");
    buildTable();
    makeProblemGuide();
    connectHands();
    connectTable();
    connectCommands();
    connectTextPage();
    auto* emptyPage = new EmptyListPage(services, commands);
    connect(emptyPage, &EmptyListPage::begun, this, &PreviewPane::begun);
    pages->setObjectName("listPages");
    pages->addWidget(view);
    pages->addWidget(emptyPage);
    pages->addWidget(emptyView);
    pages->addWidget(textPage);
    invitation = emptyPage;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(listBar);
    layout->addWidget(findBar);
    layout->addWidget(pages, 1);
    layout->addWidget(bars);
    layout->addWidget(statusRow);
    statusRow->addChip(sortingChip);
    showPage();
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
    QHeaderView* header = new TickHeader(PreviewTableModel::tick, view);
    view->setHorizontalHeader(header);
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setSectionsClickable(true);
    header->setMinimumSectionSize(20);
    columns = std::make_unique<PreviewColumns>(*view);
}

void PreviewPane::connectHands() {
    auto* header = static_cast<TickHeader*>(view->horizontalHeader());
    hands = new HandEditing(services, {*view, *model, *header, *statusRow, commands});
    hands->setParent(this);
    connect(hands, &HandEditing::showOnlyPinned, this, [this] {
        showWhere(tr("Show: By Hand"), [](const NodeRow& row) { return row.hasExactName(); });
    });
    connect(hands, &HandEditing::showOnlyLeftOut, this,
            [this] { showWhere(tr("Show: Left Out"), [](const NodeRow& row) { return row.isLeftOut(); }); });
    connect(view, &PreviewTableView::rowsDropped, this, [this](DNDArrayController::Place place) {
        hands->reorder([&] { controller.dndArrayController().acceptRows(place); });
    });
}

void PreviewPane::connectTable() {
    connect(view->horizontalHeader(), &QHeaderView::sectionClicked, this, &PreviewPane::sortByColumn);
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PreviewPane::selectionChanged);
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { problems->tell(); });
    connect(sortingChip, &Chip::clicked, this, [this] {
        controller.previewControl().endSorting();
        showSorting();
    });
    connect(findBar, &FindBar::matchesChanged, rowMap, &RowMap::setMatches);
    connect(rowMap, &RowMap::rowWanted, this, [this](int row, bool isMarked) {
        if (isMarked)
            goTo(row);
        else
            view->scrollTo(model->index(row, PreviewTableModel::currentName),
                           QAbstractItemView::PositionAtCenter);
    });
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
    connect(commands.findInList, &QAction::triggered, this,
            [this] { textPage->isOpen() ? textPage->openFind(false) : findBar->open(); });
    const auto findOn = [this](bool forward) {
        textPage->isOpen() ? textPage->goToMatch(forward) : findBar->goOn(forward);
    };
    connect(commands.findNext, &QAction::triggered, this, [findOn] { findOn(true); });
    connect(commands.findPrevious, &QAction::triggered, this, [findOn] { findOn(false); });
    connect(commands.nextProblem, &QAction::triggered, this, [this] { goToProblem(true); });
    connect(commands.previousProblem, &QAction::triggered, this, [this] { goToProblem(false); });
    connect(commands.showAllItems, &QAction::triggered, this, [this] { setShow(Show::all); });
    connect(commands.showItemsToBeRenamed, &QAction::triggered, this, [this] { setShow(Show::toBeRenamed); });
    connect(commands.showProblems, &QAction::triggered, this, [this] { setShow(Show::problems); });
    connect(commands.showNotRenamed, &QAction::triggered, this, [this] { setShow(Show::notRenamed); });
    connect(statusRow, &StatusRow::failedItemWanted, this, &PreviewPane::goToFailed);
    connect(commands.moveRowUp, &QAction::triggered, this, [this] { moveSelection(true); });
    connect(commands.moveRowDown, &QAction::triggered, this, [this] { moveSelection(false); });
}

void PreviewPane::makeProblemGuide() {
    problems = std::make_unique<ProblemGuide>(
        controller, *model, *bars,
        ProblemGuide::Ways{.go = [this](bool forward) { goToProblem(forward); },
                           .showOnlyProblems = [this] { setShow(Show::problems); },
                           .leaveOut = [this] { hands->leaveOut(model->problems()); },
                           .showOnlyDistinct =
                               [this] {
                                   showWhere(tr("Show: Made Distinct"),
                                             [](const NodeRow& row) { return row.madeDistinct; });
                               },
                           .current = [this] { return currentPlace(); }});
}

void PreviewPane::connectTextPage() {
    connect(commands.namesAsText, &QAction::triggered, this, &PreviewPane::toggleTextPage);
    connect(&commands, &WindowCommands::runWanted, textPage, &NamesAsTextPage::finish);
    connect(textPage, &NamesAsTextPage::changing, hands, &HandEditing::expectChange);
    connect(textPage, &NamesAsTextPage::undoWanted, hands, &HandEditing::undo);
    connect(textPage, &NamesAsTextPage::redoWanted, hands, &HandEditing::redo);
    connect(textPage, &NamesAsTextPage::lineChanged, this, [this] { problems->tell(); });
    connect(textPage, &NamesAsTextPage::closed, this, [this](int row) {
        commands.namesAsText->setChecked(false);
        showPage();
        if (row < model->rowCount() && !isRunShown)
            goTo(row);
    });
}

void PreviewPane::toggleTextPage() {
    if (textPage->isOpen()) {
        textPage->close();
    } else if (controller.validateUserInterfaceItem()) {
        findBar->close();
        textPage->open(view->currentIndex().isValid() ? view->currentIndex().row() : 0);
    }
    commands.namesAsText->setChecked(textPage->isOpen());
    showPage();
}

int PreviewPane::currentPlace() const {
    if (textPage->isOpen())
        return textPage->currentLine();
    return view->currentIndex().isValid() ? view->currentIndex().row() : -1;
}

void PreviewPane::offerCommands(const QPoint& place) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({commands.editNewName, commands.unpinNames, commands.openFile, commands.revealFile,
                      commands.copy, commands.removeFile, commands.moveRowUp, commands.moveRowDown});
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
    columns->setWidth(column, minimum, maximum, width);
}

void PreviewPane::setColumnHidden(PreviewColumn column, bool hidden) { columns->setHidden(column, hidden); }

void PreviewPane::sizeColumnsToFit() { columns->fit(); }

void PreviewPane::showPage() {
    QWidget* page = pageDue();
    // The invitation is high, and must not keep a narrow window's list so too.
    invitation->setSizePolicy(QSizePolicy::Preferred,
                              page == invitation ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    pages->setCurrentWidget(page);
    const int rows = model->rowCount();
    const bool areTooMany = rows > NamesAsTextPage::mostLines;
    commands.allowText(textPage->isOpen() || (rows > 0 && !areTooMany),
                       areTooMany ? NamesAsTextPage::tooManyRows() : QString());
}

QWidget* PreviewPane::pageDue() {
    if (model->rowCount() > 0)
        return textPage->isOpen() ? static_cast<QWidget*>(textPage) : view;
    if (controller.previewControl().isPreviewEmpty())
        return explainHiddenItems() ? static_cast<QWidget*>(emptyView) : invitation;
    const auto showAll = [this] { setShow(Show::all); };
    if (model->show() == Show::problems)
        emptyView->say(tr("No problems: every name can be written as shown."), tr("Show All"), showAll);
    else
        emptyView->say(tr("Every name is already as the steps want it."), tr("Show All"), showAll);
    return emptyView;
}

/// Whether there are items that a filter alone keeps out of sight; then it is said which.
bool PreviewPane::explainHiddenItems() {
    const Settings settings = controller.globalSettings().values();
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const auto count = [&](const Predicate& which) {
        const ItemFilter filter = settings.itemFilter();
        return context.count(
            FetchEntity::file,
            FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(filter).with(which));
    };
    const std::size_t files = count(Predicate::isFalse(NodeKey::treatAsFolder));
    const std::size_t folders = count(Predicate::isTrue(NodeKey::treatAsFolder));
    if (files > 0)
        emptyView->say(
            tr("1 file is hidden because Files is off.||%Ln files are hidden because Files is off.", nullptr,
               static_cast<int>(files)),
            tr("Show Files"), [this] { controller.globalSettings().setShouldProcessFiles(1); });
    else if (folders > 0)
        emptyView->say(
            tr("1 folder is hidden because Folders is off.||%Ln folders are hidden because Folders is off.",
               nullptr, static_cast<int>(folders)),
            tr("Show Folders"), [this] { controller.globalSettings().setShouldProcessFolders(1); });
    return files + folders > 0;
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
    const std::vector<RowId> selected = selection();
    const RowId top = idAt(view->rowAt(0));
    const RowId current = idAt(view->currentIndex().row());
    const std::vector<RowId> before = model->rowIds();
    const bool isOtherOrder = shownOrder != controller.nodeController().sortDescriptors();
    shownOrder = controller.nodeController().sortDescriptors();
    model->listChanged();
    textPage->rowsChanged();
    showPage();
    showSorting();
    if (model->rowIds() == before)
        return;
    // The same items stay selected. They stay in sight too, unless the order is another one.
    view->selectionModel()->select(placesOf(selected), QItemSelectionModel::ClearAndSelect);
    const auto placeOf = [this](RowId id) {
        const auto row = id == noRow ? std::nullopt : model->rowOf(id);
        return row ? model->index(*row, PreviewTableModel::currentName) : QModelIndex();
    };
    const QModelIndex currentPlace = placeOf(current);
    if (currentPlace.isValid())
        view->selectionModel()->setCurrentIndex(currentPlace, QItemSelectionModel::NoUpdate);
    if (scrollToArrivals())
        return;
    if (isOtherOrder && !isMoving) {
        view->scrollToTop();
        return;
    }
    if (const QModelIndex topPlace = placeOf(top); topPlace.isValid())
        view->scrollTo(topPlace, QAbstractItemView::PositionAtTop);
    if (isMoving && currentPlace.isValid())
        view->scrollTo(currentPlace);
}

bool PreviewPane::scrollToArrivals() {
    if (!arrivalsBehind)
        return false;
    const std::vector<RowId>& ids = model->rowIds();
    const auto first = std::ranges::find_if(ids, [this](RowId id) { return id > *arrivalsBehind; });
    if (first == ids.end())
        return false;
    arrivalsBehind.reset();
    const auto row = static_cast<int>(first - ids.begin());
    view->scrollTo(model->index(row, PreviewTableModel::currentName), QAbstractItemView::PositionAtCenter);
    return true;
}

void PreviewPane::showSorting() {
    const auto sorting = controller.previewControl().sorting();
    QHeaderView* header = view->horizontalHeader();
    header->setSortIndicatorShown(sorting.has_value());
    if (sorting)
        header->setSortIndicator(PreviewTableModel::columnOf(sorting->column),
                                 sorting->isAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
    sortingChip->setWanted(sorting && sorting->isView);
    if (!sorting || !sorting->isView)
        return;
    const bool isByName = sorting->column == PreviewColumn::currentName;
    const bool isByNewName = sorting->column == PreviewColumn::newName;
    const bool isByFolder = sorting->column == PreviewColumn::path;
    sortingChip->setText(isByName      ? tr("Shown by Current Name")
                         : isByNewName ? tr("Shown by New Name")
                         : isByFolder  ? tr("Shown by Folder")
                                       : tr("Shown by Problem"));
    sortingChip->setToolTip(tr("Show the items in the order of their numbers again"));
}

void PreviewPane::previewFinished() {
    model->runMarks().listWasRead();
    commands.showNotRenamed->setEnabled(model->runMarks().hasNotRenamed());
    listChanged();
    problems->refresh();
    showPage();
    lookForChosen();
    sizeColumnsToFit();
    if (controller.previewControl().isPreviewEmpty())
        folderOffer->withdraw();
}

void PreviewPane::refreshProgress() {
    statusRow->refreshProgress();
    if (!isRunShown)
        return;
    model->runMarks().refresh();
    statusRow->showRun(controller.renameEngine().runOutcomes().failedRows(), isWaiting);
    view->viewport()->update();
    rowMap->refresh();
}

void PreviewPane::beginRun() {
    isRunShown = true;
    textPage->close();
    hands->runBegins();
    model->runMarks().begin();
    if (model->show() == Show::notRenamed) // which no longer says anything
        setShow(Show::all);
    Veil::lay(*listBar, true);
    Veil::lay(statusRow->orderButtons(), true);
    view->setAcceptDrops(false);
    view->setDragEnabled(false);
    commands.showNotRenamed->setEnabled(false);
    refreshProgress();
}

void PreviewPane::focusList() { view->setFocus(); }

void PreviewPane::endRun() {
    isRunShown = false;
    isWaiting = false;
    model->runMarks().end();
    Veil::lay(*listBar, false);
    Veil::lay(statusRow->orderButtons(), false);
    view->setAcceptDrops(true);
    view->setDragEnabled(true);
    commands.showNotRenamed->setEnabled(model->runMarks().hasNotRenamed());
    statusRow->showRun(std::nullopt);
    view->viewport()->update();
    rowMap->refresh();
}

void PreviewPane::setWaiting(bool waits) {
    isWaiting = waits;
    refreshProgress();
}

void PreviewPane::goToFailed() {
    if (const auto row = model->rowOf(model->runMarks().nextFailed()))
        goTo(*row);
}

void PreviewPane::selectPreviewTab(PreviewTab tab) { statusRow->selectPreviewTab(tab); }

void PreviewPane::enterDropletEditMode() {
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, new DropletBanner);
    if (auto* promise = findChild<QLabel*>("emptyListPromise"))
        promise->setText(tr("Files you add here only show the effect."));
}

void PreviewPane::pathsAdded(const std::vector<std::string>& paths) { folderOffer->pathsAdded(paths); }

void PreviewPane::awaitArrivals() {
    const std::vector<RowId>& present = controller.nodeController().arrangedObjects();
    arrivalsBehind = present.empty() ? noRow : std::ranges::max(present);
}

void PreviewPane::setLow(bool isLow) { listBar->setLow(isLow); }

QWidget& PreviewPane::listPages() { return *pages; }

std::size_t PreviewPane::problemCount() const { return model->problems().size(); }

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
    isChosen = nullptr;
    view->setColumnHidden(PreviewTableModel::problem, what != Show::problems);
    model->setShow(what);
    listBar->setShow(what);
    textPage->rowsChanged();
    showPage();
    sizeColumnsToFit();
    problems->tell();
}

void PreviewPane::showWhere(const QString& label, std::function<bool(const NodeRow&)> isWanted) {
    isChosen = std::move(isWanted);
    chosenLabel = label;
    lookForChosen();
}

void PreviewPane::lookForChosen() {
    if (!isChosen)
        return;
    controller.renameEngine().readRows(
        [isWanted = isChosen, pane = QPointer(this)](StoreContext& context) -> std::function<void()> {
            std::vector<RowId> rows;
            try {
                std::ranges::copy_if(context.fetch({FetchEntity::file, Predicate::always(), {}}),
                                     std::back_inserter(rows),
                                     [&](RowId id) { return isWanted(context.row(id)); });
            } catch (const StoreError&) {
                return nullptr;
            }
            return [pane, rows = std::move(rows)]() mutable {
                if (pane && pane->isChosen)
                    pane->showChosen(std::move(rows));
            };
        });
}

/// All again where no row is left of that kind.
void PreviewPane::showChosen(std::vector<RowId> rows) {
    if (rows.empty()) {
        setShow(Show::all);
        return;
    }
    view->setColumnHidden(PreviewTableModel::problem, true);
    model->setShowChosen(std::move(rows));
    listBar->setShow(Show::chosen, chosenLabel);
    showPage();
}

void PreviewPane::goToProblem(bool forward) {
    const int row = problems->behind(currentPlace(), forward);
    if (row >= 0)
        goTo(row);
}

void PreviewPane::goTo(int row) {
    if (textPage->isOpen()) {
        textPage->goToRow(row);
        return;
    }
    view->setCurrentIndex(model->index(row, PreviewTableModel::currentName));
    view->scrollTo(view->currentIndex(), QAbstractItemView::PositionAtCenter);
    view->setFocus();
}

QuestionCard::Place PreviewPane::questionPlace() { return questionRows.place(); }

void PreviewPane::removeSelected() {
    const std::vector<RowId> selected = selection();
    if (controller.validateUserInterfaceItem() && controller.sourceCommands().canRemove(selected))
        controller.removeFile(selected);
}

/// In front of the row above the first, or behind the row below the last, of those on show.
void PreviewPane::moveSelection(bool up) {
    const std::vector<std::size_t> selected = view->selectedRows();
    const std::vector<RowId>& shown = model->rowIds();
    if (selected.empty() || !controller.validateUserInterfaceItem())
        return;
    if (up ? selected.front() == 0 : selected.back() + 1 >= shown.size())
        return;
    const DNDArrayController::Place place{shown[up ? selected.front() - 1 : selected.back() + 1], !up};
    isMoving = true;
    hands->reorder([&] { controller.dndArrayController().insertRows(view->selectedIds(), place); });
    isMoving = false;
    if (view->currentIndex().isValid())
        //: Said when rows have been moved by keys.
        Spoken::say(tr("now row %L1 of %L2").arg(view->currentIndex().row() + 1).arg(model->rowCount()));
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
    const bool isOn = controller.validateUserInterfaceItem();
    for (const PreviewColumn each :
         {PreviewColumn::currentName, PreviewColumn::newName, PreviewColumn::path, PreviewColumn::problem})
        if (isOn && PreviewTableModel::columnOf(each) == column)
            controller.previewControl().sortBy(each);
    showSorting();
}

} // namespace tavrin
