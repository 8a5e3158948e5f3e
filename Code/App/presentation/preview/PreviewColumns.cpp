#include "presentation/preview/PreviewColumns.h"

#include <QHeaderView>
#include <QTableView>
#include <algorithm>

namespace tavrin {

PreviewColumns::PreviewColumns(QTableView& table) : view(table) {
    view.setColumnWidth(PreviewTableModel::tick, 30);
    view.setColumnWidth(PreviewTableModel::icon, 40);
    view.setColumnWidth(PreviewTableModel::state, 34);
    view.setColumnHidden(PreviewTableModel::problem, true);
    view.setColumnWidth(PreviewTableModel::problem, 220);
    limits[PreviewTableModel::problem] = {120, 600};
    for (const int column : {PreviewTableModel::tick, PreviewTableModel::icon, PreviewTableModel::state})
        view.horizontalHeader()->setSectionResizeMode(column, QHeaderView::Fixed);
}

void PreviewColumns::setWidth(PreviewColumn column, int minimum, int maximum, int width) {
    const int section = PreviewTableModel::columnOf(column);
    limits[static_cast<std::size_t>(section)] = {minimum, maximum};
    view.setColumnWidth(section, width);
}

void PreviewColumns::setHidden(PreviewColumn column, bool hidden) {
    view.setColumnHidden(PreviewTableModel::columnOf(column), hidden);
}

void PreviewColumns::fit() {
    int left = view.viewport()->width();
    int wanted = 0;
    std::vector<int> flexible;
    for (int column = 0; column < PreviewTableModel::columnCount_; ++column) {
        if (view.isColumnHidden(column))
            continue;
        if (column == PreviewTableModel::currentName || column == PreviewTableModel::newName ||
            column == PreviewTableModel::folder || column == PreviewTableModel::problem) {
            flexible.push_back(column);
            wanted += view.columnWidth(column);
        } else
            left -= view.columnWidth(column);
    }
    for (const int column : flexible) {
        const auto [minimum, maximum] = limits[static_cast<std::size_t>(column)];
        const int before = view.columnWidth(column);
        const int share = left * before / std::max(1, wanted);
        const int width = std::clamp(share, std::max(40, minimum), std::max(minimum + 1, maximum));
        view.setColumnWidth(column, width);
        left -= width;
        wanted -= before;
    }
}

} // namespace tavrin
