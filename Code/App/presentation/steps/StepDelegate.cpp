#include "presentation/steps/StepDelegate.h"

#include "presentation/WindowColours.h"
#include "presentation/steps/StepsModel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int padding = 6;
constexpr int inset = 4; // of the ground of a row
constexpr int gap = 8;
constexpr int wrapped = Qt::AlignLeading | Qt::TextWordWrap;

QStyle* styleOf(const QStyleOptionViewItem& option) {
    return option.widget ? option.widget->style() : QApplication::style();
}

int numberWidth(const QFontMetrics& metrics, int number) {
    return metrics.horizontalAdvance(QString::number(number)) + metrics.horizontalAdvance(QString("  "));
}

/// The font of the title, which must not need another line as soon as its step is chosen.
QFont titleFont(const QStyleOptionViewItem& option) {
    QFont font = option.font;
    font.setWeight(QFont::DemiBold);
    return font;
}

/// Where the parts of a row are, in a layout from left to right; the height is what the row needs.
struct StepRow {
    QRect check;
    QRect number;
    QRect title;
    QRect summary; ///< empty where there is nothing to be said
    int height;

    StepRow(const QStyleOptionViewItem& option, const QRect& row, const QModelIndex& index) {
        const QFontMetrics bold(titleFont(option));
        const int line = option.fontMetrics.lineSpacing();
        const int box = styleOf(option)->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, option.widget);
        const int left = row.left() + inset + padding;
        const int top = row.top() + padding;
        number =
            QRect(left + box + gap, top, numberWidth(bold, index.data(StepsModel::numberRole).toInt()), line);
        const int width = std::max(1, row.right() - inset - padding - number.right());
        const QRect room(0, 0, width, QWIDGETSIZE_MAX);
        const int wanted = bold.boundingRect(room, wrapped, index.data().toString()).height();
        title = QRect(number.right() + 1, top, width, std::max(line, wanted));
        if (!index.data(StepsModel::summaryRole).toString().isEmpty())
            summary =
                QRect(number.left(), title.bottom() + 1, row.right() - inset - padding - number.left(), line);
        height = title.height() + summary.height() + 2 * padding;
        check = QRect(left, top + (line - box) / 2, box, box);
    }
};

/// As wide as the list is: a title that is too long for it goes on below.
QRect rowIn(const QStyleOptionViewItem& option) {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    return {0, 0, view ? view->viewport()->width() : option.rect.width(), 1};
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

QSize StepDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return {100, StepRow(option, rowIn(option), index).height};
}

void StepDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyle* style = styleOf(option);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isActive = index.data(StepsModel::activeRole).toBool();
    if (isSelected || option.state.testFlag(QStyle::State_MouseOver))
        paintGround(*painter, option, isSelected);
    const StepRow row(option, option.rect, index);
    const auto shown = [&](const QRect& place) {
        return QStyle::visualRect(option.direction, option.rect, place);
    };
    QStyleOptionButton check;
    check.rect = shown(row.check);
    check.palette = option.palette;
    check.state = QStyle::State_Enabled | (isActive ? QStyle::State_On : QStyle::State_Off);
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, painter, option.widget);

    const QColor inactive(128, 128, 128);
    const QString summary = index.data(StepsModel::summaryRole).toString();
    painter->save();
    painter->setLayoutDirection(option.direction);
    painter->setPen(isActive ? option.palette.color(QPalette::Text) : inactive);
    painter->setFont(isSelected ? titleFont(option) : option.font);
    painter->drawText(shown(row.number), Qt::AlignLeading,
                      QString::number(index.data(StepsModel::numberRole).toInt()));
    painter->drawText(shown(row.title), wrapped, index.data().toString());
    painter->setFont(option.font);
    painter->setPen(isActive ? option.palette.color(QPalette::PlaceholderText) : inactive);
    painter->drawText(shown(row.summary), Qt::AlignLeading | Qt::AlignVCenter,
                      option.fontMetrics.elidedText(summary, Qt::ElideRight, row.summary.width()));
    painter->restore();
}

bool StepDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                               const QModelIndex& index) {
    bool toggles = false;
    if (event->type() == QEvent::MouseButtonRelease)
        toggles = QStyle::visualRect(option.direction, option.rect, StepRow(option, option.rect, index).check)
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
