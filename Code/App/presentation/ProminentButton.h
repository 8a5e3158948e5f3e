#pragma once

#include <QPushButton>

namespace tavrin {

/// The button of a window that does what the window is for. It has the colours of selections where the
/// palette is ours, else it is a button like any other.
class ProminentButton final : public QPushButton {
  public:
    explicit ProminentButton(const QString& label);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void applyColours();
};

} // namespace tavrin
