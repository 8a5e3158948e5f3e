#include "presentation/FieldFrames.h"

#include "presentation/WindowColours.h"

#include <QPainter>
#include <QStyleOption>

namespace tavrin {

namespace {

void drawFrame(QPainter& painter, const QRect& place, const QStyleOption& option) {
    const bool isFocused =
        option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Enabled);
    if (!WindowColours::isDark(option.palette) || isFocused)
        return;
    constexpr double radius = 2;
    QColor colour = option.palette.color(QPalette::PlaceholderText);
    colour.setAlphaF(option.state.testFlag(QStyle::State_Enabled) ? 0.6F : 0.3F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

} // namespace

void FieldFrames::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit || element == PE_IndicatorCheckBox || element == PE_Frame)
        drawFrame(*painter, option->rect, *option);
}

void FieldFrames::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox)
        drawFrame(*painter, option->rect, *option);
}

} // namespace tavrin
