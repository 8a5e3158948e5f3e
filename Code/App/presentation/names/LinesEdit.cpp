#include "presentation/names/LinesEdit.h"

#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "shell/names/NameLines.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int gap = 8;
constexpr int signSize = 16;
constexpr int leastItemWidth = 40;
constexpr int mostItemWidth = 600;

/// Of a stretch of whole lines.
QTextCursor over(QTextDocument& document, int first, int last) {
    QTextCursor cursor(document.findBlockByNumber(first));
    const QTextBlock end = document.findBlockByNumber(last);
    cursor.setPosition(end.position() + end.length() - 1, QTextCursor::KeepAnchor);
    return cursor;
}

} // namespace

// --- Beside the lines ---

class LinesEdit::Gutter final : public QWidget {
  public:
    explicit Gutter(LinesEdit& owner) : QWidget(&owner), edit(owner) {
        setObjectName("textPageGutter");
        setMouseTracking(true);
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.fillRect(event->rect(), palette().color(QPalette::Window));
        edit.paintGutter(painter, event->rect());
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        const int x = event->position().toPoint().x();
        const int fromEdge = isRightToLeft() ? x : width() - x;
        if (dragStart)
            edit.setItemWidth(*dragStart - fromEdge);
        else
            setCursor(isAtEdge(fromEdge) ? Qt::SplitHCursor : Qt::ArrowCursor);
    }
    void mousePressEvent(QMouseEvent* event) override {
        const int x = event->position().toPoint().x();
        const int fromEdge = isRightToLeft() ? x : width() - x;
        if (isAtEdge(fromEdge))
            dragStart = edit.itemWidth() + fromEdge;
        else
            edit.goTo(edit.cursorForPosition({0, event->position().toPoint().y()}).blockNumber());
    }
    void mouseReleaseEvent(QMouseEvent*) override {
        if (dragStart)
            emit edit.itemWidthChanged(edit.itemWidth());
        dragStart.reset();
    }
    void wheelEvent(QWheelEvent* event) override { QApplication::sendEvent(edit.viewport(), event); }

  private:
    [[nodiscard]] static bool isAtEdge(int fromEdge) { return fromEdge < 5; }

    LinesEdit& edit;
    std::optional<int> dragStart;
};

// --- Making ---

LinesEdit::LinesEdit(Describe describeLine)
    : describe(std::move(describeLine)), gutter(new Gutter(*this)), block(*this) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(NoWrap);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setAcceptDrops(false);
    setFrameShape(QFrame::NoFrame);
    QTextOption option = document()->defaultTextOption();
    option.setTextDirection(Qt::LeftToRight);
    document()->setDefaultTextOption(option);
    connect(document(), &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { noteChange(position, added); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy != 0)
            gutter->scroll(0, dy);
        else
            gutter->update(0, rect.y(), gutter->width(), rect.height());
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &LinesEdit::refresh);
    connect(document(), &QTextDocument::contentsChanged, &block, &BlockSelection::viewChanged);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, &block, &BlockSelection::viewChanged);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &LinesEdit::arrangeGutter);
    arrangeGutter();
}

LinesEdit::~LinesEdit() { disconnect(document(), nullptr, this, nullptr); }

// --- Lines ---

void LinesEdit::putLines(int first, const QStringList& texts) {
    if (texts.isEmpty())
        return;
    const int last = first + static_cast<int>(texts.size()) - 1;
    const int caretLine = currentLine();
    const int column = textCursor().positionInBlock();
    isPutting = true;
    over(*document(), first, last).insertText(texts.join('\n'));
    isPutting = false;
    if (caretLine >= first && caretLine <= last) {
        QTextCursor caret(document()->findBlockByNumber(caretLine));
        caret.setPosition(caret.position() + std::min(column, caret.block().length() - 1));
        setTextCursor(caret);
    }
}

void LinesEdit::restart(const QStringList& texts) {
    block.end();
    isPutting = true;
    setPlainText(texts.join('\n'));
    isPutting = false;
}

void LinesEdit::append(const QStringList& texts) {
    if (texts.isEmpty())
        return;
    isPutting = true;
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText('\n' + texts.join('\n'));
    isPutting = false;
}

QString LinesEdit::line(int number) const { return document()->findBlockByNumber(number).text(); }

int LinesEdit::lineCount() const { return document()->blockCount(); }

std::pair<int, int> LinesEdit::selectedLines() const {
    const QTextCursor cursor = textCursor();
    return {document()->findBlock(cursor.selectionStart()).blockNumber(),
            document()->findBlock(cursor.selectionEnd()).blockNumber()};
}

void LinesEdit::goTo(int line, int start, int length) {
    const QTextBlock place = document()->findBlockByNumber(line);
    if (!place.isValid())
        return;
    block.end();
    QTextCursor cursor(place);
    const int end = place.length() - 1;
    cursor.setPosition(place.position() + std::min(start, end));
    cursor.setPosition(place.position() + std::min(start + length, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    centerCursor();
}

void LinesEdit::refresh() {
    viewport()->update();
    gutter->update();
}

void LinesEdit::noteChange(int position, int added) {
    if (!isPutting)
        emit edited(document()->findBlock(position).blockNumber(),
                    document()->findBlock(position + added).blockNumber());
}

// --- Editing ---

bool LinesEdit::prepareEdit() {
    const auto [first, last] = selectedLines();
    if (isReadOnly() || (first == last && isLocked(first))) {
        QApplication::beep();
        return false;
    }
    if (first == last)
        return true;
    clearSelection();
    QTextCursor caret = textCursor();
    caret.setPosition(caret.selectionStart());
    setTextCursor(caret);
    return !isReadOnly() && !isLocked(first);
}

/// Of each line that the selection touches what is selected goes.
void LinesEdit::clearSelection() {
    const QTextCursor caret = textCursor();
    const auto [first, last] = selectedLines();
    const int start = caret.selectionStart() - document()->findBlockByNumber(first).position();
    const int end = caret.selectionEnd() - document()->findBlockByNumber(last).position();
    emit changeWanted(first, last, [=, first = first, last = last](int line, const QString& text) {
        const int from = line == first ? start : 0;
        const auto to = line == last ? end : static_cast<int>(text.size());
        return std::optional(text.left(from) + text.mid(to));
    });
}

/// Fields of text claim keys that mean something to them; these mean what they do all over the window.
bool LinesEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        for (const auto standard : {QKeySequence::Undo, QKeySequence::Redo})
            if (key.matches(standard)) {
                event->ignore();
                return true;
            }
    }
    return QPlainTextEdit::event(event);
}

void LinesEdit::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isUpOrDown = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (block.handleKey(*event)) {
        event->accept();
    } else if (event->modifiers().testFlag(Qt::ControlModifier) && (isReturn || isUpOrDown)) {
        event->ignore(); // means something to the page, or the window
    } else if (event->matches(QKeySequence::Undo)) {
        undo();
    } else if (event->matches(QKeySequence::Redo)) {
        redo();
    } else if (isReturn || event->matches(QKeySequence::InsertLineSeparator)) {
        moveToLine(currentLine() + 1);
    } else if (event->matches(QKeySequence::Cut)) {
        cut();
    } else if (event->matches(QKeySequence::Paste)) {
        paste();
    } else if (handleDeletion(*event)) {
        event->accept();
    } else {
        if (event->text() == "\t")
            event->ignore();
        else if (typedText(*event).isEmpty() || prepareEdit())
            QPlainTextEdit::keyPressEvent(event);
    }
}

QString LinesEdit::typedText(const QKeyEvent& event) {
    const QString text = event.text();
    const bool isControl = !text.isEmpty() && text.front().category() == QChar::Other_Control;
    return isControl || event.modifiers() == Qt::ControlModifier ? QString() : text;
}

/// A text that is selected can't be dragged: where it goes elsewhere, its lines would go from here.
void LinesEdit::mousePressEvent(QMouseEvent* event) {
    if (block.handlePress(*event))
        return;
    const QTextCursor caret = textCursor();
    const int place = cursorForPosition(event->position().toPoint()).position();
    const bool isSelected = place >= caret.selectionStart() && place <= caret.selectionEnd();
    if (event->button() == Qt::LeftButton && caret.hasSelection() && isSelected &&
        !event->modifiers().testFlag(Qt::ShiftModifier))
        setTextCursor(cursorForPosition(event->position().toPoint()));
    QPlainTextEdit::mousePressEvent(event);
}

void LinesEdit::mouseMoveEvent(QMouseEvent* event) {
    if (!block.handleMove(*event))
        QPlainTextEdit::mouseMoveEvent(event);
}

void LinesEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (!block.handleRelease())
        QPlainTextEdit::mouseReleaseEvent(event);
}

bool LinesEdit::handleDeletion(QKeyEvent& event) {
    struct Deletion {
        QKeySequence::StandardKey key;
        QTextCursor::MoveOperation towards;
    };
    static constexpr std::array deletions{
        Deletion{QKeySequence::Backspace, QTextCursor::PreviousCharacter},
        Deletion{QKeySequence::DeleteStartOfWord, QTextCursor::PreviousWord},
        Deletion{QKeySequence::Delete, QTextCursor::NextCharacter},
        Deletion{QKeySequence::DeleteEndOfWord, QTextCursor::NextWord},
        Deletion{QKeySequence::DeleteEndOfLine, QTextCursor::EndOfBlock},
        Deletion{QKeySequence::DeleteCompleteLine, QTextCursor::NoMove},
    };
    const bool isBackspace = event.key() == Qt::Key_Backspace && !(event.modifiers() & ~Qt::ShiftModifier);
    const auto found = std::ranges::find_if(deletions, [&](const Deletion& each) {
        return event.matches(each.key) || (isBackspace && each.key == QKeySequence::Backspace);
    });
    if (found == deletions.end())
        return false;
    const auto [first, last] = selectedLines();
    if (!prepareEdit() || first != last)
        return true;
    if (textCursor().hasSelection())
        textCursor().removeSelectedText();
    else
        removeStretch(found->towards);
    return true;
}

/// Up to the ends of the line and no further.
void LinesEdit::removeStretch(QTextCursor::MoveOperation towards) {
    QTextCursor cursor = textCursor();
    const QTextBlock line = cursor.block();
    const int start = line.position();
    const int end = start + line.length() - 1;
    if (towards == QTextCursor::NoMove) {
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
    } else {
        cursor.movePosition(towards, QTextCursor::KeepAnchor);
        cursor.setPosition(std::clamp(cursor.position(), start, end), QTextCursor::KeepAnchor);
    }
    cursor.removeSelectedText();
}

void LinesEdit::moveToLine(int line) {
    const QTextBlock place = document()->findBlockByNumber(line);
    if (place.isValid())
        setTextCursor(QTextCursor(place));
}

void LinesEdit::inputMethodEvent(QInputMethodEvent* event) {
    const bool changes = !event->commitString().isEmpty() || !event->preeditString().isEmpty();
    if (block.isOn() && !event->commitString().isEmpty())
        block.insert(event->commitString());
    else if (!changes || (!block.isOn() && prepareEdit()))
        QPlainTextEdit::inputMethodEvent(event);
}

void LinesEdit::copy() {
    if (block.isOn())
        QGuiApplication::clipboard()->setText(block.text());
    else
        QPlainTextEdit::copy();
}

void LinesEdit::selectAll() {
    block.end();
    QPlainTextEdit::selectAll();
}

void LinesEdit::cut() {
    if (block.isOn()) {
        copy();
        block.remove();
        return;
    }
    if (!textCursor().hasSelection())
        return;
    copy();
    const auto [first, last] = selectedLines();
    if (prepareEdit() && first == last)
        textCursor().removeSelectedText();
}

void LinesEdit::paste() {
    if (const QMimeData* content = QGuiApplication::clipboard()->mimeData())
        insertFromMimeData(content);
}

bool LinesEdit::canInsertFromMimeData(const QMimeData* source) const { return source->hasText(); }

void LinesEdit::insertFromMimeData(const QMimeData* source) {
    const QString text = source->text();
    const auto [first, last] = selectedLines();
    constexpr auto longest = static_cast<qsizetype>(nameLines::longestLine);
    if (text.isEmpty() || (isReadOnly() && !block.isOn())) {
        return;
    } else if (block.isOn()) {
        emit blockPasted(block.block(), text);
        return;
    } else if (first != last || text.size() > 2 * longest) {
        emit linesPasted(first, text);
        return;
    }
    const nameLines::Pasted single = nameLines::pasted(
        {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())}, 1);
    if (single.count != 1) {
        emit linesPasted(first, text);
    } else if (prepareEdit()) {
        QTextCursor caret = textCursor();
        const QString added = toQString(single.lines.front());
        const int start = caret.selectionStart() - caret.block().position();
        const int end = caret.selectionEnd() - caret.block().position();
        if (single.changed > 0)
            emit pastedInPart();
        if (caret.block().length() + added.size() <= longest)
            caret.insertText(added);
        else // whoever may refuse it
            emit changeWanted(first, first, [=](int, const QString& whole) {
                return std::optional(whole.left(start) + added + whole.mid(end));
            });
    }
}

void LinesEdit::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool hasSelection = textCursor().hasSelection() || block.isOn();
    menu->addAction(tr("Cu&t"), this, &LinesEdit::cut)->setEnabled(hasSelection);
    menu->addAction(tr("&Copy"), this, &LinesEdit::copy)->setEnabled(hasSelection);
    menu->addAction(tr("&Paste"), this, &LinesEdit::paste)->setEnabled(canPaste());
    menu->addSeparator();
    menu->addAction(tr("Select &All"), this, &LinesEdit::selectAll);
    menu->popup(event->globalPos());
}

// --- Painting ---

void LinesEdit::forEachVisibleLine(const QRect& dirty,
                                   const std::function<void(int, const QRectF&)>& visit) const {
    QTextBlock line = firstVisibleBlock();
    QRectF place = blockBoundingGeometry(line).translated(contentOffset());
    while (line.isValid() && place.top() <= dirty.bottom()) {
        if (place.bottom() >= dirty.top())
            visit(line.blockNumber(), place);
        line = line.next();
        place = QRectF(place.left(), place.bottom(), place.width(), blockBoundingRect(line).height());
    }
}

void LinesEdit::paintEvent(QPaintEvent* event) {
    const WindowColours& colours = WindowColours::of(palette());
    {
        QPainter painter(viewport());
        forEachVisibleLine(event->rect(), [&](int number, const QRectF& place) {
            const QRectF whole(0, place.top(), viewport()->width(), place.height());
            if (describe(number).isBad)
                painter.fillRect(whole, colours.errorTint);
            else if (number == currentLine())
                painter.fillRect(whole, WindowColours::chosenGround(palette()));
        });
    }
    QPlainTextEdit::paintEvent(event);
    QPainter painter(viewport());
    painter.setFont(QApplication::font());
    forEachVisibleLine(event->rect(), [&](int number, const QRectF& place) {
        const Line told = describe(number);
        if (told.note.isEmpty())
            return;
        const double end =
            place.left() + document()->documentMargin() + fontMetrics().horizontalAdvance(line(number));
        painter.setPen(told.isBad ? colours.errorText : palette().color(QPalette::PlaceholderText));
        painter.drawText(QRectF(end + 2.0 * gap, place.top(), viewport()->width(), place.height()),
                         Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine,
                         told.note);
    });
    block.paint(painter);
}

void LinesEdit::paintGutter(QPainter& painter, const QRect& dirty) const {
    const QFontMetrics metrics(QApplication::font());
    painter.setFont(QApplication::font());
    const int width = gutter->width();
    const int numberWidth = width - widthOfItems - signSize - 4 * gap;
    forEachVisibleLine(dirty, [&](int number, const QRectF& place) {
        const Line told = describe(number);
        const QRect row(0, static_cast<int>(place.top()), width, static_cast<int>(place.height()));
        if (number == currentLine())
            painter.fillRect(row, WindowColours::chosenGround(palette()));
        const auto cell = [&](int left, int cellWidth) {
            return QStyle::visualRect(layoutDirection(), row,
                                      QRect(left, row.top(), cellWidth, row.height()));
        };
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(cell(gap, numberWidth), Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                         locale().toString(number + 1));
        painter.drawText(cell(numberWidth + 2 * gap, widthOfItems),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextForceLeftToRight,
                         metrics.elidedText(told.item, Qt::ElideMiddle, widthOfItems));
        GlyphIcon::paint(painter, cell(width - signSize - gap, signSize), told.glyph, told.glyphColour,
                         isRightToLeft());
    });
    painter.setPen(palette().color(QPalette::Mid));
    const int edge = isRightToLeft() ? 0 : width - 1;
    painter.drawLine(edge, dirty.top(), edge, dirty.bottom());
}

void LinesEdit::setItemWidth(int width) {
    widthOfItems = std::clamp(width, leastItemWidth, mostItemWidth);
    arrangeGutter();
}

void LinesEdit::arrangeGutter() {
    const int digits = static_cast<int>(QString::number(std::max(100, lineCount())).size());
    const QFontMetrics metrics(QApplication::font());
    const int width = digits * metrics.horizontalAdvance('0') + metrics.horizontalAdvance(',') +
                      widthOfItems + signSize + 4 * gap;
    const QRect room = contentsRect();
    if (isRightToLeft())
        setViewportMargins(0, 0, width, 0);
    else
        setViewportMargins(width, 0, 0, 0);
    gutter->setGeometry(isRightToLeft() ? viewport()->geometry().right() + 1 : room.left(), room.top(), width,
                        viewport()->height());
    gutter->update();
}

void LinesEdit::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    arrangeGutter();
    block.viewChanged();
}

void LinesEdit::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        block.viewChanged();
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::ApplicationFontChange) {
        setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        arrangeGutter();
    }
}

} // namespace tavrin
