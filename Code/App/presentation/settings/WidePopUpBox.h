#pragma once

#include <QAbstractItemView>
#include <QComboBox>
#include <QStyle>
#include <QStyleOptionComboBox>

namespace tavrin {

/// A box that may be narrower than its rows, whose list is as wide as the longest of them.
class WidePopUpBox : public QComboBox {
  public:
    void showPopup() override {
        constexpr int scrollBarAndMargins = 28;
        view()->setMinimumWidth(view()->sizeHintForColumn(0) + scrollBarAndMargins);
        QComboBox::showPopup();
    }

  protected:
    /// A text that is cut shows that it is.
    void initStyleOption(QStyleOptionComboBox* option) const override {
        QComboBox::initStyleOption(option);
        constexpr int margins = 6;
        const int room =
            style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this).width();
        option->currentText =
            option->fontMetrics.elidedText(option->currentText, Qt::ElideRight, room - margins);
    }
};

} // namespace tavrin
