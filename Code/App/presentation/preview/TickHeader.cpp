#include "presentation/preview/TickHeader.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

namespace tavrin {

TickHeader::TickHeader(int section, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), tickSection(section) {}

void TickHeader::setTicks(Qt::CheckState state) {
    if (state == ticks)
        return;
    ticks = state;
    viewport()->update();
}

void TickHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    painter->save();
    QHeaderView::paintSection(painter, rect, section);
    painter->restore();
    if (section != tickSection)
        return;
    QStyleOptionButton box;
    box.initFrom(this);
    box.state.setFlag(QStyle::State_HasFocus, false);
    box.state |= ticks == Qt::Checked     ? QStyle::State_On
                 : ticks == Qt::Unchecked ? QStyle::State_Off
                                          : QStyle::State_NoChange;
    box.rect = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &box, this);
    box.rect.moveCenter(rect.center());
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, this);
}

} // namespace tavrin
