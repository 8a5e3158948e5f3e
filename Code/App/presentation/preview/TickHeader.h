#pragma once

#include <QHeaderView>

namespace tavrin {

/// The head of the list, with a box of three states over the column of ticks.
class TickHeader final : public QHeaderView {
    Q_OBJECT

  public:
    TickHeader(int tickSection, QWidget* parent);

    void setTicks(Qt::CheckState state);

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;

  private:
    int tickSection;
    Qt::CheckState ticks = Qt::Checked;
};

} // namespace tavrin
