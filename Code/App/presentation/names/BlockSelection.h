#pragma once

#include <QObject>
#include <QPoint>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>

class QKeyEvent;
class QMouseEvent;
class QPainter;
class QTextCursor;

namespace tavrin {

class LinesEdit;

/// A rectangle over lines: the characters that begin in some columns, from `from` up to `to`, of the lines
/// from the first to the last. Lines that end before it have no part in it.
struct LineBlock {
    int firstLine = 0;
    int lastLine = 0;
    int from = 0;
    int to = 0;

    [[nodiscard]] int lineCount() const { return lastLine - firstLine + 1; }
    [[nodiscard]] QString part(const QString& line) const;
    /// The line with another text in the place of its part; absent where that changes nothing.
    [[nodiscard]] std::optional<QString> replaced(const QString& line, const QString& with) const;
};

/// A block that is selected in lines, by dragging with Alt or by Alt+Shift and the keys that move. What is
/// typed takes its place in every line; it is then a caret in all of them.
class BlockSelection final : public QObject {
    Q_OBJECT

  public:
    /// `owner` outlives it, and passes on its events before it goes by them.
    explicit BlockSelection(LinesEdit& owner);

    [[nodiscard]] bool isOn() const { return corners.has_value(); }
    [[nodiscard]] LineBlock block() const;
    void end();
    /// True for what is about a block and means nothing else.
    bool handleKey(QKeyEvent& event);
    bool handlePress(const QMouseEvent& event);
    bool handleMove(const QMouseEvent& event);
    bool handleRelease();

    void insert(const QString& text);
    [[nodiscard]] QString text() const;
    void remove();
    /// A caret where nothing of a line is selected; parts of lines are painted as selections are.
    void paint(QPainter& painter) const;
    /// What is in view has moved or changed.
    void viewChanged();

  private:
    struct Corner {
        int line = 0;
        int column = 0;
    };
    struct Corners {
        Corner anchor; ///< where it began
        Corner caret;
    };

    void set(const Corners& changed);
    void setColumn(int column);
    bool extend(int key);
    void removeBeside(bool forward);
    void showParts();
    void forEachPart(const std::function<void(const QTextCursor&)>& visit) const;
    [[nodiscard]] Corner cornerAt(QPoint place) const;
    [[nodiscard]] Corner cornerOf(int position) const;
    void scrollOn();

    LinesEdit& edit;
    std::optional<Corners> corners;
    std::optional<QPoint> drag; ///< where the mouse is, while it drags
    QTimer scrolling;           ///< while it does so above or below the lines
    QTimer refresh;
};

} // namespace tavrin
