#include "presentation/settings/ParameterEditors.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/FileEditor.h"
#include "presentation/settings/PanelRows.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/settings/SeparatorModeEditor.h"
#include "presentation/tags/PatternEditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace tavrin {

namespace {

QString textOf(const std::optional<PropertyValue>& value) {
    return value ? toQString(textValue(*value)) : QString();
}

int numberOf(const std::optional<PropertyValue>& value) { return value ? intValue(*value) : 0; }

/// A line of text. Puts a text back only where it differs, so that the cursor stays.
class TextEditor : public QLineEdit {
  public:
    TextEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(textOf(value)); }) {
        setClearButtonEnabled(parameter.kind == ParameterKind::text);
        if (parameter.key == "searchPattern")
            setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        if (parameter.kind == ParameterKind::character) {
            setAlignment(Qt::AlignHCenter);
            setFixedWidth(fontMetrics().horizontalAdvance("MMMM"));
        }
        connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
            binding.write(text.isEmpty() ? std::nullopt : std::optional<PropertyValue>(fromQString(text)));
        });
    }

  private:
    void show(const QString& value) {
        if (value == text())
            return;
        const int place = cursorPosition();
        const QSignalBlocker blocker(this);
        setText(value);
        setCursorPosition(std::min<int>(place, static_cast<int>(value.size())));
    }

    ParameterBinding binding;
};

int saturated(std::int64_t number) {
    return static_cast<int>(
        std::clamp<std::int64_t>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

/// A number, shown with an offset where people count otherwise than the parameter.
class NumberEditor : public QSpinBox {
  public:
    NumberEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : offset(shownOffsetOf(parameter.key)),
          binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(numberOf(value)); }) {
        const QSignalBlocker blocker(this);
        // A stored number beyond what makes sense stays as it is.
        setRange(std::min(saturated(std::int64_t{parameter.minimum} + offset), value()),
                 std::max(saturated(std::int64_t{parameter.maximum} + offset), value()));
        connect(this, &QSpinBox::valueChanged, this,
                [this](int number) { binding.write(saturated(std::int64_t{number} - offset)); });
    }

  private:
    void show(int number) {
        const QSignalBlocker blocker(this);
        const int shown = saturated(std::int64_t{number} + offset);
        setRange(std::min(minimum(), shown), std::max(maximum(), shown));
        setValue(shown);
    }

    int offset;
    ParameterBinding binding;
};

class CheckboxEditor : public QCheckBox {
  public:
    CheckboxEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : QCheckBox(toQString(parameter.label)),
          binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { setChecked(numberOf(value) == 1); }) {
        connect(this, &QCheckBox::clicked, this, [this](bool isOn) { binding.write(isOn ? 1 : 0); });
    }

  private:
    ParameterBinding binding;
};

class ChoiceEditor : public QComboBox {
  public:
    ChoiceEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : rowCount(fill(parameter)),
          binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(numberOf(value)); }) {
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(12);
        connect(this, &QComboBox::activated, this, [this](int row) { binding.write(itemData(row).toInt()); });
    }

  private:
    int fill(const ParameterDescription& parameter) {
        for (const ParameterChoice& choice : parameter.choices)
            addItem(toQString(choice.label), choice.value);
        return count();
    }

    /// A value that no row stands for leaves the box empty.
    void show(int value) { setCurrentIndex(findData(value)); }

    int rowCount; ///< fills the box before the binding shows a value in it
    ParameterBinding binding;
};

class StatusLine : public QLabel {
  public:
    StatusLine(const ParameterDescription& parameter, BaseRenameAction& action)
        : binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(textOf(value)); }) {
        setWordWrap(true);
        setTextFormat(Qt::PlainText);
        setTextInteractionFlags(Qt::TextSelectableByMouse);
    }

  private:
    void show(const QString& text) {
        setText(text);
        const bool isProblem = text.startsWith("Error") || text.startsWith("File does not exist");
        setProperty("problem", isProblem);
        setForegroundRole(isProblem ? QPalette::BrightText : QPalette::PlaceholderText);
    }

    ParameterBinding binding;
};

QWidget* makeEditor(const ParameterDescription& parameter, BaseRenameAction& action,
                    const WindowServices& services) {
    if (parameter.key == "separatorMode")
        return new SeparatorModeEditor(action);
    switch (parameter.kind) {
    case ParameterKind::text:
    case ParameterKind::character:
        return new TextEditor(parameter, action);
    case ParameterKind::number:
        return new NumberEditor(parameter, action);
    case ParameterKind::checkbox:
        return new CheckboxEditor(parameter, action);
    case ParameterKind::choice:
        return new ChoiceEditor(parameter, action);
    case ParameterKind::pattern:
        return new PatternEditor(std::string(parameter.key), action, services);
    case ParameterKind::file:
        return new FileEditor(action, services);
    case ParameterKind::status:
        return new StatusLine(parameter, action);
    }
    return nullptr;
}

} // namespace

QWidget* makeParameterEditor(const ParameterDescription& parameter, BaseRenameAction& action,
                             const WindowServices& services) {
    QWidget* editor = makeEditor(parameter, action, services);
    editor->setObjectName(
        QString::fromUtf8(parameter.key.data(), static_cast<qsizetype>(parameter.key.size())));
    editor->setAccessibleName(toQString(parameter.label));
    return editor;
}

} // namespace tavrin
