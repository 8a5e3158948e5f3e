#pragma once

#include "presentation/preview/PreviewTableModel.h"
#include "shell/asking/FrontEnd.h"

#include <array>
#include <utility>

class QTableView;

namespace tavrin {

/// The widths of the list's columns: what is fixed, and how the names share what that leaves.
class PreviewColumns {
  public:
    explicit PreviewColumns(QTableView& table);

    /// In pixels.
    void setWidth(PreviewColumn column, int minimum, int maximum, int width);
    void setHidden(PreviewColumn column, bool hidden);
    /// Names, folder and reason fill the table, in the proportions that the user has given them and within
    /// their limits.
    void fit();

  private:
    QTableView& view;
    std::array<std::pair<int, int>, PreviewTableModel::columnCount_> limits{};
};

} // namespace tavrin
