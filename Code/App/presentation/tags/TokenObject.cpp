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
constexpr double padding = 6;

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

QSizeF TokenObject::intrinsicSize(QTextDocument* document, int, const QTextFormat& format) {
    const QFontMetricsF metrics(document->defaultFont());
    return {metrics.horizontalAdvance(labelOf(format)) + 2 * padding + 2, metrics.height() + 4};
}

void TokenObject::drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int,
                             const QTextFormat& format) {
    const WindowColours& colours = WindowColours::of(QApplication::palette());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colours.infoTint);
    painter->drawRoundedRect(rect.adjusted(1, 1, -1, -1), rect.height() / 2.5, rect.height() / 2.5);
    painter->setPen(colours.infoText);
    painter->setFont(document->defaultFont());
    painter->drawText(rect, Qt::AlignCenter, labelOf(format));
    painter->restore();
}

} // namespace tavrin
