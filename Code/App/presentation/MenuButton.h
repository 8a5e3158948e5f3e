#pragma once

#include <QStyleOptionToolButton>
#include <QToolButton>

namespace tavrin {

/// A button whose arrow says that it opens a menu; the style's own mark would be a second one.
class MenuButton final : public QToolButton {
  protected:
    void initStyleOption(QStyleOptionToolButton* option) const override {
        QToolButton::initStyleOption(option);
        option->features.setFlag(QStyleOptionToolButton::HasMenu, false);
    }
};

} // namespace tavrin
