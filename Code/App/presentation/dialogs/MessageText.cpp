#include "presentation/dialogs/MessageText.h"

#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr int mostLines = 8;

} // namespace

MessageText::MessageText(int lines) : leastLines(lines) {
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(0);
    // It stands among the texts of its window and is no field.
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Qt::transparent);
    setPalette(colours);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MessageText::setText(const QString& text) {
    setPlainText(text);
    fitHeight();
}

QSize MessageText::sizeHint() const { return {QPlainTextEdit::sizeHint().width(), height()}; }

QSize MessageText::minimumSizeHint() const { return {80, fontMetrics().lineSpacing()}; }

void MessageText::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        fitHeight();
}

void MessageText::fitHeight() {
    // The layout of plain text counts its height in lines.
    const int lines = static_cast<int>(std::ceil(document()->size().height()));
    setFixedHeight(std::clamp(lines, leastLines, mostLines) * fontMetrics().lineSpacing() + 2);
}

} // namespace tavrin
