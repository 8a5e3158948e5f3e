#include "presentation/tags/TokenObject.h"

#include "presentation/WindowColours.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace tavrin {

namespace {

constexpr int tagProperty = QTextFormat::UserProperty + 1;
constexpr double padding = 7;
constexpr double overhang = 2; ///< of a token above and below its text

/// What stands on the token: the tag without its brackets.
QString labelOf(const QTextFormat& format) {
    const QString tag = TokenObject::tagOf(format);
    return tag.mid(1, tag.size() - 2);
}

} // namespace

QTextCharFormat TokenObject::formatFor(const QString& tag) {
    QTextCharFormat format;
    format.setObjectType(type);
    format.setProperty(tagProperty, tag);
    format.setVerticalAlignment(QTextCharFormat::AlignBaseline);
    format.setToolTip(tag.toHtmlEscaped());
    return format;
}

QString TokenObject::tagOf(const QTextFormat& format) { return format.property(tagProperty).toString(); }

QString TokenObject::plainText(const QTextCursor& selection) {
    QString text;
    const QTextBlock block = selection.document()->begin();
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        for (int i = 0; i < fragment.length(); ++i) {
            const int position = fragment.position() + i;
            if (position < selection.selectionStart() || position >= selection.selectionEnd())
                continue;
            text += fragment.charFormat().objectType() == type ? tagOf(fragment.charFormat())
                                                               : QString(fragment.text().at(i));
        }
    }
    return text;
}

QSizeF TokenObject::intrinsicSize(QTextDocument* document, int, const QTextFormat& format) {
    const QFontMetricsF metrics(document->defaultFont());
    return {metrics.horizontalAdvance(labelOf(format)) + 2 * padding + 2, metrics.height() + overhang};
}

void TokenObject::drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int,
                             const QTextFormat& format) {
    const QPalette palette = QApplication::palette();
    // The ground of a selection comes with the format.
    const bool isSelected = format.background().style() != Qt::NoBrush;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(WindowColours::accentOf(palette));
    painter->setBrush(isSelected ? palette.color(QPalette::Highlight) : WindowColours::chosenGround(palette));
    const QRectF token = rect.adjusted(1.5, 0.5, -1.5, overhang - 0.5);
    painter->drawRoundedRect(token, token.height() / 2, token.height() / 2);
    painter->setPen(palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(document->defaultFont());
    // On one line with the text beside it.
    const QFontMetricsF metrics(document->defaultFont());
    painter->drawText(QPointF(rect.left() + 1 + padding, rect.bottom() - metrics.descent()), labelOf(format));
    painter->restore();
}

} // namespace tavrin
