#pragma once

#include "shell/preview/DNDArrayController.h"

#include <QPersistentModelIndex>
#include <QTableView>
#include <QTimer>
#include <vector>

namespace tavrin {

class PreviewTableModel;

/// The table of the preview list: rows are dragged within it to order them by hand, and out of it to remove
/// them; files are dropped on it. What a drag means is decided by the DNDArrayController.
class PreviewTableView final : public QTableView {
    Q_OBJECT

  public:
    PreviewTableView(PreviewTableModel& shownModel, DNDArrayController& controller);

    /// Of the table, in ascending order.
    [[nodiscard]] std::vector<std::size_t> selectedRows() const;
    /// The same as ids.
    [[nodiscard]] std::vector<RowId> selectedIds() const;
    /// -1 where none is.
    [[nodiscard]] int firstSelectedRow() const;

  signals:
    void removeRequested();      ///< Delete was pressed
    void moveRequested(bool up); ///< Alt+Up or Alt+Down
    void openRequested();        ///< a double click or Return
    void widthChanged();         ///< there is more or less room for the columns
    void editRequested();        ///< a slow second click on the new name of the row in hand
    void tickRequested(const std::vector<RowId>& rows); ///< a click on a tick, or Space
    void pictureRequested();                            ///< Ctrl+Space
    void rowsDropped(DNDArrayController::Place place);

  protected:
    /// Home and End go to the first and the last row, as in lists.
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    [[nodiscard]] int rowAtDrop(const QPoint& place) const;
    [[nodiscard]] const PreviewTableModel& table() const;
    void showMark(int row);

    DNDArrayController& dragging;
    int markedRow = -1; ///< rows would be dropped in front of it
    bool isTakingFiles = false;
    QTimer secondClick;                 ///< the first has been that of a double click until it is over
    QPersistentModelIndex clickedTwice; ///< the new name under it
};

} // namespace tavrin
