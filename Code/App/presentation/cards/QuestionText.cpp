#include "presentation/cards/QuestionText.h"

#include "presentation/FileBrowser.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/dialogs/FilePreviewView.h"
#include "presentation/dialogs/MessageText.h"
#include "presentation/preview/NameDifference.h"
#include "presentation/preview/ShownName.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

/// The questions that have cards with names, in the order in which they are told apart.
struct Words {
    const char* name;
    QString head;
    QString all;
    QString one;
    QString leaveOut;
    QString oneHint;
};

QString tr(const char* text) { return QuestionText::tr(text); }

Words wordsOf(const RunQuestion& question) {
    const std::array words{
        //: Of a key, as the next ones: "Return renames this one"
        Words{"confirmRenameWindow", tr("Rename this item?"), tr("Rename &All Without Asking"),
              tr("&Rename This One"), tr("S&kip This One"), tr("%1 renames this one")},
        Words{"confirmSwapWindow", tr("Swap these two names?"), tr("Swap and Rename &All Without Asking"),
              tr("&Swap These"), tr("S&kip These"), tr("%1 swaps these")},
        Words{"confirmNameCycleWindow", tr("Some names in this folder go round in a circle."),
              tr("Rename &All Without Asking"), tr("&Rename These"), tr("S&kip These"),
              tr("%1 renames these")},
        Words{"reportProblemWindow",
              {},
              tr("Continue Without &Further Reports"),
              tr("&Continue"),
              {},
              tr("%1 continues")},
    };
    return words.at(question.index());
}

QString displayed(const std::string& bytes) { return ShownName::of(text::fromBytes(bytes), false); }

/// The item that is pictured; empty where a question is about several.
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

/// A path as a link that shows what lies there: what `show` does with it.
QLabel* pathLink(const std::string& path, void (*show)(const std::string&)) {
    QLabel* label = textLabel("<a href='path'>" + displayed(path).toHtmlEscaped() + "</a>", Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    recolourLinks(*label);
    QObject::connect(label, &QLabel::linkActivated, label, [path, show] { show(path); });
    return label;
}

/// What a card tells of its question, from the head down.
struct Body {
    QVBoxLayout& column;
    QFormLayout& form;
    const WindowColours& colours;

    void operator()(const RenameQuestion& question) const {
        const std::u16string before = text::fromBytes(question.oldName);
        const std::u16string after = text::fromBytes(question.newName);
        const NameDifference difference = NameDifference::between(before, after);
        form.addRow(tr("From:"),
                    textLabel(tinted(before, difference.removed, colours.removedTint, colours.removedText),
                              Qt::RichText));
        form.addRow(
            tr("To:"),
            textLabel(tinted(after, difference.added, colours.addedTint, colours.addedText), Qt::RichText));
        form.addRow(tr("In folder:"), pathLink(question.path, FileBrowser::open));
    }
    void operator()(const SwapQuestion& question) const {
        column.addWidget(
            textLabel(displayed(question.oldName) + "\n⇄\n" + displayed(question.newName), Qt::PlainText));
        column.addWidget(textLabel(tr("Each takes the other’s name."), Qt::PlainText));
        form.addRow(tr("In folder:"), pathLink(question.path, FileBrowser::open));
    }
    void operator()(const NameCycleQuestion& question) const {
        form.addRow(tr("Folder:"), pathLink(question.fullPath, FileBrowser::open));
        column.addWidget(textLabel(
            tr("Each of these items takes the name of the next. They are renamed together or not at all."),
            Qt::PlainText));
    }
    void operator()(const ProblemReport& report) const {
        column.addWidget(messageText("problemMessage", toQString(text::fromBytes(report.message))));
        form.addRow(tr("Item:"), pathLink(report.fullPath, FileBrowser::reveal));
    }
    void operator()(const auto&) const {}
};

struct Spoken {
    QString operator()(const RenameQuestion& question) const {
        //: Spoken: old name, new name, name of the folder
        return tr("%1 to %2, in %3.")
            .arg(displayed(question.oldName), displayed(question.newName), lastOf(question.path));
    }
    QString operator()(const SwapQuestion& question) const {
        //: Spoken: two names, and the name of the folder
        return tr("%1 and %2, in %3.")
            .arg(displayed(question.oldName), displayed(question.newName), lastOf(question.path));
    }
    QString operator()(const NameCycleQuestion& question) const { return displayed(question.fullPath); }
    QString operator()(const ProblemReport& report) const {
        return toQString(text::fromBytes(report.message)) + ' ' + displayed(report.fullPath);
    }
    QString operator()(const auto&) const { return {}; }

    static QString lastOf(const std::string& folder) { return displayed(std::string(lastComponent(folder))); }
};

} // namespace

QuestionText::Card QuestionText::of(const RunQuestion& question) {
    const Words words = wordsOf(question);
    const auto* report = std::get_if<ProblemReport>(&question);
    Card card;
    card.content.objectName = words.name;
    card.content.head = report ? toQString(text::fromBytes(report->title)) : words.head;
    card.content.spoken = std::visit(Spoken(), question);
    card.content.isFailure = report != nullptr;
    const auto allowed = allowedAnswers(question);
    const auto offer = [&](ConfirmationChoice choice, const CardButton& button) {
        if (std::ranges::find(allowed, choice) == allowed.end())
            return;
        card.content.buttons.push_back(button);
        card.answers.push_back(choice);
    };
    offer(ConfirmationChoice::stop, {"confirmStop", tr("Stop"), tr("%1 stops")});
    offer(ConfirmationChoice::leaveOut, {"leaveOut", words.leaveOut, tr("%1 skips")});
    offer(ConfirmationChoice::all, {"confirmAll", words.all, report ? tr("%1 tells no more") : tr("%1 all")});
    offer(ConfirmationChoice::one, {"confirmOne", words.one, words.oneHint});
    card.content.defaultButton = card.answers.size() - 1;
    return card;
}

QWidget* QuestionText::makeBody(const RunQuestion& question, bool thumbnails) {
    auto* body = new QWidget;
    auto* row = new QHBoxLayout(body);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(20);
    if (const std::string item = itemOf(question); !item.empty()) {
        auto* picture = new FilePreviewView;
        picture->setPath(item, thumbnails);
        row->addWidget(picture, 0, Qt::AlignTop);
    }
    auto* column = new QVBoxLayout;
    column->setSpacing(8);
    row->addLayout(column, 1);
    auto* form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    std::visit(Body{*column, *form, WindowColours::of(QApplication::palette())}, question);
    column->addLayout(form);
    column->addStretch(1);
    return body;
}

bool QuestionText::Rows::hold(const std::string& path) const {
    return std::ranges::find(paths, path) != paths.end() ||
           (!folder.empty() && PathParts(path).folder == folder);
}

QuestionText::Rows QuestionText::rowsOf(const RunQuestion& question) {
    if (const auto* rename = std::get_if<RenameQuestion>(&question))
        return {{rename->fullPath.value_or(joinedPath(rename->path, rename->oldName))}, {}};
    if (const auto* swap = std::get_if<SwapQuestion>(&question))
        return {{swap->fullPathFirst, swap->fullPathSecond}, {}};
    if (const auto* cycle = std::get_if<NameCycleQuestion>(&question))
        return {{}, cycle->fullPath};
    const auto* report = std::get_if<ProblemReport>(&question);
    return report ? Rows{{report->fullPath}, {}} : Rows();
}

} // namespace tavrin
