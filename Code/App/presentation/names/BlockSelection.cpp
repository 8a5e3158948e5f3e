#include "presentation/names/BlockSelection.h"

#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowColours.h"
#include "presentation/names/LinesEdit.h"
#include "shell/names/NameLines.h"
#include "support/text/DisplayText.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds scrollInterval(50);
constexpr int caretWidth = 2;
constexpr int widestCharacter = 2; // columns

std::u16string_view viewOf(const QString& text) {
    return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

int columnsOf(const QString& text) { return static_cast<int>(display::columns(viewOf(text))); }

std::optional<nameLines::Stretch> stretchOf(const QString& line, int from, int to) {
    return nameLines::stretchBetween(viewOf(line), static_cast<std::size_t>(from),
                                     static_cast<std::size_t>(to));
}

/// What lies in front of a column: the last character before it, which may take several.
LineBlock before(LineBlock block, const QString& line) {
    block.to = block.from;
    for (int columns = 1; columns <= std::min(widestCharacter, block.to); ++columns) {
        block.from = block.to - columns;
        if (!block.part(line).isEmpty())
            break;
    }
    return block;
}

} // namespace

// --- The rectangle ---

QString LineBlock::part(const QString& line) const {
    const auto stretch = stretchOf(line, from, to);
    return stretch ? line.mid(static_cast<qsizetype>(stretch->start), static_cast<qsizetype>(stretch->length))
                   : QString();
}

std::optional<QString> LineBlock::replaced(const QString& line, const QString& with) const {
    const auto stretch = stretchOf(line, from, to);
    if (!stretch || (stretch->length == 0 && with.isEmpty()))
        return std::nullopt;
    QString changed = line;
    changed.replace(static_cast<qsizetype>(stretch->start), static_cast<qsizetype>(stretch->length), with);
    return changed;
}

// --- Selecting ---

BlockSelection::BlockSelection(LinesEdit& owner) : edit(owner) {
    scrolling.setInterval(scrollInterval);
    connect(&scrolling, &QTimer::timeout, this, &BlockSelection::scrollOn);
    refresh.setSingleShot(true);
    refresh.setInterval(0);
    connect(&refresh, &QTimer::timeout, this, &BlockSelection::showParts);
}

LineBlock BlockSelection::block() const {
    const auto& [anchor, caret] = *corners;
    return {std::min(anchor.line, caret.line), std::max(anchor.line, caret.line),
            std::min(anchor.column, caret.column), std::max(anchor.column, caret.column)};
}

void BlockSelection::set(const Corners& changed) {
    const int former = corners ? block().lineCount() : 0;
    corners = changed;
    const Corner& caret = corners->caret;
    const QTextBlock line = edit.document()->findBlockByNumber(caret.line);
    const auto stretch = stretchOf(line.text(), caret.column, caret.column);
    QTextCursor cursor(line);
    cursor.setPosition(line.position() + (stretch ? static_cast<int>(stretch->start) : line.length() - 1));
    edit.setTextCursor(cursor);
    showParts();
    if (const int count = block().lineCount(); count != former && !drag)
        Spoken::say(tr("block of 1 line||block of %Ln lines", nullptr, count));
}

/// An empty block at a column, over the same lines.
void BlockSelection::setColumn(int column) {
    Corners changed = *corners;
    changed.anchor.column = changed.caret.column = column;
    set(changed);
}

void BlockSelection::end() {
    handleRelease();
    if (!std::exchange(corners, std::nullopt))
        return;
    edit.setExtraSelections({});
    edit.viewport()->update();
}

bool BlockSelection::handleKey(QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == (Qt::AltModifier | Qt::ShiftModifier) && extend(event.key()))
        return true;
    constexpr std::array modifierKeys{Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_AltGr,
                                      Qt::Key_Meta};
    if (!isOn() || std::ranges::find(modifierKeys, event.key()) != modifierKeys.end())
        return false;
    const bool isDeletion = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete;
    if (event.key() == Qt::Key_Escape) {
        end();
    } else if (event.matches(QKeySequence::Copy)) {
        edit.copy();
    } else if (event.matches(QKeySequence::Cut)) {
        edit.cut();
    } else if (event.matches(QKeySequence::Paste)) {
        edit.paste();
    } else if (isDeletion && block().from < block().to) {
        remove();
    } else if (isDeletion) {
        removeBeside(event.key() == Qt::Key_Delete);
    } else if (const QString typed = LinesEdit::typedText(event); !typed.isEmpty()) {
        insert(typed);
    } else {
        end();
        return false;
    }
    return true;
}

bool BlockSelection::extend(int key) {
    const QTextCursor cursor = edit.textCursor();
    Corners changed = corners.value_or(Corners{cornerOf(cursor.anchor()), cornerOf(cursor.position())});
    Corner& caret = changed.caret;
    const int page = std::max(1, edit.viewport()->height() / edit.fontMetrics().lineSpacing() - 1);
    if (key == Qt::Key_Left)
        --caret.column;
    else if (key == Qt::Key_Right)
        ++caret.column;
    else if (key == Qt::Key_Up || key == Qt::Key_PageUp)
        caret.line -= key == Qt::Key_Up ? 1 : page;
    else if (key == Qt::Key_Down || key == Qt::Key_PageDown)
        caret.line += key == Qt::Key_Down ? 1 : page;
    else if (key == Qt::Key_Home)
        caret.column = 0;
    else if (key == Qt::Key_End)
        caret.column = columnsOf(edit.line(caret.line));
    else
        return false;
    caret.line = std::clamp(caret.line, 0, edit.lineCount() - 1);
    caret.column = std::clamp(caret.column, 0, static_cast<int>(nameLines::longestLine));
    set(changed);
    return true;
}

bool BlockSelection::handlePress(const QMouseEvent& event) {
    const bool begins = event.button() == Qt::LeftButton && event.modifiers().testFlag(Qt::AltModifier);
    if (!begins) {
        if (event.button() != Qt::RightButton)
            end();
        return false;
    }
    drag = event.position().toPoint();
    set({cornerAt(*drag), cornerAt(*drag)});
    return true;
}

bool BlockSelection::handleMove(const QMouseEvent& event) {
    if (!drag)
        return false;
    drag = event.position().toPoint();
    set({corners->anchor, cornerAt(*drag)});
    if (drag->y() < 0 || drag->y() > edit.viewport()->height())
        scrolling.start();
    else
        scrolling.stop();
    return true;
}

bool BlockSelection::handleRelease() {
    scrolling.stop();
    return std::exchange(drag, std::nullopt).has_value();
}

void BlockSelection::scrollOn() {
    const int height = edit.viewport()->height();
    const int beyond = drag->y() < 0 ? drag->y() : drag->y() - height;
    QScrollBar* bar = edit.verticalScrollBar();
    bar->setValue(bar->value() + beyond / edit.fontMetrics().lineSpacing() + (beyond < 0 ? -1 : 1));
    set({corners->anchor, cornerAt({drag->x(), std::clamp(drag->y(), 0, height - 1)})});
}

/// Behind the end of a line there are columns too.
BlockSelection::Corner BlockSelection::cornerAt(QPoint place) const {
    QTextCursor cursor = edit.cursorForPosition(place);
    Corner corner = cornerOf(cursor.position());
    cursor.movePosition(QTextCursor::EndOfBlock);
    const int beyond = place.x() - edit.cursorRect(cursor).center().x();
    if (beyond <= 0)
        return corner;
    corner.column = columnsOf(cursor.block().text()) +
                    static_cast<int>(std::lround(beyond / QFontMetricsF(edit.font()).horizontalAdvance('0')));
    return corner;
}

BlockSelection::Corner BlockSelection::cornerOf(int position) const {
    const QTextBlock line = edit.document()->findBlock(position);
    return {line.blockNumber(), columnsOf(line.text().left(position - line.position()))};
}

// --- Editing ---

void BlockSelection::insert(const QString& text) {
    const LineBlock place = block();
    emit edit.changeWanted(place.firstLine, place.lastLine,
                           [place, text](int, const QString& line) { return place.replaced(line, text); });
    setColumn(place.from + columnsOf(text));
}

QString BlockSelection::text() const {
    const LineBlock place = block();
    QString parts;
    QTextBlock line = edit.document()->findBlockByNumber(place.firstLine);
    for (int number = place.firstLine; number <= place.lastLine; ++number, line = line.next()) {
        if (number > place.firstLine)
            parts += '\n';
        const QString whole = line.text();
        if (const auto stretch = stretchOf(whole, place.from, place.to))
            parts += QStringView(whole).mid(static_cast<qsizetype>(stretch->start),
                                            static_cast<qsizetype>(stretch->length));
    }
    return parts;
}

void BlockSelection::remove() { insert(QString()); }

void BlockSelection::removeBeside(bool forward) {
    const LineBlock place = block();
    const LineBlock here = before(place, edit.line(corners->caret.line));
    emit edit.changeWanted(place.firstLine, place.lastLine, [place, forward](int, const QString& line) {
        LineBlock gone = place;
        ++gone.to;
        return (forward ? gone : before(place, line)).replaced(line, {});
    });
    setColumn(forward ? place.from : here.from);
}

// --- Painting ---

void BlockSelection::viewChanged() {
    if (isOn())
        refresh.start();
}

/// Only lines in view: a block may reach over all there are.
void BlockSelection::forEachPart(const std::function<void(const QTextCursor&)>& visit) const {
    const LineBlock place = block();
    edit.forEachVisibleLine(edit.viewport()->rect(), [&](int number, const QRectF&) {
        if (number < place.firstLine || number > place.lastLine)
            return;
        const QTextBlock line = edit.document()->findBlockByNumber(number);
        const auto stretch = stretchOf(line.text(), place.from, place.to);
        if (!stretch)
            return;
        QTextCursor part(line);
        part.setPosition(line.position() + static_cast<int>(stretch->start));
        part.setPosition(part.position() + static_cast<int>(stretch->length), QTextCursor::KeepAnchor);
        visit(part);
    });
}

void BlockSelection::showParts() {
    if (!isOn())
        return;
    QList<QTextEdit::ExtraSelection> parts;
    QTextCharFormat format;
    format.setBackground(edit.palette().highlight());
    format.setForeground(edit.palette().highlightedText());
    forEachPart([&](const QTextCursor& part) {
        if (part.hasSelection())
            parts.append({part, format});
    });
    edit.setExtraSelections(parts);
    edit.viewport()->update();
}

void BlockSelection::paint(QPainter& painter) const {
    if (!isOn())
        return;
    const QColor colour = WindowColours::accentOf(edit.palette());
    forEachPart([&](const QTextCursor& part) {
        if (part.hasSelection())
            return;
        const QRect caret = edit.cursorRect(part);
        painter.fillRect(QRect(caret.center().x(), caret.top(), caretWidth, caret.height()), colour);
    });
}

} // namespace tavrin
