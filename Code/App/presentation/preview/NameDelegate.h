#pragma once

#include <QStyledItemDelegate>

namespace tavrin {

/// Paints the cells of the preview list: names with their changed parts tinted and elided in the middle, the
/// state in its colour, unchanged new names dimmed.
class NameDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace tavrin
