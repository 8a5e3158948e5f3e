#include "presentation/tags/PatternEditor.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/tags/TokenObject.h"
#include "tags/MixedTokenFieldLogic.h"
#include "tags/TagLibraryHelper.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>

namespace tavrin {

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
        setPlaceholderText("Type text, and add tags from the list below");
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

struct PatternEditor::Parts {
    Parts(const std::string& key, BaseRenameAction& action)
        : library(TagLibraryHelper::sharedInstance()), logic(library),
          binding(action, key, [this](const std::optional<PropertyValue>& value) {
              show(value ? textValue(*value) : std::u16string());
          }) {}

    /// The entries of the field, and where the cursor is, a token counting for one.
    [[nodiscard]] MixedTokenFieldLogic::Tokens value() const;
    void show(const std::u16string& pattern);
    void setValue(const MixedTokenFieldLogic::Tokens& tokens, int cursorPosition);
    void textChanged();
    void fitHeight();

    TokenEdit* edit = new TokenEdit;
    TagLibraryHelper& library;
    MixedTokenFieldLogic logic;
    ParameterBinding binding;
};

MixedTokenFieldLogic::Tokens PatternEditor::Parts::value() const {
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

void PatternEditor::Parts::show(const std::u16string& pattern) {
    if (StringToTokenArrayTransformer::reverseTransformedValue(value()) == pattern)
        return;
    setValue(
        StringToTokenArrayTransformer::transformedValue(pattern).value_or(MixedTokenFieldLogic::Tokens()),
        -1);
}

/// A position of -1 puts the cursor at the end.
void PatternEditor::Parts::setValue(const MixedTokenFieldLogic::Tokens& tokens, int cursorPosition) {
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

void PatternEditor::Parts::textChanged() {
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

void PatternEditor::Parts::fitHeight() {
    const int line = edit->fontMetrics().lineSpacing() + lineDistance + 2;
    const int wanted = static_cast<int>(edit->document()->size().height()) + 2 * edit->frameWidth();
    edit->setFixedHeight(std::clamp(wanted, line + 12, mostLines * line + 12));
}

PatternEditor::PatternEditor(std::string key, BaseRenameAction& action, const WindowServices&)
    : parts(std::make_unique<Parts>(key, action)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(parts->edit);
    parts->edit->setObjectName("patternField");
    parts->edit->setAccessibleName("Tag pattern");
    setFocusProxy(parts->edit);
    connect(parts->edit, &QTextEdit::textChanged, this, [this] { parts->textChanged(); });
}

PatternEditor::~PatternEditor() = default;

void PatternEditor::insert(const QString& text) {
    parts->edit->textCursor().insertText(text, QTextCharFormat());
    parts->edit->setFocus();
}

} // namespace tavrin
