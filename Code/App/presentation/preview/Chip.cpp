#include "presentation/preview/Chip.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"

#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

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
    hide();
}

QSize Chip::sizeIn(Form which) const {
    const QFontMetrics metrics = fontMetrics();
    const int words = which == Form::whole ? gap + metrics.horizontalAdvance(text()) : 0;
    return {metrics.ascent() + words + 2 * padding, metrics.height() + 4};
}

void Chip::setWanted(bool wanted) {
    if (wanted == isTelling)
        return;
    isTelling = wanted;
    setVisible(isTelling && form != Form::folded);
    emit wantedChanged();
}

void Chip::setForm(Form wanted) {
    if (wanted == form)
        return;
    form = wanted;
    setVisible(isTelling && form != Form::folded);
    updateGeometry();
    update();
}

void Chip::setMenu(QMenu* newMenu) {
    ownMenu = newMenu;
    ownMenu->setParent(this, ownMenu->windowFlags());
    connect(this, &Chip::clicked, ownMenu, [this] {
        ownMenu->popup(mapToGlobal(QPoint(0, -ownMenu->sizeHint().height()))); // it is at the bottom
    });
}

bool Chip::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || form == Form::whole)
        return QAbstractButton::event(event);
    const QString tip = toolTip().isEmpty() ? text() : text() + '\n' + toolTip();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
    return true;
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
    if (form != Form::whole)
        return;
    const QRect label(padding + side + gap, 0, width() - 2 * padding - side - gap, height());
    painter.setPen(words);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), label), Qt::AlignCenter, text());
}

} // namespace tavrin
