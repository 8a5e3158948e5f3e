#pragma once

#include <QLayout>
#include <vector>

namespace tavrin {

/// Puts its items side by side along the line of reading, and what no longer fits into further lines.
class FlowLayout final : public QLayout {
  public:
    explicit FlowLayout(int spaceBetween) : gap(spaceBetween) { setContentsMargins(0, 0, 0, 0); }
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { items.push_back(item); }
    [[nodiscard]] int count() const override { return static_cast<int>(items.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override { return place({0, 0, width, 0}, false); }
    /// All in one line.
    [[nodiscard]] QSize sizeHint() const override;
    /// The widest item alone.
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

  private:
    /// The height that is needed.
    int place(const QRect& rect, bool moves) const;

    int gap;
    std::vector<QLayoutItem*> items; ///< owned
};

} // namespace tavrin
