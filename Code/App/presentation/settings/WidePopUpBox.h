#pragma once

#include <QAbstractItemView>
#include <QComboBox>

namespace tavrin {

/// A box that may be narrower than its rows, whose list is as wide as the longest of them.
class WidePopUpBox : public QComboBox {
  public:
    void showPopup() override {
        constexpr int scrollBarAndMargins = 28;
        view()->setMinimumWidth(view()->sizeHintForColumn(0) + scrollBarAndMargins);
        QComboBox::showPopup();
    }
};

} // namespace tavrin
