#pragma once

#include "presentation/names/BlockSelection.h"

#include <QPlainTextEdit>
#include <QStringList>
#include <functional>
#include <optional>

namespace tavrin {

enum class Glyph;

/// A field of text with a fixed number of lines, each of which stands for an item of a list. No key, paste,
/// drop or input method makes a line or takes one away. Beside the lines stand their numbers, what they stand
/// for and a sign; behind their ends, painted and no part of the text, what is to be said about them.
///
/// It keeps no history of its own: what an edit means outlives the text, and is taken back there.
class LinesEdit final : public QPlainTextEdit {
    Q_OBJECT

  public:
    struct Line {
        QString item; ///< what it stands for
        Glyph glyph;
        QColor glyphColour;
        QString note;
        bool isBad = false; ///< the note is a problem
    };
    /// What becomes of a line; absent where nothing does.
    using Change = std::function<std::optional<QString>(int line, const QString& text)>;
    /// Asked for each line that is painted.
    using Describe = std::function<Line(int line)>;

    explicit LinesEdit(Describe describeLine);
    ~LinesEdit() override;

    /// Lines that can't be edited; asked when an edit would change one.
    void setIsLocked(std::function<bool(int line)> lockedTest) { isLocked = std::move(lockedTest); }
    /// The same number of lines with other texts from `first` on, not as an edit of the user's. They hold no
    /// ends of lines.
    void putLines(int first, const QStringList& texts);
    /// Other lines altogether, as many as are given.
    void restart(const QStringList& texts);
    /// More of them at the end, after `restart`.
    void append(const QStringList& texts);
    [[nodiscard]] QString line(int number) const;
    [[nodiscard]] int lineCount() const;
    [[nodiscard]] int currentLine() const { return textCursor().blockNumber(); }
    /// The first and the last line of the selection, or that of the caret.
    [[nodiscard]] std::pair<int, int> selectedLines() const;
    /// Brings the caret there and into view, with a stretch of the line selected.
    void goTo(int line, int start = 0, int length = 0);
    /// Descriptions have changed.
    void refresh();
    void endBlock() { block.end(); }
    /// Calls with the number and the place of each line that can be seen.
    void forEachVisibleLine(const QRect& dirty, const std::function<void(int, const QRectF&)>& visit) const;
    /// What a key puts into a text; empty for one that means something else.
    [[nodiscard]] static QString typedText(const QKeyEvent& event);

    /// In pixels; dragged at its edge.
    [[nodiscard]] int itemWidth() const { return widthOfItems; }
    void setItemWidth(int width);

  public slots:
    // In place of those of the base class, which know of no fixed lines.
    void cut();
    void copy();
    void paste();
    void selectAll();
    void undo() { emit undoWanted(); }
    void redo() { emit redoWanted(); }

  signals:
    /// The user has changed these lines.
    void edited(int first, int last);
    /// A text of several lines is to take the place of as many from here on. Nothing has been changed yet.
    void linesPasted(int first, const QString& text);
    /// A text that was pasted has lost what no line can hold.
    void pastedInPart();
    /// As `linesPasted`, for the parts of lines that a block covers.
    void blockPasted(const tavrin::LineBlock& block, const QString& text);
    /// Each of these lines is to become what this makes of it. Nothing has been changed yet.
    void changeWanted(int first, int last, const tavrin::LinesEdit::Change& change);
    void itemWidthChanged(int width);
    void undoWanted();
    void redoWanted();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    class Gutter;

    /// False, with a beep, where the caret's line or the selection can't be edited.
    bool prepareEdit();
    void clearSelection();
    bool handleDeletion(QKeyEvent& event);
    void removeStretch(QTextCursor::MoveOperation towards);
    void moveToLine(int line);
    void noteChange(int position, int added);
    void arrangeGutter();
    void paintGutter(QPainter& painter, const QRect& dirty) const;

    Describe describe;
    std::function<bool(int)> isLocked = [](int) { return false; };
    Gutter* gutter;
    BlockSelection block;
    int widthOfItems = 170;
    bool isPutting = false;
};

} // namespace tavrin
