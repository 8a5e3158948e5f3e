#include "presentation/dialogs/ConfirmationSheetWindow.h"

#include "engine/asking/UserPrompts.h"
#include "platform/propertylists/PropertyList.h"
#include "presentation/FileBrowser.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/dialogs/FilePreviewView.h"
#include "presentation/dialogs/MessageText.h"
#include "presentation/preview/NameDifference.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr int sheetWidth = 600;
constexpr int deafMilliseconds = 300;

struct Words {
    const char* name;
    const char* head;
    const char* all;
    const char* one;
    const char* leaveOut;
};

const Words& wordsOf(ConfirmationSheet sheet) {
    static constexpr std::array words{
        Words{"confirmRenameWindow", "Rename this item?", "Rename &All Without Asking", "&Rename This One",
              "S&kip This One"},
        Words{"confirmSwapWindow", "Swap these two names?", "Swap and Rename &All Without Asking",
              "&Swap These", "S&kip These"},
        Words{"confirmNameCycleWindow", "Some names in this folder go round in a circle.",
              "Rename &All Without Asking", "&Rename These", "S&kip These"},
        Words{"reportProblemWindow", "", "Continue Without &Further Reports", "&Continue", ""},
    };
    return words[static_cast<std::size_t>(sheet)];
}

std::u16string textUnder(const PropertyDictionary& context, std::string_view key) {
    const PropertyValue* value = find(context, key);
    return value ? textOrData(*value).value_or(textValue(*value)) : std::u16string();
}

/// A name with its changed parts tinted, as rich text.
QString tinted(const std::u16string& name, const std::vector<NameDifference::Span>& spans, const QColor& tint,
               const QColor& text) {
    const QString shown = ShownName::of(name, false);
    QString html;
    qsizetype place = 0;
    for (const NameDifference::Span& span : spans) {
        const auto start = static_cast<qsizetype>(span.start);
        const auto length = static_cast<qsizetype>(span.length);
        html += shown.mid(place, start - place).toHtmlEscaped();
        html += QString("<span style='background-color:%1;color:%2'>%3</span>")
                    .arg(tint.name(), text.name(), shown.mid(start, length).toHtmlEscaped());
        place = start + length;
    }
    return "<span style='white-space:pre-wrap'>" + html + shown.mid(place).toHtmlEscaped() + "</span>";
}

QLabel* textLabel(const QString& text, Qt::TextFormat format) {
    auto* label = new QLabel;
    label->setTextFormat(format);
    label->setText(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

MessageText* messageText(const char* name, const QString& text) {
    auto* message = new MessageText;
    message->setObjectName(name);
    message->setText(text);
    return message;
}

/// The folder of a path as a link that shows it in the file manager.
QLabel* folderLink(const std::u16string& path) {
    const std::u16string folder = path.substr(0, std::max<std::size_t>(1, path.rfind(u'/')));
    QLabel* label =
        textLabel("<a href='folder'>" + ShownName::of(folder, false).toHtmlEscaped() + "</a>", Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    QObject::connect(label, &QLabel::linkActivated, label, [folder] {
        if (const auto bytes = text::toBytes(folder))
            FileBrowser::open(*bytes);
    });
    return label;
}

} // namespace

ConfirmationSheetWindow::ConfirmationSheetWindow(QWidget* parent, ConfirmationSheet sheet,
                                                 const PropertyDictionary& context,
                                                 const std::optional<std::string>& previewPath,
                                                 bool thumbnails,
                                                 std::function<void(ConfirmationChoice)> handler)
    : QDialog(parent), answer(std::move(handler)) {
    setObjectName(wordsOf(sheet).name);
    setWindowTitle("Tavrin");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setFixedWidth(sheetWidth);
    auto* row = new QHBoxLayout;
    if (previewPath) {
        auto* picture = new FilePreviewView;
        picture->setPath(*previewPath, thumbnails);
        row->addWidget(picture, 0, Qt::AlignTop);
    }
    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    addTexts(sheet, context, *texts);
    texts->addStretch(1);
    row->addLayout(texts, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(16);
    row->setSpacing(16);
    column->addLayout(row, 1);
    addButtons(sheet, *column);
}

void ConfirmationSheetWindow::addTexts(ConfirmationSheet sheet, const PropertyDictionary& context,
                                       QVBoxLayout& column) {
    const bool isProblem = sheet == ConfirmationSheet::problem;
    QLabel* head =
        textLabel(isProblem ? toQString(textUnder(context, "title")) : QString::fromUtf8(wordsOf(sheet).head),
                  Qt::PlainText);
    QFont large = head->font();
    large.setPointSizeF(large.pointSizeF() * 1.2);
    large.setWeight(QFont::DemiBold);
    head->setFont(large);
    column.addWidget(head);
    auto* form = new QFormLayout;
    const std::u16string before = textUnder(context, "oldName");
    const std::u16string after = textUnder(context, "newName");
    const WindowColours& colours = WindowColours::of(palette());
    switch (sheet) {
    case ConfirmationSheet::rename: {
        const NameDifference difference = NameDifference::between(before, after);
        form->addRow("From:",
                     textLabel(tinted(before, difference.removed, colours.removedTint, colours.removedText),
                               Qt::RichText));
        form->addRow("To:", textLabel(tinted(after, difference.added, colours.addedTint, colours.addedText),
                                      Qt::RichText));
        if (const std::u16string path = textUnder(context, "fullPath"); !path.empty())
            form->addRow("In folder:", folderLink(path));
        break;
    }
    case ConfirmationSheet::swap:
        column.addWidget(
            textLabel(ShownName::of(before, false) + "\n⇄\n" + ShownName::of(after, false), Qt::PlainText));
        column.addWidget(textLabel("Each takes the other’s name.", Qt::PlainText));
        form->addRow("In folder:", folderLink(textUnder(context, "fullPathFirst")));
        break;
    case ConfirmationSheet::nameCycle:
        form->addRow("In folder:", folderLink(textUnder(context, "fullPath")));
        column.addWidget(textLabel(
            "Each of these items takes the name of the next. They are renamed together or not at all.",
            Qt::PlainText));
        break;
    case ConfirmationSheet::problem:
        column.addWidget(messageText("problemMessage", toQString(textUnder(context, "message"))));
        form->addRow("Item:",
                     messageText("problemItem", ShownName::of(textUnder(context, "fullPath"), false)));
        break;
    }
    column.addLayout(form);
}

void ConfirmationSheetWindow::addButtons(ConfirmationSheet sheet, QVBoxLayout& column) {
    const Words& words = wordsOf(sheet);
    auto* row = new QHBoxLayout;
    column.addLayout(row);
    const auto addButton = [&](const char* name, const char* text, ConfirmationChoice choice) {
        auto* button = new QPushButton(QString::fromUtf8(text));
        button->setObjectName(name);
        button->setAutoDefault(false);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, choice] { give(choice); });
        return button;
    };
    addButton("confirmStop", "Stop", ConfirmationChoice::stop);
    row->addStretch(1);
    const auto offer = [&](const char* name, const char* text, ConfirmationChoice choice) {
        const auto allowed = allowedAnswers(sheet);
        return std::ranges::find(allowed, choice) == allowed.end() ? nullptr : addButton(name, text, choice);
    };
    offer("leaveOut", words.leaveOut, ConfirmationChoice::leaveOut);
    offer("confirmAll", words.all, ConfirmationChoice::all);
    QPushButton* one = addButton("confirmOne", words.one, ConfirmationChoice::one);
    one->setDefault(true);
    one->setFocus();
}

void ConfirmationSheetWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    QTimer::singleShot(deafMilliseconds, this, [this] { isDeaf = false; });
}

void ConfirmationSheetWindow::keyPressEvent(QKeyEvent* event) {
    if (isDeaf || event->isAutoRepeat())
        return;
    QDialog::keyPressEvent(event);
}

void ConfirmationSheetWindow::give(ConfirmationChoice choice) {
    answer(choice);
    accept();
}

/// However the sheet is closed, there has been an answer.
void ConfirmationSheetWindow::done(int result) {
    answer(ConfirmationChoice::stop);
    QDialog::done(result);
}

} // namespace tavrin
