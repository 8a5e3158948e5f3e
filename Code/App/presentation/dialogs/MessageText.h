#pragma once

#include <QPlainTextEdit>

namespace tavrin {

/// A message to be read and copied, by mouse or keyboard: it wraps, also within a name that is longer than a
/// line, is as high as its text, and scrolls where that has too many lines.
class MessageText final : public QPlainTextEdit {
  public:
    /// `lines` are kept free for it at least.
    explicit MessageText(int lines = 1);

    void setText(const QString& text);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fitHeight();

    const int leastLines;
};

} // namespace tavrin
