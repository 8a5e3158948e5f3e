#include "presentation/cards/CardLayer.h"

#include "presentation/WindowColours.h"
#include "presentation/cards/Card.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr int widestCard = 640;
constexpr int sideMargin = 24;
constexpr int endMargin = 8;
constexpr int pointHeight = 8;
constexpr int pointInset = 70; // of the point, from the beginning of the card
constexpr double frameWidth = 1.6;

QColor dimming(const QPalette& palette) {
    constexpr double onDark = 0.6;
    constexpr double onLight = 0.62;
    const bool isDark = WindowColours::isDark(palette);
    QColor colour = isDark ? QColor(Qt::black) : palette.color(QPalette::Window);
    colour.setAlphaF(isDark ? onDark : onLight);
    return colour;
}

} // namespace

CardLayer::CardLayer(QWidget& widget) : QWidget(widget.window()), over(&widget) {
    setObjectName("cardLayer");
    turnOffBeside(*widget.window());
    for (QWidget* watched : {widget.window(), over.data()})
        watched->installEventFilter(this);
    resize(widget.window()->size());
    raise();
}

void CardLayer::release() {
    hide();
    for (const QPointer<QWidget>& widget : std::exchange(turnedOff, {}))
        if (widget)
            widget->setEnabled(true);
}

/// Shortcuts and access keys of what is off do nothing.
void CardLayer::turnOffBeside(QWidget& ancestor) {
    for (QObject* child : ancestor.children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (!widget || widget->isWindow() || widget == over || dynamic_cast<CardLayer*>(widget))
            continue;
        if (widget->isAncestorOf(over)) {
            turnOffBeside(*widget);
        } else if (widget->isEnabledTo(&ancestor)) {
            widget->setEnabled(false);
            turnedOff.emplace_back(widget);
        }
    }
}

void CardLayer::setPlaces(Places newPlaces, bool failures) {
    places = std::move(newPlaces);
    areFailures = failures;
    place();
}

QRect CardLayer::dimmed() const {
    if (!over)
        return rect();
    const QRect area = places.area ? places.area() : over->rect();
    return {over->mapTo(parentWidget(), area.topLeft()), area.size()};
}

void CardLayer::place() {
    auto* card = findChild<Card*>({}, Qt::FindDirectChildrenOnly);
    if (!card)
        return;
    const QRect area = dimmed();
    spots.clear();
    if (over && places.spots)
        for (const QRect& spot : places.spots())
            spots.emplace_back(over->mapTo(parentWidget(), spot.topLeft()), spot.size());
    const int width = std::min(widestCard, std::max(area.width(), rect().width() / 2) - 2 * sideMargin);
    const int height = card->fitTo(width, rect().height() - 2 * endMargin);
    // A card that is higher than the list takes the room that the window has.
    const QRect bounds = height + 2 * endMargin > area.height() ? rect() : area;
    const int left = std::clamp(area.center().x() - width / 2, endMargin,
                                std::max(endMargin, rect().width() - width - endMargin));
    int top = std::clamp(bounds.center().y() - height / 2, endMargin,
                         std::max(endMargin, rect().height() - height - endMargin));
    point = {};
    const int pointX = isRightToLeft() ? left + width - pointInset : left + pointInset;
    if (!spots.empty()) {
        const QRect spot = spots.front();
        const int below = spot.bottom() + 1 + pointHeight;
        const int above = spot.top() - pointHeight - height;
        if (below + height + endMargin <= bounds.bottom() || above < bounds.top()) {
            if (below + height + endMargin <= rect().bottom()) {
                top = below;
                point = {pointX, spot.bottom() + 1};
            }
        } else {
            top = above;
            point = {pointX, spot.top()};
        }
    }
    card->setGeometry(left, top, width, height);
    update();
}

bool CardLayer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest ||
        event->type() == QEvent::Move) {
        resize(parentWidget()->size());
        // Those below have their new places only when all events of the change are through.
        QMetaObject::invokeMethod(
            this, [this] { place(); }, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

void CardLayer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath ground;
    ground.addRect(dimmed());
    for (const QRect& spot : spots) {
        QPainterPath hole;
        hole.addRect(spot);
        ground -= hole;
    }
    painter.fillPath(ground, dimming(palette()));
    painter.setPen(
        QPen(areFailures ? WindowColours::of(palette()).errorMark : WindowColours::accentOf(palette()),
             frameWidth));
    for (const QRect& spot : spots)
        painter.drawRect(
            QRectF(spot).adjusted(frameWidth / 2, frameWidth / 2, -frameWidth / 2, -frameWidth / 2));
    if (!point.isNull())
        paintPoint(painter);
}

void CardLayer::paintPoint(QPainter& painter) const {
    const auto* card = findChild<Card*>({}, Qt::FindDirectChildrenOnly);
    const bool isBelow = point.y() <= card->y();
    const double base = isBelow ? card->y() + 1 : card->geometry().bottom();
    QPainterPath mark(QPointF(point.x() - pointHeight, base));
    mark.lineTo(point);
    mark.lineTo(point.x() + pointHeight, base);
    painter.fillPath(mark, Card::ground(palette()));
    painter.setPen(QPen(Card::outline(palette()), 1));
    painter.drawPath(mark);
}

} // namespace tavrin
