#include "presentation/settings/ParameterEditors.h"

#include "actions/BaseRenameAction.h"
#include "actions/list/RenameFromListAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/tags/PatternEditor.h"
#include "support/text/Text.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace tavrin {

namespace {

QString translated(const char* text) { return QCoreApplication::translate("ParameterEditors", text); }

QString textOf(const std::optional<PropertyValue>& value) {
    return value ? toQString(textValue(*value)) : QString();
}

int numberOf(const std::optional<PropertyValue>& value) { return value ? intValue(*value) : 0; }

/// Turning the wheel scrolls the panel, but for a control in use.
template <typename Control> class CalmControl : public Control {
  protected:
    void wheelEvent(QWheelEvent* event) override {
        if (this->hasFocus())
            Control::wheelEvent(event);
        else
            event->ignore();
    }
};

/// A line of text. Puts a text back only where it differs, so that the cursor stays. Blanks at either end
/// show as faint dots, since they matter in names.
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
            setFixedWidth(fontMetrics().horizontalAdvance("MMM") + 12);
        }
        connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
            binding.write(text.isEmpty() ? std::nullopt : std::optional<PropertyValue>(fromQString(text)));
        });
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QLineEdit::paintEvent(event);
        const QString shown = text();
        if (shown.isEmpty() || (shown.front() != ' ' && shown.back() != ' '))
            return;
        QStyleOptionFrame option;
        initStyleOption(&option);
        constexpr int innerMargin = 2; // between the frame and the text of a line edit
        const QRect place = style()
                                ->subElementRect(QStyle::SE_LineEditContents, &option, this)
                                .marginsRemoved(textMargins())
                                .adjusted(innerMargin, 0, -innerMargin, 0);
        // A text that is scrolled has its ends elsewhere.
        if (fontMetrics().horizontalAdvance(shown) >= place.width() || isRightToLeft() ||
            alignment().testFlag(Qt::AlignHCenter))
            return;
        paintEnds(shown, place);
    }

  private:
    void paintEnds(const QString& shown, const QRect& place) {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::PlaceholderText));
        const QFontMetrics metrics = fontMetrics();
        const auto paintDot = [&](qsizetype at) {
            const int left = place.left() + metrics.horizontalAdvance(shown.left(at));
            painter.drawText(QRect(left, place.top(), metrics.horizontalAdvance(' '), place.height()),
                             Qt::AlignCenter | Qt::TextDontClip, "·");
        };
        qsizetype front = 0;
        for (; front < shown.size() && shown.at(front) == ' '; ++front)
            paintDot(front);
        for (qsizetype back = shown.size() - 1; back > front && shown.at(back) == ' '; --back)
            paintDot(back);
    }

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

/// A number, shown with an offset where people count otherwise than the parameter. An emptied field is 0.
class NumberEditor : public CalmControl<QSpinBox> {
  public:
    NumberEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : offset(parameter.shownOffset),
          binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(numberOf(value)); }) {
        const QSignalBlocker blocker(this);
        // A stored number beyond what makes sense stays as it is.
        setRange(std::min(saturated(std::int64_t{parameter.minimum} + offset), value()),
                 std::max(saturated(std::int64_t{parameter.maximum} + offset), value()));
        setFocusPolicy(Qt::StrongFocus);
        constexpr std::int32_t wide = 9999;
        setFixedWidth(sizeHintFor(parameter.maximum > wide ? "-2147483648" : "99999"));
        connect(this, &QSpinBox::valueChanged, this,
                [this](int number) { binding.write(saturated(std::int64_t{number} - offset)); });
        connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& typed) {
            if (typed.isEmpty() && minimum() <= offset)
                binding.write(std::nullopt);
        });
    }

    void fixup(QString& input) const override {
        if (input.isEmpty())
            input = QString::number(offset);
    }

  private:
    /// The width of the box around a text.
    [[nodiscard]] int sizeHintFor(const char* widest) const {
        QStyleOptionSpinBox option;
        initStyleOption(&option);
        const QSize content(fontMetrics().horizontalAdvance(widest) + 8, fontMetrics().height());
        return style()->sizeFromContents(QStyle::CT_SpinBox, &option, content, this).width();
    }

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

class ChoiceEditor : public CalmControl<WidePopUpBox> {
  public:
    ChoiceEditor(const ParameterDescription& parameter, BaseRenameAction& action)
        : rowCount(fill(parameter)),
          binding(action, std::string(parameter.key),
                  [this](const std::optional<PropertyValue>& value) { show(numberOf(value)); }) {
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(8);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setFocusPolicy(Qt::StrongFocus);
        setMaxVisibleItems(30);
        connect(this, &QComboBox::activated, this, [this](int row) { binding.write(itemData(row).toInt()); });
    }

  private:
    int fill(const ParameterDescription& parameter) {
        for (const ParameterChoice& choice : parameter.choices)
            addItem(toQString(choice.label), choice.value);
        return count();
    }

    /// A value that no row stands for leaves the box empty.
    void show(int value) {
        setCurrentIndex(findData(value));
        setToolTip(currentText().size() > 20 ? currentText() : QString());
    }

    int rowCount; ///< fills the box before the binding shows a value in it
    ParameterBinding binding;
};

/// What the action writes, as it stands.
class StatusLine : public NoteLabel {
  public:
    StatusLine(const ParameterDescription& parameter, BaseRenameAction& action)
        : binding(action, std::string(parameter.key), [this](const std::optional<PropertyValue>& value) {
              const QString text = textOf(value);
              showNote({text, text.startsWith("Error") || text.startsWith("File does not exist")});
          }) {}

  private:
    ParameterBinding binding;
};

/// The parameter `separatorMode` of a date as two choices: what comes first, and what stands between.
class SeparatorModeEditor final : public QWidget {
  public:
    explicit SeparatorModeEditor(BaseRenameAction& action);

  private:
    void show(int mode);
    void write();

    QComboBox* orderBox;
    QComboBox* betweenBox;
    ParameterBinding binding;
};

/// Modes 0 to 5 put the date first, 6 to 11 the time, each with these texts between the two.
constexpr int textsBetween = 6;

QComboBox* makeBox(const char* name, const QString& accessibleName, const QStringList& rows) {
    auto* box = new WidePopUpBox;
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(7);
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    box->addItems(rows);
    return box;
}

SeparatorModeEditor::SeparatorModeEditor(BaseRenameAction& action)
    : orderBox(makeBox("separatorModeOrder", translated("Order of date and time"),
                       {translated("Date first"), translated("Time first")})),
      betweenBox(
          makeBox("separatorModeBetween", translated("Between date and time"),
                  {translated("a blank between"), translated("nothing between"), translated("- between"),
                   translated("_ between"), translated("/ between"), translated(". between")})),
      binding(action, "separatorMode",
              [this](const std::optional<PropertyValue>& value) { show(value ? intValue(*value) : 0); }) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(orderBox, 2);
    layout->addWidget(betweenBox, 3);
    setFocusProxy(orderBox);
    connect(orderBox, &QComboBox::activated, this, [this] { write(); });
    connect(betweenBox, &QComboBox::activated, this, [this] { write(); });
}

void SeparatorModeEditor::show(int mode) {
    const bool isKnown = mode >= 0 && mode < 2 * textsBetween;
    orderBox->setCurrentIndex(isKnown ? mode / textsBetween : -1);
    betweenBox->setCurrentIndex(isKnown ? mode % textsBetween : -1);
}

void SeparatorModeEditor::write() {
    binding.write(std::max(0, orderBox->currentIndex()) * textsBetween +
                  std::max(0, betweenBox->currentIndex()));
}

/// The file of a list action: its path, and buttons to choose, to read anew and to forget it.
class FileEditor final : public QWidget {
  public:
    explicit FileEditor(BaseRenameAction& action);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void show(const QString& path);
    void browse();

    BaseRenameAction& action;
    QString path;
    QLabel* pathLabel;
    ParameterBinding binding;
};

FileEditor::FileEditor(BaseRenameAction& listAction)
    : action(listAction), pathLabel(new QLabel),
      binding(listAction, "listFilePath", [this](const std::optional<PropertyValue>& value) {
          show(value ? toQString(textValue(*value)) : QString());
      }) {
    pathLabel->setObjectName("listFilePathLabel");
    pathLabel->setTextFormat(Qt::PlainText);
    pathLabel->setFrameShape(QFrame::StyledPanel);
    pathLabel->setMargin(4);
    pathLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    pathLabel->setAccessibleName(translated("List file"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pathLabel);
    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    const auto addButton = [&](const char* name, const QString& text, auto&& effect) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(false);
        button->setObjectName(name);
        buttons->addWidget(button);
        connect(button, &QPushButton::clicked, this, effect);
        return button;
    };
    setFocusProxy(addButton("browse", translated("Browse…"), [this] { browse(); }));
    const auto listOf = [this] { return dynamic_cast<RenameFromListAction*>(&action); };
    addButton("reload", translated("Reload"), [listOf] {
        if (auto* list = listOf())
            list->reload();
    });
    addButton("clear", translated("Clear"), [listOf] {
        if (auto* list = listOf())
            list->clear();
    });
    buttons->addStretch(1);
}

void FileEditor::show(const QString& newPath) {
    path = newPath;
    pathLabel->setToolTip(path.toHtmlEscaped());
    pathLabel->setText(
        pathLabel->fontMetrics().elidedText(path, Qt::ElideMiddle, std::max(80, pathLabel->width() - 16)));
}

void FileEditor::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    show(path);
}

void FileEditor::browse() {
    auto* dialog = new QFileDialog(window(), translated("Choose a List of Names"));
    dialog->setObjectName("browseDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
        if (auto* list = dynamic_cast<RenameFromListAction*>(&action))
            list->load(fromQString(chosen));
    });
    dialog->open();
}

QWidget* makeEditor(const ParameterDescription& parameter, BaseRenameAction& action) {
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
        return new PatternEditor(std::string(parameter.key), action);
    case ParameterKind::file:
        return new FileEditor(action);
    case ParameterKind::status:
        return new StatusLine(parameter, action);
    }
    return nullptr;
}

/// Rows of the same kind are told apart by their number.
QString spokenName(const ParameterDescription& parameter) {
    const QString label = toQString(parameter.label);
    const char last = parameter.key.back();
    const bool isNumbered = last >= '0' && last <= '9' && parameter.kind != ParameterKind::choice;
    return isNumbered ? translated("%1, row %2").arg(label).arg(last - '0' + 1) : label;
}

} // namespace

QWidget* makeParameterEditor(const ParameterDescription& parameter, BaseRenameAction& action) {
    QWidget* editor = makeEditor(parameter, action);
    editor->setObjectName(
        QString::fromUtf8(parameter.key.data(), static_cast<qsizetype>(parameter.key.size())));
    editor->setAccessibleName(spokenName(parameter));
    return editor;
}

void WidePopUpBox::showPopup() {
    constexpr int scrollBarAndMargins = 28;
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + scrollBarAndMargins);
    QComboBox::showPopup();
}

void WidePopUpBox::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    constexpr int margins = 6;
    const int room =
        style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this).width();
    option->currentText = option->fontMetrics.elidedText(option->currentText, Qt::ElideRight, room - margins);
}

QWidget* makeLine() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

QWidget* makeSectionHead(const QString& text, bool isFirst) {
    auto* head = new QWidget;
    auto* layout = new QVBoxLayout(head);
    layout->setContentsMargins(0, isFirst ? 0 : 8, 0, 0);
    layout->setSpacing(8);
    auto* label = new QLabel(text);
    QFont bold = label->font();
    bold.setWeight(QFont::DemiBold);
    label->setFont(bold);
    if (!isFirst)
        layout->addWidget(makeLine());
    layout->addWidget(label);
    return head;
}

} // namespace tavrin
