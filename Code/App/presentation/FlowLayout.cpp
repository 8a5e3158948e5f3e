#include "presentation/FlowLayout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace tavrin {

FlowLayout::~FlowLayout() { qDeleteAll(items); }

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    QLayoutItem* item = itemAt(index);
    if (item)
        items.erase(items.begin() + index);
    return item;
}

QSize FlowLayout::sizeHint() const {
    QSize size(0, 0);
    for (const QLayoutItem* item : items)
        if (!item->isEmpty())
            size = {size.width() + (size.width() > 0 ? gap : 0) + item->sizeHint().width(),
                    std::max(size.height(), item->sizeHint().height())};
    return size;
}

QSize FlowLayout::minimumSize() const {
    QSize size(0, 0);
    for (const QLayoutItem* item : items)
        size = size.expandedTo(item->minimumSize());
    return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    (void)place(rect, true);
}

int FlowLayout::place(const QRect& rect, bool moves) const {
    const Qt::LayoutDirection direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    int x = 0;
    int y = 0;
    int lineHeight = 0;
    for (QLayoutItem* item : items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint().boundedTo({std::max(rect.width(), 1), QLAYOUTSIZE_MAX});
        if (x > 0 && x + size.width() > rect.width()) {
            x = 0;
            y += lineHeight + gap;
            lineHeight = 0;
        }
        if (moves)
            item->setGeometry(
                QStyle::visualRect(direction, rect, QRect(rect.topLeft() + QPoint(x, y), size)));
        x += size.width() + gap;
        lineHeight = std::max(lineHeight, size.height());
    }
    return y + lineHeight;
}

} // namespace tavrin
