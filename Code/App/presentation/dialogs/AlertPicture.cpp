#include "presentation/dialogs/AlertPicture.h"

#include "presentation/WindowColours.h"

#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QWidget>

namespace tavrin {

namespace {

constexpr qreal side = 48;

struct Look {
    QColor ground;
    QColor mark;
    QChar sign;
    bool isTriangle;
};

Look lookOf(AlertStyle style, const WindowColours& colours) {
    switch (style) {
    case AlertStyle::informational:
        return {colours.infoTint, colours.infoText, 'i', false};
    case AlertStyle::warning:
        return {colours.warningTint, colours.warningText, '!', true};
    case AlertStyle::critical:
        return {colours.errorTint, colours.errorText, '!', false};
    }
    return {};
}

QPainterPath outline(bool isTriangle) {
    QPainterPath path;
    if (isTriangle)
        path.addPolygon(QPolygonF({{side / 2, 5}, {side - 4, side - 6}, {4, side - 6}}));
    else
        path.addEllipse(QRectF(4, 4, side - 8, side - 8));
    path.closeSubpath();
    return path;
}

} // namespace

QPixmap AlertPicture::of(AlertStyle style, const QWidget& onWidget) {
    if (!WindowColours::isOwn(onWidget.palette()))
        return {};
    const Look look = lookOf(style, WindowColours::of(onWidget.palette()));
    const qreal ratio = onWidget.devicePixelRatioF();
    QPixmap picture(QSizeF(side * ratio, side * ratio).toSize());
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look.mark, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(look.ground);
    painter.drawPath(outline(look.isTriangle));
    QFont font = onWidget.font();
    font.setPixelSize(look.isTriangle ? 20 : 26);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRectF(0, look.isTriangle ? 5 : 0, side, side), Qt::AlignCenter, look.sign);
    return picture;
}

} // namespace tavrin
