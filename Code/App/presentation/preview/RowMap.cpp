#include "presentation/preview/RowMap.h"

#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTableView>
#include <algorithm>
#include <cstdlib>

namespace tavrin {

namespace {

constexpr int mapWidth = 4;
constexpr int leastMark = 2; // lines of pixels
constexpr int reach = 4;     // of a click, in pixels

} // namespace

/// What each row shows, as it is now.
class RowMap::Marks {
  public:
    Marks(const PreviewTableModel& model, const std::vector<int>& matchingRows)
        : ids(model.rowIds()), run(model.runMarks().runUnderWay()), matches(matchingRows) {
        if (run || model.problems().empty())
            return;
        problems.resize(model.problems().back() + 1);
        for (const RowId each : model.problems())
            problems[each] = true;
    }
    [[nodiscard]] std::size_t count() const { return ids.size(); }
    [[nodiscard]] Mark of(std::size_t row) const {
        if (run)
            return ofOutcome(run->of(ids[row]));
        if (ids[row] < problems.size() && problems[ids[row]])
            return Mark::problem;
        return std::ranges::binary_search(matches, static_cast<int>(row)) ? Mark::match : Mark::none;
    }
    /// Of rows that share a place. In a run it is done when all are with which the run has to do, but one
    /// that failed is enough.
    [[nodiscard]] Mark of(std::size_t first, std::size_t end) const {
        Mark mark = Mark::none;
        bool isOpen = false;
        for (std::size_t row = first; row < end && mark != Mark::problem; ++row) {
            if (run && !run->isPlanned(ids[row]))
                continue;
            const Mark next = of(row);
            isOpen |= run && next == Mark::none;
            mark = std::max(mark, next);
        }
        return isOpen && mark == Mark::done ? Mark::none : mark;
    }

  private:
    static Mark ofOutcome(RunOutcome outcome) {
        switch (outcome) {
        case RunOutcome::open:
        case RunOutcome::inHand:
            return Mark::none;
        case RunOutcome::done:
        case RunOutcome::leftOut:
            return Mark::done;
        case RunOutcome::failed:
            break;
        }
        return Mark::problem;
    }

    const std::vector<RowId>& ids;
    std::optional<RunOutcomes::View> run;
    const std::vector<int>& matches;
    std::vector<bool> problems; ///< by id
};

RowMap::RowMap(QTableView& table, const PreviewTableModel& shownModel)
    : QWidget(&table), view(table), model(shownModel) {
    setObjectName("rowMap");
    setCursor(Qt::PointingHandCursor);
    view.viewport()->installEventFilter(this);
    connect(view.verticalScrollBar(), &QScrollBar::rangeChanged, this, &RowMap::place);
    connect(&model, &QAbstractItemModel::modelReset, this, &RowMap::refresh);
    connect(&model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
                if (roles.isEmpty())
                    refresh();
            });
    place();
}

void RowMap::refresh() {
    isStale = true;
    update();
}

void RowMap::setMatches(std::vector<int> rows) {
    if (rows == matches)
        return;
    matches = std::move(rows);
    refresh();
}

/// Within the list, at its end, where its last column has nothing but its margin.
void RowMap::place() {
    const QRect whole = view.viewport()->geometry();
    const QRect strip(whole.right() + 1 - mapWidth, whole.top(), mapWidth, whole.height());
    setGeometry(QStyle::visualRect(layoutDirection(), whole, strip));
    setVisible(view.verticalScrollBar()->maximum() > 0);
    raise();
    refresh();
}

void RowMap::look() {
    isStale = false;
    const Marks marks(model, matches);
    const auto height = static_cast<std::size_t>(std::max(1, this->height()));
    lines.assign(height, Mark::none);
    for (std::size_t line = 0; line < height && marks.count() > 0; ++line) {
        const std::size_t first = line * marks.count() / height;
        lines[line] = marks.of(first, std::max(first + 1, (line + 1) * marks.count() / height));
    }
}

bool RowMap::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        place();
    return QWidget::eventFilter(watched, event);
}

/// What is done takes half the width, so that failures can be told from it by more than their colour.
void RowMap::paintEvent(QPaintEvent*) {
    if (isStale)
        look();
    QPainter painter(this);
    const WindowColours& colours = WindowColours::of(palette());
    const bool isRun = model.runMarks().runUnderWay().has_value();
    if (isRun)
        painter.fillRect(rect(), palette().color(QPalette::Mid));
    const QRect half(0, 0, width() / 2, height());
    const QRect end = QStyle::alignedRect(layoutDirection(), Qt::AlignTrailing, half.size(), rect());
    for (const Mark drawn : {Mark::done, Mark::match, Mark::problem})
        for (std::size_t line = 0; line < lines.size(); ++line) {
            if (lines[line] != drawn)
                continue;
            const int y = static_cast<int>(line);
            if (drawn == Mark::done)
                painter.fillRect(end.left(), y, end.width(), 1, colours.addedText);
            else
                painter.fillRect(0, y, width(), leastMark,
                                 drawn == Mark::problem ? colours.errorMark
                                                        : WindowColours::accentOf(palette()));
        }
}

void RowMap::mousePressEvent(QMouseEvent* event) {
    const Marks marks(model, matches);
    if (marks.count() == 0 || event->button() != Qt::LeftButton)
        return;
    const auto rowAt = [&](int y) {
        const auto line = static_cast<std::size_t>(std::clamp(y, 0, height() - 1));
        return line * marks.count() / static_cast<std::size_t>(height());
    };
    const int y = static_cast<int>(event->position().y());
    std::size_t row = rowAt(y);
    bool isMarked = false;
    const auto aim = static_cast<std::int64_t>(row);
    for (std::size_t each = rowAt(y - reach); each < std::max(row + 1, rowAt(y + reach)); ++each) {
        const bool isNearer = !isMarked || std::abs(static_cast<std::int64_t>(each) - aim) <
                                               std::abs(static_cast<std::int64_t>(row) - aim);
        if (isNearer && marks.of(each) > Mark::done) {
            row = each;
            isMarked = true;
        }
    }
    emit rowWanted(static_cast<int>(row), isMarked);
}

} // namespace tavrin
