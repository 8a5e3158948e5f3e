#include "presentation/tags/PatternEditor.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "tags/TagLibraryHelper.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPalette>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>
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

namespace {

constexpr int mostLines = 4;
constexpr int lineDistance = 5; // between the tokens of two lines

/// The text line with tokens. A line feed has no place in a name.
class TokenEdit final : public QTextEdit {
  public:
    TokenEdit() {
        setAcceptRichText(false);
        setTabChangesFocus(true);
        setLineWrapMode(QTextEdit::WidgetWidth);
        setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        document()->documentLayout()->registerHandler(TokenObject::type, new TokenObject(this));
        setPlaceholderText(PatternEditor::tr("Type text, and add tags from the list below"));
        setFixedHeight(fontMetrics().lineSpacing() * 2 + 24);
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            event->ignore();
        else
            QTextEdit::keyPressEvent(event);
    }

    void insertFromMimeData(const QMimeData* source) override {
        QString text = source->text();
        // The place that a token holds means nothing without its tag.
        text.remove(QChar::ObjectReplacementCharacter);
        textCursor().insertText(text.replace('\n', ' '), QTextCharFormat());
    }

    QMimeData* createMimeDataFromSelection() const override {
        auto* content = new QMimeData;
        content->setText(TokenObject::plainText(textCursor()));
        return content;
    }

    [[nodiscard]] bool canInsertFromMimeData(const QMimeData* source) const override {
        return source->hasText();
    }
};

} // namespace

PatternEditor::PatternEditor(const std::string& key, BaseRenameAction& action)
    : edit(new TokenEdit), logic(TagLibraryHelper::sharedInstance()),
      binding(action, key, [this](const std::optional<PropertyValue>& value) {
          show(value ? textValue(*value) : std::u16string());
      }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit);
    edit->setObjectName("patternField");
    edit->setAccessibleName(tr("Tag pattern"));
    setFocusProxy(edit);
    connect(edit, &QTextEdit::textChanged, this, &PatternEditor::textChanged);
}

MixedTokenFieldLogic::Tokens PatternEditor::value() const {
    MixedTokenFieldLogic::Tokens tokens;
    std::u16string plain;
    const auto flush = [&] {
        if (!plain.empty())
            tokens.push_back(std::exchange(plain, {}));
    };
    const QTextBlock block = edit->document()->begin();
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        if (fragment.charFormat().objectType() != TokenObject::type) {
            plain += fromQString(fragment.text());
            continue;
        }
        flush();
        // Equal tokens side by side are one fragment.
        for (int i = 0; i < fragment.length(); ++i)
            tokens.push_back(fromQString(TokenObject::tagOf(fragment.charFormat())));
    }
    flush();
    return tokens;
}

void PatternEditor::show(const std::u16string& pattern) {
    if (StringToTokenArrayTransformer::reverseTransformedValue(value()) == pattern)
        return;
    setValue(
        StringToTokenArrayTransformer::transformedValue(pattern).value_or(MixedTokenFieldLogic::Tokens()),
        -1);
}

void PatternEditor::setValue(const MixedTokenFieldLogic::Tokens& tokens, int cursorPosition) {
    const QSignalBlocker blocker(edit);
    edit->clear();
    QTextCursor cursor(edit->document());
    QTextBlockFormat lines;
    lines.setLineHeight(lineDistance, QTextBlockFormat::LineDistanceHeight);
    cursor.setBlockFormat(lines);
    for (const std::u16string& token : tokens) {
        if (logic.isToken(token))
            cursor.insertText(QString(QChar::ObjectReplacementCharacter),
                              TokenObject::formatFor(toQString(token)));
        else
            cursor.insertText(toQString(token), QTextCharFormat());
    }
    const int last = edit->document()->characterCount() - 1;
    cursor.setPosition(cursorPosition < 0 ? last : std::min(cursorPosition, last));
    edit->setTextCursor(cursor);
    edit->setCurrentCharFormat(QTextCharFormat());
    fitHeight();
}

void PatternEditor::textChanged() {
    const int position = edit->textCursor().position();
    const MixedTokenFieldLogic::Tokens present = value();
    if (const auto changed = logic.controlTextDidChange(present, static_cast<std::size_t>(position))) {
        // What became a token shrank to one position.
        const auto lengthOf = [this](const MixedTokenFieldLogic::Tokens& tokens) {
            int length = 0;
            for (const std::u16string& token : tokens)
                length += logic.isToken(token) ? 1 : static_cast<int>(token.size());
            return length;
        };
        setValue(*changed, position + lengthOf(*changed) - lengthOf(present));
    }
    edit->setCurrentCharFormat(QTextCharFormat());
    fitHeight();
    binding.write(StringToTokenArrayTransformer::reverseTransformedValue(value()));
}

void PatternEditor::fitHeight() {
    const int line = edit->fontMetrics().lineSpacing() + lineDistance + 2;
    const int wanted = static_cast<int>(edit->document()->size().height()) + 2 * edit->frameWidth();
    edit->setFixedHeight(std::clamp(wanted, line + 12, mostLines * line + 12));
}

void PatternEditor::insert(const QString& text) {
    edit->textCursor().insertText(text, QTextCharFormat());
    edit->setFocus();
}

} // namespace tavrin
