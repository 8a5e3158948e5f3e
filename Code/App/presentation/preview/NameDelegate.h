#pragma once

#include <QColor>
#include <QStyledItemDelegate>

namespace tavrin {

enum class Glyph;

/// Paints the cells of the preview list: names with their changed parts tinted and elided in the middle, the
/// state in its colour, unchanged new names dimmed.
class NameDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// What stands for the state of a row.
    struct Sign {
        Glyph glyph;
        QColor colour;
    };
    [[nodiscard]] static Sign signOf(const QModelIndex& index, const QPalette& palette);
};

} // namespace tavrin
