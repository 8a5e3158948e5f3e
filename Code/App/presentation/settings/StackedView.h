#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

namespace tavrin {

/// Views on top of each other, as wide as the stack. One of them may take up the free height. Lies in a
/// scroll area that fits its widget to itself. The views belong to the stack until they are removed, and to
/// the caller then.
class StackedView final : public QWidget {
  public:
    explicit StackedView(QWidget* parent = nullptr);

    /// A view that is in the stack already stays where it is.
    void addViewAtBottom(QWidget* view);
    void addFlexiView(QWidget* view, std::int64_t withPreferredHeight);
    void removeView(QWidget* view);
    void removeAllViews();
    [[nodiscard]] const std::vector<QWidget*>& views() const { return stackedViews; }

    [[nodiscard]] QSize sizeHint() const override;
    /// How high it is follows from its width alone.
    [[nodiscard]] QSize minimumSizeHint() const override { return {sizeHint().width(), 0}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

  protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void stackChanged();
    void repositionStackedViews();
    [[nodiscard]] int heightOf(const QWidget& view, int width) const;

    std::vector<QWidget*> stackedViews; ///< from the top down
    QWidget* flexiView = nullptr;
    std::int64_t preferredFlexiViewHeight = 0;
};

} // namespace tavrin
