#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

class QTableView;

namespace tavrin {

class PreviewTableModel;

/// All rows of the list in a thin strip beside its scroll bar: in a run what is done and what has failed,
/// else problems and matches. A click goes there. It shows only where the list scrolls. Object name "rowMap".
class RowMap final : public QWidget {
    Q_OBJECT

  public:
    /// What a row has to show, the more important the greater.
    enum class Mark : std::uint8_t { none, done, match, problem };

    RowMap(QTableView& view, const PreviewTableModel& model);

    /// The rows, or what there is to show of them, may be others: all are looked at when it is painted next.
    void refresh();
    /// Rows of the table, in ascending order.
    void setMatches(std::vector<int> rows);

  signals:
    /// `isMarked`: it is one that was pointed at, else only what lies there.
    void rowWanted(int row, bool isMarked);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    class Marks;

    void place();
    void look();

    QTableView& view;
    const PreviewTableModel& model;
    std::vector<int> matches;
    std::vector<Mark> lines; ///< what each line of pixels shows
    bool isStale = true;
};

} // namespace tavrin
