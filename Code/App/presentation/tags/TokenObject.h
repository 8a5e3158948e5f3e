#pragma once

#include <QObject>
#include <QTextCharFormat>
#include <QTextObjectInterface>

class QTextCursor;

namespace tavrin {

/// A tag as one character of a document, drawn as a rounded token.
class TokenObject final : public QObject, public QTextObjectInterface {
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

  public:
    static constexpr int type = QTextFormat::UserObject + 1;

    explicit TokenObject(QObject* parent) : QObject(parent) {}

    [[nodiscard]] static QTextCharFormat formatFor(const QString& tag);
    [[nodiscard]] static QString tagOf(const QTextFormat& format);
    /// The selection with its tokens written out.
    [[nodiscard]] static QString plainText(const QTextCursor& selection);

    /// Where the text stands in the rectangle of a token.
    [[nodiscard]] static double baselineOf(const QRectF& rect, const QTextFormat& format);

    QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* document, int position,
                    const QTextFormat& format) override;
};

} // namespace tavrin
