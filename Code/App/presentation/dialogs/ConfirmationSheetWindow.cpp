#include "presentation/dialogs/ConfirmationSheetWindow.h"

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

/// The questions that have sheets, in the order in which they are told apart.
struct Words {
    const char* name;
    QString head;
    QString all;
    QString one;
    QString leaveOut;
};

QString tr(const char* text) { return ConfirmationSheetWindow::tr(text); }

const Words& wordsOf(const RunQuestion& question) {
    static const std::array words{
        Words{"confirmRenameWindow", tr("Rename this item?"), tr("Rename &All Without Asking"),
              tr("&Rename This One"), tr("S&kip This One")},
        Words{"confirmSwapWindow", tr("Swap these two names?"), tr("Swap and Rename &All Without Asking"),
              tr("&Swap These"), tr("S&kip These")},
        Words{"confirmNameCycleWindow", tr("Some names in this folder go round in a circle."),
              tr("Rename &All Without Asking"), tr("&Rename These"), tr("S&kip These")},
        Words{"reportProblemWindow", {}, tr("Continue Without &Further Reports"), tr("&Continue"), {}},
    };
    return words.at(question.index());
}

std::u16string displayed(const std::string& bytes) { return text::fromBytes(bytes); }

/// The item that a question is about; empty where it is about several.
std::string itemOf(const RunQuestion& question) {
    if (const auto* rename = std::get_if<RenameQuestion>(&question))
        return rename->fullPath.value_or("");
    if (const auto* cycle = std::get_if<NameCycleQuestion>(&question))
        return cycle->fullPath;
    const auto* report = std::get_if<ProblemReport>(&question);
    return report ? report->fullPath : "";
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

/// A folder as a link that shows it in the file manager.
QLabel* folderLink(const std::string& folder) {
    QLabel* label = textLabel(
        "<a href='folder'>" + ShownName::of(displayed(folder), false).toHtmlEscaped() + "</a>", Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    QObject::connect(label, &QLabel::linkActivated, label, [folder] { FileBrowser::open(folder); });
    return label;
}

/// What a sheet tells of its question, from the head down.
struct Texts {
    QVBoxLayout& column;
    QFormLayout& form;
    const WindowColours& colours;

    void operator()(const RenameQuestion& question) const {
        const std::u16string before = displayed(question.oldName);
        const std::u16string after = displayed(question.newName);
        const NameDifference difference = NameDifference::between(before, after);
        form.addRow(tr("From:"),
                    textLabel(tinted(before, difference.removed, colours.removedTint, colours.removedText),
                              Qt::RichText));
        form.addRow(
            tr("To:"),
            textLabel(tinted(after, difference.added, colours.addedTint, colours.addedText), Qt::RichText));
        form.addRow(tr("In folder:"), folderLink(question.path));
    }
    void operator()(const SwapQuestion& question) const {
        column.addWidget(textLabel(ShownName::of(displayed(question.oldName), false) + "\n⇄\n" +
                                       ShownName::of(displayed(question.newName), false),
                                   Qt::PlainText));
        column.addWidget(textLabel(tr("Each takes the other’s name."), Qt::PlainText));
        form.addRow(tr("In folder:"), folderLink(question.path));
    }
    void operator()(const NameCycleQuestion& question) const {
        form.addRow(tr("In folder:"), folderLink(question.fullPath));
        column.addWidget(textLabel(
            tr("Each of these items takes the name of the next. They are renamed together or not at all."),
            Qt::PlainText));
    }
    void operator()(const ProblemReport& report) const {
        column.addWidget(messageText("problemMessage", toQString(displayed(report.message))));
        form.addRow(tr("Item:"),
                    messageText("problemItem", ShownName::of(displayed(report.fullPath), false)));
    }
    void operator()(const auto&) const {}
};

} // namespace

ConfirmationSheetWindow::ConfirmationSheetWindow(QWidget* parent, const RunQuestion& question,
                                                 bool thumbnails,
                                                 std::function<void(ConfirmationChoice)> handler)
    : QDialog(parent), answer(std::move(handler)) {
    setObjectName(wordsOf(question).name);
    setWindowTitle("Tavrin");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setFixedWidth(sheetWidth);
    auto* row = new QHBoxLayout;
    if (const std::string item = itemOf(question); !item.empty()) {
        auto* picture = new FilePreviewView;
        picture->setPath(item, thumbnails);
        row->addWidget(picture, 0, Qt::AlignTop);
    }
    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    addTexts(question, *texts);
    texts->addStretch(1);
    row->addLayout(texts, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(16);
    row->setSpacing(16);
    column->addLayout(row, 1);
    addButtons(question, *column);
}

void ConfirmationSheetWindow::addTexts(const RunQuestion& question, QVBoxLayout& column) {
    const auto* report = std::get_if<ProblemReport>(&question);
    QLabel* head =
        textLabel(report ? toQString(displayed(report->title)) : wordsOf(question).head, Qt::PlainText);
    QFont large = head->font();
    large.setPointSizeF(large.pointSizeF() * 1.2);
    large.setWeight(QFont::DemiBold);
    head->setFont(large);
    column.addWidget(head);
    auto* form = new QFormLayout;
    std::visit(Texts{column, *form, WindowColours::of(palette())}, question);
    column.addLayout(form);
}

void ConfirmationSheetWindow::addButtons(const RunQuestion& question, QVBoxLayout& column) {
    const Words& words = wordsOf(question);
    auto* row = new QHBoxLayout;
    column.addLayout(row);
    const auto addButton = [&](const char* name, const QString& text, ConfirmationChoice choice) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setAutoDefault(false);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, choice] { give(choice); });
        return button;
    };
    addButton("confirmStop", tr("Stop"), ConfirmationChoice::stop);
    row->addStretch(1);
    const auto offer = [&](const char* name, const QString& text, ConfirmationChoice choice) {
        const auto allowed = allowedAnswers(question);
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
