#include "presentation/preview/PreviewTableView.h"

#include "presentation/preview/PreviewTableModel.h"
#include "presentation/start/FileAddress.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <algorithm>

namespace tavrin {

namespace {

const char* const rowsType = "application/x-tavrin-rows";

} // namespace

PreviewTableView::PreviewTableView(PreviewTableModel& shownModel, DNDArrayController& controller)
    : dragging(controller) {
    setModel(&shownModel);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    setAutoScroll(true);
    setTabKeyNavigation(false);
    connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.column() != PreviewTableModel::tick)
            emit openRequested();
    });
    secondClick.setSingleShot(true);
    connect(&secondClick, &QTimer::timeout, this, [this] {
        if (clickedTwice.isValid() && hasFocus() && clickedTwice.row() == currentIndex().row())
            emit editRequested();
    });
}

std::vector<std::size_t> PreviewTableView::selectedRows() const {
    // Ranges are few where rows are many.
    QItemSelection ranges = selectionModel()->selection();
    std::ranges::sort(ranges, {}, &QItemSelectionRange::top);
    std::vector<std::size_t> rows;
    int next = 0;
    for (const QItemSelectionRange& range : ranges)
        for (next = std::max(next, range.top()); next <= range.bottom(); ++next)
            rows.push_back(static_cast<std::size_t>(next));
    return rows;
}

int PreviewTableView::firstSelectedRow() const {
    const QItemSelection ranges = selectionModel()->selection();
    const auto first = std::ranges::min_element(ranges, {}, &QItemSelectionRange::top);
    return first == ranges.end() ? -1 : first->top();
}

const PreviewTableModel& PreviewTableView::table() const {
    return *static_cast<const PreviewTableModel*>(model());
}

std::vector<RowId> PreviewTableView::selectedIds() const {
    const std::vector<RowId>& shown = table().rowIds();
    std::vector<RowId> ids;
    for (const std::size_t row : selectedRows())
        if (row < shown.size())
            ids.push_back(shown[row]);
    return ids;
}

QModelIndex PreviewTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action != MoveHome && action != MoveEnd)
        return QTableView::moveCursor(action, modifiers);
    const int column = currentIndex().isValid() ? currentIndex().column() : PreviewTableModel::currentName;
    return model()->index(action == MoveHome ? 0 : model()->rowCount() - 1, column);
}

void PreviewTableView::mousePressEvent(QMouseEvent* event) {
    secondClick.stop();
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid() && index.column() == PreviewTableModel::tick && event->button() == Qt::LeftButton) {
        const bool isSelected = selectionModel()->isRowSelected(index.row());
        const auto row = static_cast<std::size_t>(index.row());
        emit tickRequested(isSelected ? selectedIds() : std::vector<RowId>{table().rowIds()[row]});
        return;
    }
    const bool isPlain = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
    const bool isAgain = isPlain && index.column() == PreviewTableModel::newName && hasFocus() &&
                         index.row() == currentIndex().row() && selectedRows().size() == 1 &&
                         selectionModel()->isRowSelected(index.row());
    clickedTwice = isAgain ? index : QModelIndex();
    QTableView::mousePressEvent(event);
}

void PreviewTableView::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    if (clickedTwice.isValid() && indexAt(event->position().toPoint()) == clickedTwice)
        secondClick.start(QApplication::doubleClickInterval());
}

void PreviewTableView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.column() == PreviewTableModel::tick) {
        mousePressEvent(event); // two quick clicks are two
        return;
    }
    clickedTwice = QModelIndex();
    QTableView::mouseDoubleClickEvent(event);
}

void PreviewTableView::keyPressEvent(QKeyEvent* event) {
    secondClick.stop();
    const bool hasAlt = event->modifiers().testFlag(Qt::AltModifier);
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
        emit removeRequested();
    else if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ControlModifier)
        emit pictureRequested();
    else if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier)
        emit tickRequested(selectedIds());
    else if (hasAlt && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down))
        emit moveRequested(event->key() == Qt::Key_Up);
    else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
             event->modifiers() == Qt::NoModifier)
        emit openRequested();
    else
        QTableView::keyPressEvent(event);
}

void PreviewTableView::startDrag(Qt::DropActions) {
    const std::vector<std::size_t> selected = selectedRows();
    if (!dragging.writeRows(selectedIds()))
        return;
    auto* drag = new QDrag(this);
    auto* content = new QMimeData;
    content->setData(rowsType, QByteArray::number(static_cast<qulonglong>(selected.size())));
    drag->setMimeData(content);
    const QModelIndex first =
        model()->index(static_cast<int>(selected.front()), PreviewTableModel::currentName);
    QString label = first.data().toString().left(40);
    if (selected.size() > 1)
        label += tr(" and %L1 more").arg(selected.size() - 1);
    QPixmap picture(fontMetrics().horizontalAdvance(label) + 16, fontMetrics().height() + 8);
    picture.fill(palette().color(QPalette::Highlight));
    QPainter painter(&picture);
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(picture.rect(), Qt::AlignCenter, label);
    painter.end();
    drag->setPixmap(picture);
    const Qt::DropAction result = drag->exec(Qt::MoveAction | Qt::CopyAction, Qt::MoveAction);
    showMark(-1);
    // Given up with Escape over the window, or dropped where nothing takes rows: only a drop outside removes.
    const bool isOutside = !window()->geometry().contains(QCursor::pos());
    const bool wasReleased = QGuiApplication::mouseButtons() == Qt::NoButton;
    if (result != Qt::IgnoreAction || !isOutside || !wasReleased)
        dragging.cancelDrag();
    else
        (void)dragging.deleteRowsIfAppropriate();
}

int PreviewTableView::rowAtDrop(const QPoint& place) const {
    const QModelIndex index = indexAt(place);
    if (!index.isValid())
        return model()->rowCount();
    const QRect rect = visualRect(index);
    return place.y() > rect.center().y() ? index.row() + 1 : index.row();
}

void PreviewTableView::showMark(int row) {
    markedRow = row;
    viewport()->update();
}

void PreviewTableView::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void PreviewTableView::dragMoveEvent(QDragMoveEvent* event) {
    const bool areRows = event->source() == this && event->mimeData()->hasFormat(rowsType);
    if (areRows) {
        QTableView::dragMoveEvent(event); // scrolls at the edges
        showMark(rowAtDrop(event->position().toPoint()));
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else if (DroppedFiles::areIn(*event->mimeData())) {
        isTakingFiles = true;
        viewport()->update();
        event->setDropAction(Qt::CopyAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void PreviewTableView::dragLeaveEvent(QDragLeaveEvent*) {
    isTakingFiles = false;
    showMark(-1);
}

void PreviewTableView::dropEvent(QDropEvent* event) {
    isTakingFiles = false;
    const bool areRows = event->source() == this && event->mimeData()->hasFormat(rowsType);
    if (areRows && dragging.validateDrop(true, true)) {
        event->acceptProposedAction();
        const auto row = static_cast<std::size_t>(rowAtDrop(event->position().toPoint()));
        // Below the last row on show: right behind it, in front of what is not on show.
        const std::vector<RowId>& shown = table().rowIds();
        DNDArrayController::Place place;
        if (!shown.empty())
            place = row < shown.size() ? DNDArrayController::Place{shown[row]}
                                       : DNDArrayController::Place{shown.back(), true};
        emit rowsDropped(place);
    } else if (!areRows) {
        const std::vector<std::string> paths = DroppedFiles::paths(*event->mimeData());
        event->setAccepted(!paths.empty());
        if (!paths.empty())
            dragging.acceptFiles(paths);
    }
    showMark(-1);
}

void PreviewTableView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (markedRow < 0 && !isTakingFiles)
        return;
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    if (isTakingFiles) {
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
        return;
    }
    const int rows = model()->rowCount();
    const int y = markedRow < rows ? rowViewportPosition(markedRow)
                                   : (rows > 0 ? rowViewportPosition(rows - 1) + rowHeight(rows - 1) : 0);
    painter.drawLine(0, y, viewport()->width(), y);
}

void PreviewTableView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        emit widthChanged();
}

} // namespace tavrin
