#pragma once

#include <QPlainTextEdit>

namespace tavrin {

/// A message to be read and copied, by mouse or keyboard: it wraps, also within a name that is longer than a
/// line, is as high as its text, and scrolls where that has too many lines.
class MessageText final : public QPlainTextEdit {
  public:
    explicit MessageText(QWidget* parent = nullptr);

    void setText(const QString& text);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fitHeight();
};

} // namespace tavrin
