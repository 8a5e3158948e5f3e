#include "presentation/WindowPlace.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr QSize firstSize(1180, 760);
constexpr QSize roomForFrame(32, 64);
constexpr int leastWidthToShare = 1024;

int areaWithin(const QRect& place, const QRect& available) {
    const QRect common = place.intersected(available);
    return common.isEmpty() ? 0 : common.width() * common.height();
}

} // namespace

QRect WindowPlace::first(const QRect& available) {
    const QSize room = available.size() - roomForFrame;
    QRect place({}, firstSize.boundedTo(room).expandedTo(least));
    place.moveCenter(available.center());
    return place;
}

bool WindowPlace::fills(const QRect& available) { return available.width() < leastWidthToShare; }

QRect WindowPlace::cut(const QRect& place, const QList<QRect>& available) {
    const QRect screen = *std::ranges::max_element(
        available, {}, [&place](const QRect& each) { return areaWithin(place, each); });
    QRect inside({}, place.size().boundedTo(screen.size()));
    inside.moveTo(std::clamp(place.x(), screen.left(), screen.right() + 1 - inside.width()),
                  std::clamp(place.y(), screen.top(), screen.bottom() + 1 - inside.height()));
    return inside;
}

} // namespace tavrin
