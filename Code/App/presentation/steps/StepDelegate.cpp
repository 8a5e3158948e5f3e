#include "presentation/steps/StepDelegate.h"

#include "presentation/WindowColours.h"
#include "presentation/steps/StepsModel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tavrin {

namespace {

constexpr int padding = 6;
constexpr int inset = 4; // of the ground of a row
constexpr int gap = 8;

QStyle* styleOf(const QStyleOptionViewItem& option) {
    return option.widget ? option.widget->style() : QApplication::style();
}

QRect checkRect(const QStyleOptionViewItem& option) {
    const int size = styleOf(option)->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, option.widget);
    const int line = option.fontMetrics.lineSpacing();
    return QStyle::visualRect(
        option.direction, option.rect,
        {option.rect.left() + inset + padding, option.rect.top() + padding + (line - size) / 2, size, size});
}

/// The step on show stands on a ground of its own, with a bar in the accent at its side.
void paintGround(QPainter& painter, const QStyleOptionViewItem& option, bool isSelected) {
    constexpr double radius = 4;
    constexpr int barWidth = 3;
    const QRect ground = option.rect.adjusted(inset, 1, -inset, -1);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSelected ? WindowColours::chosenGround(option.palette)
                                : option.palette.color(QPalette::Midlight));
    painter.drawRoundedRect(ground, radius, radius);
    if (isSelected) {
        QRect bar = ground.adjusted(0, 3, 0, -3);
        bar.setWidth(barWidth);
        painter.setBrush(WindowColours::accentOf(option.palette));
        painter.drawRoundedRect(QStyle::visualRect(option.direction, option.rect, bar), 1, 1);
    }
    painter.restore();
}

} // namespace

QSize StepDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {100, 2 * option.fontMetrics.lineSpacing() + 2 * padding};
}

void StepDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyle* style = styleOf(option);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isActive = index.data(StepsModel::activeRole).toBool();
    if (isSelected || option.state.testFlag(QStyle::State_MouseOver))
        paintGround(*painter, option, isSelected);
    QStyleOptionButton check;
    check.rect = checkRect(option);
    check.palette = option.palette;
    check.state = QStyle::State_Enabled | (isActive ? QStyle::State_On : QStyle::State_Off);
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, painter, option.widget);

    const QColor inactive(128, 128, 128);
    const QColor text = isActive ? option.palette.color(QPalette::Text) : inactive;
    const QColor dim = isActive ? option.palette.color(QPalette::PlaceholderText) : inactive;
    const int line = option.fontMetrics.lineSpacing();
    const QRect logical(inset + padding + check.rect.width() + gap + option.rect.left(),
                        option.rect.top() + padding, 0, line);
    const QRect upper = QStyle::visualRect(
        option.direction, option.rect,
        QRect(logical.topLeft(), QPoint(option.rect.right() - inset - padding, logical.bottom())));
    const QRect lower = upper.translated(0, line);
    const auto draw = [&](const QRect& place, const QColor& colour, const QString& string) {
        painter->setPen(colour);
        painter->drawText(place, Qt::AlignLeading | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(string, Qt::ElideRight, place.width()));
    };
    painter->save();
    QFont font = option.font;
    if (isSelected)
        font.setWeight(QFont::DemiBold);
    painter->setFont(font);
    draw(upper, text,
         QString("%1  %2").arg(index.data(StepsModel::numberRole).toInt()).arg(index.data().toString()));
    painter->setFont(option.font);
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
