#pragma once

#include "presentation/history/NameSearch.h"

#include <QAbstractListModel>
#include <QStyledItemDelegate>
#include <optional>
#include <vector>

namespace tavrin {

/// The names that were found in past runs: a line for each run, and below it one for each hit.
class FoundListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    using QAbstractListModel::QAbstractListModel;

    void setFound(NamesFound newFound);
    [[nodiscard]] const NamesFound& found() const { return names; }
    /// Null for the line of a run.
    [[nodiscard]] const NamesFound::Hit* hitAt(const QModelIndex& index) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    struct Line {
        std::size_t run = 0;            ///< place in the runs that were found
        std::optional<std::size_t> hit; ///< place in the hits; none: the line of the run
    };

    NamesFound names;
    std::vector<Line> lines;
};

/// Draws them: of a hit the old name, and below it the new one behind an arrow.
class FoundDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    static void paintHit(QPainter& painter, const QStyleOptionViewItem& option, const NamesFound::Hit& hit);
};

} // namespace tavrin
