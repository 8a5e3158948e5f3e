#include "presentation/tags/TokenObject.h"

#include "presentation/WindowColours.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <cmath>

namespace tavrin {

namespace {

constexpr int tagProperty = QTextFormat::UserProperty + 1;
constexpr double padding = 7;
constexpr double overhang = 1; ///< of a token above and below its text

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
    format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
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

/// Text documents put the middle of such an object on half the height of small letters.
double TokenObject::baselineOf(const QRectF& rect, const QTextFormat& format) {
    const double halfSmallLetter = QFontMetrics(format.toCharFormat().font()).xHeight() / 2.0;
    return rect.bottom() - (rect.height() - halfSmallLetter) / 2;
}

QSizeF TokenObject::intrinsicSize(QTextDocument* document, int, const QTextFormat& format) {
    const QFontMetricsF metrics(document->defaultFont());
    return {metrics.horizontalAdvance(labelOf(format)) + 2 * padding + 2, metrics.height() + 2 * overhang};
}

void TokenObject::drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int,
                             const QTextFormat& format) {
    const QPalette palette = QApplication::palette();
    const QFontMetricsF metrics(document->defaultFont());
    const double baseline = baselineOf(rect, format);
    const QRectF token(rect.left() + 1.5, std::floor(baseline - metrics.ascent() - overhang) + 0.5,
                       rect.width() - 3, std::ceil(metrics.height()) + 2 * overhang - 1);
    // The ground of a selection comes with the format.
    const bool isSelected = format.background().style() != Qt::NoBrush;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(WindowColours::accentOf(palette));
    painter->setBrush(isSelected ? palette.color(QPalette::Highlight) : WindowColours::chosenGround(palette));
    painter->drawRoundedRect(token, token.height() / 2, token.height() / 2);
    painter->setPen(palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(document->defaultFont());
    // On one line with the text beside it.
    painter->drawText(QPointF(rect.left() + 1 + padding, baseline), labelOf(format));
    painter->restore();
}

} // namespace tavrin
