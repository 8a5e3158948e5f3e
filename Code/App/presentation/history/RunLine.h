#pragma once

#include <QRect>
#include <QString>
#include <QStyle>

class QPainter;
class QStyleOptionViewItem;

namespace tavrin {

/// The measures of a line in the lists of the history, and the drawing that all of them share.
class RunLine {
  public:
    static constexpr int margin = 12;
    static constexpr int signSize = 16;
    static constexpr int textStart = margin + signSize + 10;

    RunLine(QPainter& itsPainter, const QStyleOptionViewItem& itsOption)
        : painter(itsPainter), option(itsOption) {}

    [[nodiscard]] static int heightOfHead(const QStyleOptionViewItem& option);
    [[nodiscard]] static int heightOfTwo(const QStyleOptionViewItem& option);

    void paintHead(const QString& text) const;
    /// The ground of a line that is chosen.
    void paintGround() const;
    /// One of its two lines of text; `taken` pixels at its end are another's.
    void paintText(int line, const QString& text, const QColor& colour, Qt::TextElideMode elide,
                   int taken = 0) const;
    /// The place of the sign in front of one of the two lines, as it is seen.
    [[nodiscard]] QRect placeOfSign(int line) const;
    void paintFocus() const;

  private:
    [[nodiscard]] QRect seen(const QRect& place) const;
    [[nodiscard]] int top(int line) const;

    QPainter& painter;
    const QStyleOptionViewItem& option;
};

} // namespace tavrin
