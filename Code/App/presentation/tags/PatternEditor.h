#pragma once

#include "presentation/settings/ParameterBinding.h"
#include "tags/MixedTokenFieldLogic.h"

#include <QWidget>
#include <string>

class QTextEdit;

namespace tavrin {

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
