#include "presentation/preview/Chip.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"

#include <QPainter>
#include <QStyle>

namespace tavrin {

namespace {

constexpr int padding = 7;
constexpr int gap = 4;
constexpr double radius = 9;

} // namespace

Chip::Chip(const char* name, Glyph shown) : glyph(shown) {
    setObjectName(name);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Chip::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + metrics.ascent() + gap + 2 * padding, metrics.height() + 4};
}

void Chip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = WindowColours::accentOf(palette());
    painter.setPen(QPen(hasFocus() ? accent : palette().color(QPalette::Mid), hasFocus() ? 2 : 1));
    painter.setBrush(isDown() || underMouse() ? WindowColours::chosenGround(palette())
                                              : palette().color(QPalette::Window));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    const QColor words = palette().color(QPalette::PlaceholderText);
    const int side = fontMetrics().ascent();
    const QRect picture(padding, (height() - side) / 2, side, side);
    GlyphIcon::paint(painter, QStyle::visualRect(layoutDirection(), rect(), picture), glyph, words);
    const QRect label(padding + side + gap, 0, width() - 2 * padding - side - gap, height());
    painter.setPen(words);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), label), Qt::AlignCenter, text());
}

} // namespace tavrin
