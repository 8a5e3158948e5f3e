#include "presentation/preview/QuestionRows.h"

#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"

#include <QStackedWidget>
#include <QTableView>
#include <algorithm>

namespace tavrin {

QuestionCard::Place QuestionRows::place() {
    return {pages, [this] { return pages.currentWidget() == &view ? areaOfList() : pages.rect(); },
            [this](const std::string& path) { reveal(path); },
            [this](const QuestionText::Rows& rows) { return inView(rows); }};
}

QRect QuestionRows::areaOfList() const {
    return {view.viewport()->mapTo(&pages, QPoint()), view.viewport()->size()};
}

void QuestionRows::reveal(const std::string& path) {
    const auto row = model.rowOf(controller.nodeController().rowWithPath(path));
    if (!row)
        return;
    const QRect place = view.visualRect(model.index(*row, PreviewTableModel::currentName));
    const int height = view.viewport()->height();
    if (place.top() >= 0 && place.bottom() < height / 3)
        return;
    const int rowsInView = height / std::max(1, view.rowHeight(*row));
    view.scrollTo(model.index(std::max(0, *row - rowsInView / 6), PreviewTableModel::currentName),
                  QAbstractItemView::PositionAtTop);
}

std::vector<QRect> QuestionRows::inView(const QuestionText::Rows& rows) const {
    std::vector<QRect> places;
    if (pages.currentWidget() != &view)
        return places;
    const QRect area = areaOfList();
    for (int row = view.rowAt(0); row >= 0 && row < model.rowCount(); ++row) {
        const QRect place(0, view.rowViewportPosition(row), area.width(), view.rowHeight(row));
        if (place.top() >= area.height())
            break;
        if (rows.hold(model.rowAt(row).fullPath))
            places.push_back(place.translated(area.topLeft()) & area);
    }
    return places;
}

} // namespace tavrin
