#pragma once

#include "presentation/settings/ParameterBinding.h"
#include "tags/MixedTokenFieldLogic.h"

#include <QObject>
#include <QTextCharFormat>
#include <QTextObjectInterface>
#include <QWidget>
#include <string>

class QTextCursor;
class QTextEdit;

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

class BaseRenameAction;

/// A field that mixes text and tags, of up to four lines. Each tag of the library shows as a rounded token
/// and counts as one position of the cursor. Object name: the key of the parameter.
class PatternEditor final : public QWidget {
    Q_OBJECT

  public:
    PatternEditor(const std::string& key, BaseRenameAction& action);

    /// Puts a text (a tag, say) in at the cursor.
    void insert(const QString& text);

  private:
    /// The entries of the field, and where the cursor is, a token counting for one.
    [[nodiscard]] MixedTokenFieldLogic::Tokens value() const;
    void show(const std::u16string& pattern);
    /// A cursor position of -1 stands for the end.
    void setValue(const MixedTokenFieldLogic::Tokens& tokens, int cursorPosition);
    void textChanged();
    void fitHeight();

    QTextEdit* edit;
    MixedTokenFieldLogic logic;
    ParameterBinding binding;
};

} // namespace tavrin
