#include "presentation/history/RunTable.h"

#include "presentation/WindowColours.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr int pictureSize = 20;

} // namespace

RunTable::RunTable() : items(new RunItemsModel(this)) {
    setObjectName("historyItems");
    setAccessibleName(tr("Items of this rename"));
    setModel(items);
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle);
    setIconSize({pictureSize, pictureSize});
    setUpHeaders();
}

void RunTable::setUpHeaders() {
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(std::max(pictureSize, fontMetrics().height()) + 8);
    QHeaderView* header = horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionsClickable(true);
    header->setStretchLastSection(true);
    header->setMinimumSectionSize(pictureSize + 16);
    header->resizeSection(RunItemsModel::pictureColumn, pictureSize + 20);
    connect(header, &QHeaderView::sectionResized, this, [this](int column) {
        if (column < RunItemsModel::nowColumn && !isSizingColumns)
            areColumnsOwn = true;
    });
    connect(header, &QHeaderView::sectionClicked, this, [this](int column) { sortBy(column); });
}

// --- Items ---

void RunTable::clear() {
    reading.cancel();
    looking.cancel();
    arranging.cancel();
    sought.reset();
    items->setContents(std::make_shared<RunContents>(), {});
}

void RunTable::read(const PastRun& run) {
    clear();
    reading.start(
        [run, how = arrangement](const LatestWork::Unwanted&) {
            auto contents = std::make_shared<RunContents>(RunContents::read(run));
            auto order = RunItemsModel::arranged(*contents, how);
            return Read(std::move(contents), std::move(order));
        },
        [this, run, how = arrangement](Read read) {
            show(std::move(read.first), std::move(read.second));
            if (how != arrangement)
                arrange();
            look(run);
        });
}

void RunTable::look(const PastRun& run) {
    looking.start(
        [run, how = arrangement](const LatestWork::Unwanted& isUnwanted) {
            auto contents = std::make_shared<RunContents>(
                RunContents::lookedAt(run, [&isUnwanted] { return isUnwanted.load(); }));
            auto order = RunItemsModel::arranged(*contents, how);
            return Read(std::move(contents), std::move(order));
        },
        [this, how = arrangement](Read read) {
            if (!read.first->isLookedAt)
                return;
            reading.cancel();
            show(std::move(read.first), std::move(read.second));
            if (how != arrangement)
                arrange();
            emit looked();
        });
}

void RunTable::show(RunItemsModel::Contents contents, RunItemsModel::Order order) {
    items->setContents(std::move(contents), std::move(order));
    goToSought();
}

void RunTable::arrange() {
    arranging.start(
        [contents = items->contents(), how = arrangement](const LatestWork::Unwanted&) {
            return std::pair(contents, RunItemsModel::arranged(*contents, how));
        },
        [this](auto arranged) {
            if (arranged.first == items->contents())
                show(arranged.first, std::move(arranged.second));
        });
}

/// Ascending, descending, back.
void RunTable::sortBy(int column) {
    if (column == RunItemsModel::pictureColumn)
        return;
    const bool isSorted = arrangement.column == column;
    const bool isBack = isSorted && arrangement.direction == Qt::DescendingOrder;
    arrangement.column = isBack ? -1 : column;
    arrangement.direction = isSorted ? Qt::DescendingOrder : Qt::AscendingOrder;
    horizontalHeader()->setSortIndicatorShown(!isBack);
    horizontalHeader()->setSortIndicator(column, arrangement.direction);
    arrange();
}

void RunTable::setFilter(const QString& text) {
    if (std::exchange(arrangement.filter, text) != text)
        arrange();
}

void RunTable::seek(std::uint32_t item) {
    sought = item;
    goToSought();
}

void RunTable::goToSought() {
    const RunItemsModel::Order& rows = items->rows();
    const auto found = sought ? std::ranges::find(rows, *sought) : rows.end();
    if (found == rows.end())
        return;
    const QModelIndex index =
        items->index(static_cast<int>(found - rows.begin()), RunItemsModel::oldNameColumn);
    setCurrentIndex(index);
    scrollTo(index, PositionAtCenter);
    // It may move once more, when its run has been looked at.
    if (contents().isLookedAt)
        sought.reset();
}

std::string RunTable::pathInHand() const {
    if (items->rows().empty())
        return {};
    const QModelIndex current = currentIndex();
    const bool isSelected = current.isValid() && selectionModel()->isRowSelected(current.row());
    return contents().pathOf(items->itemAt(isSelected ? current.row() : 0));
}

void RunTable::withText(bool onlySelected, std::function<void(const QString&)> then) {
    RunItemsModel::Order rows = items->rows();
    if (onlySelected) {
        RunItemsModel::Order selected;
        QItemSelection ranges = selectionModel()->selection();
        std::ranges::sort(ranges, {}, &QItemSelectionRange::top);
        for (const QItemSelectionRange& range : ranges)
            selected.insert(selected.end(), rows.begin() + range.top(), rows.begin() + range.bottom() + 1);
        rows = std::move(selected);
    }
    writing.start([contents = items->contents(), rows = std::move(rows)](
                      const LatestWork::Unwanted&) { return RunItemsModel::textOf(*contents, rows); },
                  [then = std::move(then)](const QString& text) { then(text); });
}

// --- Looks and keys ---

void RunTable::setPictures(bool areShown) { items->setPictures(areShown, pictureSize, devicePixelRatioF()); }

void RunTable::applyColours() {
    QPalette chosen = QApplication::palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        chosen.setColor(group, QPalette::Highlight, WindowColours::chosenGround(chosen));
        chosen.setColor(group, QPalette::HighlightedText, chosen.color(QPalette::Text));
    }
    if (palette() != chosen)
        setPalette(chosen);
}

/// A share of the width for each name, until the user gives them another.
void RunTable::sizeColumns() {
    if (areColumnsOwn)
        return;
    const QScopedValueRollback isOurs(isSizingColumns, true);
    const int width = viewport()->width() - columnWidth(RunItemsModel::pictureColumn);
    for (const int names : {RunItemsModel::oldNameColumn, RunItemsModel::newNameColumn})
        setColumnWidth(names, std::max(80, width * 3 / 10));
}

void RunTable::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { sizeColumns(); }, Qt::QueuedConnection);
}

void RunTable::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    const bool isText = !text.isEmpty() && text.front().isPrint() && !text.front().isSpace() &&
                        !(event->modifiers() & ~Qt::ShiftModifier);
    if (isText)
        emit typed(text);
    else
        QTableView::keyPressEvent(event);
}

} // namespace tavrin
