#include "presentation/Dialogs.h"

#include "documents/DropletBundle.h"
#include "presentation/QtText.h"
#include "presentation/cards/Card.h"
#include "presentation/dialogs/AlertPicture.h"
#include "presentation/dialogs/AnswerOnce.h"
#include "presentation/dialogs/ErrorWindow.h"
#include "shell/MainController.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

QMessageBox::Icon iconOf(AlertStyle style) {
    switch (style) {
    case AlertStyle::warning:
        return QMessageBox::Warning;
    case AlertStyle::informational:
        return QMessageBox::Information;
    case AlertStyle::critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

/// A message as a sheet of the window, which deletes itself.
QMessageBox* makeBox(QWidget* parent, AlertStyle style, const QString& title, const QString& text) {
    auto* box = new QMessageBox(iconOf(style), "Tavrin", title, QMessageBox::NoButton, parent);
    if (const QPixmap picture = AlertPicture::of(style, *box); !picture.isNull())
        box->setIconPixmap(picture);
    if (auto* label = box->findChild<QLabel*>("qt_msgbox_label")) {
        QFont strong = label->font();
        strong.setWeight(QFont::DemiBold);
        label->setFont(strong);
    }
    box->setInformativeText(text);
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    return box;
}

/// Of a panel for saving. Qt's own takes a name with quotation marks for a list of names.
std::optional<std::string> chosenPath(const QFileDialog& dialog) {
    QStringList chosen = dialog.selectedFiles();
    if (const auto* line = dialog.findChild<QLineEdit*>("fileNameEdit"); line && line->text().contains('"'))
        chosen = {dialog.directory().absoluteFilePath(line->text())};
    if (chosen.isEmpty())
        return std::nullopt;
    return QFile::encodeName(chosen.front()).toStdString();
}

QCheckBox* makeSuppressionBox() {
    auto* check = new QCheckBox(Dialogs::tr("Don’t show this &again"));
    check->setObjectName("suppressionBox");
    return check;
}

QCheckBox* addSuppressionBox(QMessageBox& box) {
    QCheckBox* check = makeSuppressionBox();
    box.setCheckBox(check);
    return check;
}

/// Opens a page of the help, and leaves the message open.
void addHelpButton(QMessageBox& box, const std::string& anchor) {
    QPushButton* button = box.addButton(QMessageBox::Help);
    QObject::disconnect(button, &QAbstractButton::clicked, nullptr, nullptr);
    QObject::connect(button, &QAbstractButton::clicked, &box,
                     [anchor] { MainController::sharedInstance().showHelpAnchor(anchor); });
}

struct NoticeButton {
    const char* label;
    int choice;
    QMessageBox::ButtonRole role;
};

struct NoticeText {
    const char* name;
    const char* title;
    const char* text;
    bool canBeSwitchedOff;
    std::array<NoticeButton, 3> buttons; ///< the first is the default; those without a label are none
    int whenClosed;
};

const NoticeText& textOf(NoticeDialog dialog) {
    static const NoticeText noFiles{
        "noFilesSelectedDialog",
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "There is nothing to rename yet."),
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "Drag files or folders into the list, or use Add."),
        true,
        {{{QT_TRANSLATE_NOOP("tavrin::Dialogs", "OK"), NoticeAnswer::ok, QMessageBox::AcceptRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Help"), NoticeAnswer::help, QMessageBox::HelpRole},
          {}}},
        NoticeAnswer::ok};
    static const NoticeText inconsistent{
        "inconsistentSettingsDialog",
        QT_TRANSLATE_NOOP("tavrin::Dialogs",
                          "Files and folders are both switched off, so nothing can be renamed."),
        QT_TRANSLATE_NOOP("tavrin::Dialogs",
                          "Switch both on, look at the new preview, and click Rename again."),
        true,
        {{{QT_TRANSLATE_NOOP("tavrin::Dialogs", "Switch Both On"), NoticeAnswer::ok, QMessageBox::AcceptRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Leave Off"), NoticeAnswer::help, QMessageBox::RejectRole},
          {}}},
        NoticeAnswer::help};
    static const NoticeText information{
        "dropletInformationDialog",
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "A droplet keeps the present steps and options."),
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "Drop files on it to rename them; open it to change it."),
        true,
        {{{QT_TRANSLATE_NOOP("tavrin::Dialogs", "Create Droplet…"), NoticeAnswer::ok,
           QMessageBox::AcceptRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Cancel"), NoticeAnswer::cancel, QMessageBox::RejectRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Help"), NoticeAnswer::help, QMessageBox::HelpRole}}},
        NoticeAnswer::cancel};
    static const NoticeText droplet{
        "dropletEditModeDialog",
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "You are editing a droplet."),
        QT_TRANSLATE_NOOP("tavrin::Dialogs",
                          "Change the steps, then click Save. Files you add only show the effect."),
        true,
        {{{QT_TRANSLATE_NOOP("tavrin::Dialogs", "Continue"), NoticeAnswer::ok, QMessageBox::AcceptRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Quit"), NoticeAnswer::cancel, QMessageBox::RejectRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Help"), NoticeAnswer::help, QMessageBox::HelpRole}}},
        NoticeAnswer::ok};
    static const NoticeText simpleList{
        "simpleTemplateFileListDialog",
        QT_TRANSLATE_NOOP("tavrin::Dialogs", "The file list was successfully saved."),
        QT_TRANSLATE_NOOP("tavrin::Dialogs",
                          "This list holds new names only, in the order of the current names. To read it "
                          "back with New names from a list, sort by name."),
        false,
        {{{QT_TRANSLATE_NOOP("tavrin::Dialogs", "OK"), NoticeAnswer::ok, QMessageBox::AcceptRole},
          {QT_TRANSLATE_NOOP("tavrin::Dialogs", "Help"), NoticeAnswer::help, QMessageBox::HelpRole},
          {}}},
        NoticeAnswer::ok};
    switch (dialog) {
    case NoticeDialog::noFilesSelected:
        return noFiles;
    case NoticeDialog::inconsistentSettings:
        return inconsistent;
    case NoticeDialog::dropletInformation:
        return information;
    case NoticeDialog::dropletEditMode:
        return droplet;
    case NoticeDialog::simpleTemplateFileList:
        break;
    }
    return simpleList;
}

} // namespace

void Dialogs::showAlert(QWidget* parent, const Alert& alert, std::function<void(AlertAnswer)> answer) {
    QMessageBox* box = makeBox(parent, alert.style, toQString(alert.title), toQString(alert.text));
    box->setObjectName("alert");
    QCheckBox* check = alert.hasSuppressionBox ? addSuppressionBox(*box) : nullptr;
    std::vector<QAbstractButton*> buttons;
    for (const std::string& label : alert.buttons)
        buttons.push_back(box->addButton(toQString(label), buttons.empty() ? QMessageBox::AcceptRole
                                                                           : QMessageBox::RejectRole));
    if (!alert.helpAnchor.empty())
        addHelpButton(*box, alert.helpAnchor);
    // Escape takes the last button, which never does more than the others.
    if (!buttons.empty()) {
        box->setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
        box->setEscapeButton(buttons.back());
    }
    const AnswerOnce<AlertAnswer> once(std::move(answer));
    QObject::connect(box, &QMessageBox::finished, box, [box, buttons, check, once] {
        const auto clicked = std::ranges::find(buttons, box->clickedButton());
        const auto index = clicked == buttons.end() ? buttons.size() - 1
                                                    : static_cast<std::size_t>(clicked - buttons.begin());
        once({index, check && check->isChecked()});
    });
    box->open();
}

Dialogs::NoticeWords Dialogs::wordsOf(NoticeDialog dialog) {
    const NoticeText& text = textOf(dialog);
    return {text.name, tr(text.title), tr(text.text), text.canBeSwitchedOff};
}

void Dialogs::showNotice(QWidget* parent, NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    const NoticeText& text = textOf(dialog);
    QMessageBox* box =
        makeBox(parent, AlertStyle::informational, Dialogs::tr(text.title), Dialogs::tr(text.text));
    box->setObjectName(text.name);
    QCheckBox* check = text.canBeSwitchedOff ? addSuppressionBox(*box) : nullptr;
    std::vector<std::pair<QAbstractButton*, int>> buttons;
    for (const NoticeButton& button : text.buttons)
        if (button.label)
            buttons.emplace_back(box->addButton(Dialogs::tr(button.label), button.role), button.choice);
    box->setDefaultButton(qobject_cast<QPushButton*>(buttons.front().first));
    // Without one the message could not be closed but by its buttons.
    const auto whenClosed =
        std::ranges::find(buttons, text.whenClosed, &std::pair<QAbstractButton*, int>::second);
    box->setEscapeButton(whenClosed->first);
    const AnswerOnce<NoticeAnswer> once(std::move(answer));
    QObject::connect(box, &QMessageBox::finished, box, [box, buttons, check, once, closed = text.whenClosed] {
        const auto clicked =
            std::ranges::find(buttons, box->clickedButton(), &std::pair<QAbstractButton*, int>::first);
        once({clicked == buttons.end() ? closed : clicked->second, check && check->isChecked()});
    });
    box->open();
}

namespace {

QString nameOf(int noticeChoice) {
    return noticeChoice == NoticeAnswer::ok     ? "noticeOk"
           : noticeChoice == NoticeAnswer::help ? "noticeHelp"
                                                : "noticeCancel";
}

} // namespace

void Dialogs::showNoticeCard(QWidget& over, NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    const NoticeText& text = textOf(dialog);
    CardContent content{text.name, tr(text.title), tr(text.text)};
    std::vector<int> choices;
    for (const std::size_t place : {1, 2, 0}) { // the default stands last
        const NoticeButton& button = text.buttons.at(place);
        if (!button.label)
            continue;
        if (button.choice == text.whenClosed)
            content.escapeButton = choices.size();
        content.buttons.push_back({nameOf(button.choice), tr(button.label)});
        choices.push_back(button.choice);
    }
    content.defaultButton = choices.size() - 1;
    auto* body = new QWidget;
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins(0, 0, 0, 0);
    auto* words = new QLabel(content.text);
    words->setObjectName("cardText");
    words->setTextFormat(Qt::PlainText);
    words->setWordWrap(true);
    words->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(words);
    const QPointer<QCheckBox> check = text.canBeSwitchedOff ? makeSuppressionBox() : nullptr;
    if (check)
        column->addWidget(check);
    auto* card = new Card(over);
    card->fill(content, body, [check, choices, answer = std::move(answer)](std::size_t button) {
        answer({choices[button], check && check->isChecked()});
    });
}

void Dialogs::showProcessingErrors(QWidget* parent, const FailureReport& report,
                                   std::function<void()> closed) {
    auto* window = new ErrorWindow(parent, report);
    const AnswerOnce<bool> once([closed = std::move(closed)](bool) { closed(); });
    QObject::connect(window, &QDialog::finished, window, [once] { once(true); });
    window->open();
}

void Dialogs::askForFilesToAdd(QWidget* parent, const std::string& startFolder, bool folders,
                               std::function<void(std::optional<FilesToAdd>)> answer) {
    auto* dialog = new QFileDialog(parent, tr("Add"));
    dialog->setObjectName("addFilesDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setDirectory(QFile::decodeName(startFolder.c_str()));
    dialog->setFileMode(folders ? QFileDialog::Directory : QFileDialog::ExistingFiles);
    dialog->setOption(QFileDialog::ShowDirsOnly, folders);
    dialog->setLabelText(QFileDialog::Accept, tr("Add"));
    const AnswerOnce<std::optional<FilesToAdd>> once(std::move(answer));
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, once](int result) {
        if (result != QDialog::Accepted) {
            once(std::nullopt);
            return;
        }
        FilesToAdd files;
        for (const QString& path : dialog->selectedFiles())
            files.paths.push_back(QFile::encodeName(path).toStdString());
        files.folder = QFile::encodeName(dialog->directory().absolutePath()).toStdString();
        once(std::move(files));
    });
    dialog->open();
}

void Dialogs::askForSavePath(QWidget* parent, const std::string& title,
                             std::function<void(std::optional<std::string>)> answer) {
    auto* dialog = new QFileDialog(parent, toQString(title));
    dialog->setObjectName("savePathDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix("txt");
    dialog->selectFile("File List.txt");
    const AnswerOnce<std::optional<std::string>> once(std::move(answer));
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, once](int result) {
        once(result == QDialog::Accepted ? chosenPath(*dialog) : std::nullopt);
    });
    dialog->open();
}

void Dialogs::askForDropletPath(QWidget* parent, const std::string& title, const std::string& startFolder,
                                std::function<void(std::optional<std::string>)> answer) {
    auto* dialog = new QFileDialog(parent, toQString(title));
    dialog->setObjectName("dropletPathDialog");
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDirectory(QFile::decodeName(startFolder.c_str()));
    dialog->selectFile("My Droplet");
    // What is written has another name than the one that was typed.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    const AnswerOnce<std::optional<std::string>> once(std::move(answer));
    const auto end = [dialog, once](std::optional<std::string> path) {
        once(std::move(path));
        dialog->deleteLater();
    };
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, end](int result) {
        const auto path = result == QDialog::Accepted ? chosenPath(*dialog) : std::nullopt;
        const DropletBundle bundle = DropletBundle::forChosenPath(path.value_or(""));
        if (!path || !bundle.isFolder()) {
            end(path);
            return;
        }
        QMessageBox* box =
            makeBox(dialog->parentWidget(), AlertStyle::warning,
                    tr("“%1” is there already.").arg(QFile::decodeName(bundle.name().c_str())),
                    tr("Do you want to replace it? A folder that is no droplet stays as it is."));
        box->setObjectName("replaceDropletAlert");
        QAbstractButton* replace = box->addButton(tr("&Replace"), QMessageBox::AcceptRole);
        box->setDefaultButton(box->addButton(QMessageBox::Cancel));
        QObject::connect(box, &QMessageBox::finished, dialog, [box, dialog, replace, end, path] {
            if (box->clickedButton() == replace)
                end(path);
            else
                dialog->open();
        });
        box->open();
    });
    dialog->open();
}

namespace {

QMessageBox* present(QWidget* parent, AlertStyle style, const char* name, const std::string& message) {
    // The first sentence says what has happened, the others why.
    const QString whole = toQString(message);
    const qsizetype end = whole.indexOf(". ");
    QMessageBox* box = makeBox(parent, style, end < 0 ? whole : whole.left(end + 1),
                               end < 0 ? QString() : whole.mid(end + 2));
    box->setObjectName(name);
    box->addButton(QMessageBox::Ok);
    box->open();
    return box;
}

} // namespace

QMessageBox* Dialogs::presentError(QWidget* parent, const std::string& message) {
    return present(parent, AlertStyle::critical, "errorAlert", message);
}

QMessageBox* Dialogs::presentNotice(QWidget* parent, const std::string& text) {
    return present(parent, AlertStyle::informational, "noticeAlert", text);
}

} // namespace tavrin
