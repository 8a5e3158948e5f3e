#include "presentation/steps/StepDelegate.h"

#include "presentation/steps/StepsModel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tavrin {

namespace {

constexpr int padding = 6;

QStyle* styleOf(const QStyleOptionViewItem& option) {
    return option.widget ? option.widget->style() : QApplication::style();
}

QRect checkRect(const QStyleOptionViewItem& option) {
    const int size = styleOf(option)->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, option.widget);
    const int line = option.fontMetrics.lineSpacing();
    return {option.rect.left() + padding, option.rect.top() + padding + (line - size) / 2, size, size};
}

} // namespace

QSize StepDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {100, 2 * option.fontMetrics.lineSpacing() + 2 * padding};
}

void StepDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyle* style = styleOf(option);
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isActive = index.data(StepsModel::activeRole).toBool();
    QStyleOptionButton check;
    check.rect = checkRect(option);
    check.palette = option.palette;
    check.state = QStyle::State_Enabled | (isActive ? QStyle::State_On : QStyle::State_Off);
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, painter, option.widget);

    QColor text = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    if (!isActive && !isSelected)
        text = QColor(128, 128, 128);
    QColor dim = text;
    dim.setAlphaF(0.7F);
    const int left = check.rect.right() + padding;
    const int line = option.fontMetrics.lineSpacing();
    const QRect upper(left, option.rect.top() + padding, option.rect.right() - left - padding, line);
    const QRect lower = upper.translated(0, line);
    const auto draw = [&](const QRect& place, const QColor& colour, const QString& string) {
        painter->setPen(colour);
        painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(string, Qt::ElideRight, place.width()));
    };
    painter->save();
    painter->setFont(option.font);
    draw(upper, text,
         QString("%1  %2").arg(index.data(StepsModel::numberRole).toInt()).arg(index.data().toString()));
    draw(lower, dim, index.data(StepsModel::summaryRole).toString());
    painter->restore();
}

bool StepDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                               const QModelIndex& index) {
    bool toggles = false;
    if (event->type() == QEvent::MouseButtonRelease)
        toggles = checkRect(option)
                      .adjusted(-padding, -padding, padding, padding)
                      .contains(static_cast<QMouseEvent*>(event)->position().toPoint());
    else if (event->type() == QEvent::KeyPress)
        toggles = static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
    if (!toggles)
        return false;
    const bool isActive = index.data(StepsModel::activeRole).toBool();
    return model->setData(index, isActive ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

} // namespace tavrin
