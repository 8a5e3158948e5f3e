#include "presentation/ToggleButton.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"

#include <QPainter>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace tavrin {

namespace {

constexpr int padding = 7;
constexpr double radius = 4;

} // namespace

ToggleButton::ToggleButton(const QString& label, Glyph glyph) {
    setText(label);
    setIcon(GlyphIcon::of(glyph));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

QSize ToggleButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {iconSize().width() + metrics.horizontalAdvance(text()) + 2 * padding + 4,
            std::max(metrics.height(), iconSize().height()) + padding};
}

void ToggleButton::paintGround(QPainter& painter, const QRect& place, const QWidget& button, bool isChosen) {
    const QPalette palette = button.palette();
    const bool isFocused = button.hasFocus();
    const bool isUnderMouse = button.underMouse() && button.isEnabled();
    QColor frame = isChosen || isFocused ? WindowColours::accentOf(palette) : palette.color(QPalette::Mid);
    if (!button.isEnabled())
        frame = palette.color(QPalette::Mid);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(frame, isFocused ? 2 : 1));
    painter.setBrush(isChosen       ? WindowColours::chosenGround(palette)
                     : isUnderMouse ? palette.color(QPalette::Midlight)
                                    : QColor(Qt::transparent));
    painter.drawRoundedRect(QRectF(place).adjusted(1, 1, -1, -1), radius, radius);
}

void ToggleButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    painter.save();
    paintGround(painter, rect(), *this, isChecked());
    painter.restore();
    // The style shifts the label of a button that is down.
    option.state.setFlag(QStyle::State_Sunken, false);
    option.state.setFlag(QStyle::State_On, false);
    painter.drawControl(QStyle::CE_ToolButtonLabel, option);
}

} // namespace tavrin
