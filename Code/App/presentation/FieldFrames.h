#pragma once

#include <QProxyStyle>

namespace tavrin {

/// The plain style draws the frames of fields and check boxes darker than their ground, which in a dark
/// palette leaves nothing to be seen of them: here they are drawn once more, light. In light palettes it
/// changes nothing.
class FieldFrames final : public QProxyStyle {
  public:
    FieldFrames() : QProxyStyle("fusion") {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

} // namespace tavrin
