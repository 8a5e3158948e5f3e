#include "presentation/history/RunLine.h"

#include "presentation/WindowColours.h"

#include <QPainter>
#include <QStyleOptionViewItem>

namespace tavrin {

namespace {

constexpr int accentWidth = 3;
constexpr int padding = 8;

} // namespace

int RunLine::heightOfHead(const QStyleOptionViewItem& option) { return option.fontMetrics.height() + 14; }

int RunLine::heightOfTwo(const QStyleOptionViewItem& option) {
    return 2 * option.fontMetrics.height() + 2 * padding;
}

QRect RunLine::seen(const QRect& place) const {
    return QStyle::visualRect(option.direction, option.rect, place);
}

int RunLine::top(int line) const { return option.rect.top() + padding + line * option.fontMetrics.height(); }

void RunLine::paintHead(const QString& text) const {
    const QRect place = option.rect.adjusted(margin, 4, -margin, 0);
    painter.setPen(option.palette.color(QPalette::PlaceholderText));
    painter.drawText(place, Qt::AlignVCenter | QStyle::visualAlignment(option.direction, Qt::AlignLeft),
                     option.fontMetrics.elidedText(text, Qt::ElideMiddle, place.width()));
}

void RunLine::paintGround() const {
    if (!option.state.testFlag(QStyle::State_Selected))
        return;
    const QRect& row = option.rect;
    painter.fillRect(row, WindowColours::chosenGround(option.palette));
    painter.fillRect(seen({row.left(), row.top(), accentWidth, row.height()}),
                     WindowColours::accentOf(option.palette));
}

void RunLine::paintText(int line, const QString& text, const QColor& colour, Qt::TextElideMode elide,
                        int taken) const {
    const int width = option.rect.width() - textStart - margin - taken;
    painter.setPen(colour);
    painter.drawText(seen({option.rect.left() + textStart, top(line), width, option.fontMetrics.height()}),
                     Qt::AlignVCenter | QStyle::visualAlignment(option.direction, Qt::AlignLeft),
                     QFontMetrics(painter.font()).elidedText(text, elide, width));
}

QRect RunLine::placeOfSign(int line) const {
    return seen({option.rect.left() + margin, top(line) + (option.fontMetrics.height() - signSize) / 2,
                 signSize, signSize});
}

void RunLine::paintFocus() const {
    if (!option.state.testFlag(QStyle::State_HasFocus))
        return;
    painter.setPen(WindowColours::accentOf(option.palette));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
}

} // namespace tavrin
