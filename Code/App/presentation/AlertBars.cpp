#include "presentation/AlertBars.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/Dialogs.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "shell/MainController.h"

namespace tavrin {

namespace {

BarMessage::Kind kindOf(const Alert& alert) {
    switch (alert.kind) {
    case AlertKind::fileListSaved:
        return BarMessage::Kind::done;
    case AlertKind::dropletMigration:
        return alert.style == AlertStyle::critical ? BarMessage::Kind::failure : BarMessage::Kind::done;
    default:
        break;
    }
    switch (alert.style) {
    case AlertStyle::informational:
        return BarMessage::Kind::hint;
    case AlertStyle::warning:
        return BarMessage::Kind::warning;
    case AlertStyle::critical:
        break;
    }
    return BarMessage::Kind::failure;
}

/// The same message stands once, another beside it.
QString nameFor(const char* kind, const QString& text) {
    return QString("%1-%2").arg(kind).arg(qHash(text), 0, 16);
}

/// A bar has few lines: of a long text its first sentence, unless that is long too.
QString shortened(const QString& text) {
    constexpr qsizetype most = 120;
    if (text.size() <= most)
        return text.simplified();
    const QString first = text.left(text.indexOf(". ") + 1);
    return first.size() <= most ? first : QString();
}

BarMessage::Button helpButton(std::function<void()> effect) {
    return {"barHelp", AlertBars::tr("&Help"), std::move(effect)};
}

void showSentences(MessageBars& bars, const char* name, BarMessage::Kind kind, const std::string& message) {
    const QString whole = toQString(message);
    const qsizetype end = whole.indexOf(". ");
    bars.present({.objectName = nameFor(name, whole),
                  .kind = kind,
                  .bold = end < 0 ? whole : whole.left(end + 1),
                  .plain = end < 0 ? QString() : whole.mid(end + 2)});
}

} // namespace

bool AlertBars::canShow(const Alert& alert) {
    if (alert.buttons.size() != 1 || alert.isAwaited)
        return false;
    switch (alert.kind) {
    case AlertKind::noActiveActions:
    case AlertKind::filesNotAdded:
    case AlertKind::itemsNotRemoved:
    case AlertKind::manualSorting:
    case AlertKind::nothingToTakeBack:
    case AlertKind::fileListSaved:
    case AlertKind::dropletNotCreated:
    case AlertKind::dropletIsSilent:
    case AlertKind::tagNotPresent:
    case AlertKind::presetMigration:
    case AlertKind::dropletMigration:
    case AlertKind::updateAvailable:
    case AlertKind::noUpdate:
    case AlertKind::settingsSetAside:
        return true;
    case AlertKind::runQuestion:
    case AlertKind::summary:
    case AlertKind::dropletLocked:
    case AlertKind::dropletUpgrade:
    case AlertKind::presetDeletion:
    case AlertKind::exifSortingOff:
    case AlertKind::namesByHandLost:
        break;
    }
    return false;
}

void AlertBars::show(MessageBars& bars, const Alert& alert, const std::function<void(AlertAnswer)>& answer) {
    const QString title = toQString(alert.title);
    const QString name = nameFor("alertBar", title);
    BarMessage message{
        .objectName = name, .kind = kindOf(alert), .bold = title, .plain = shortened(toQString(alert.text))};
    if (message.plain.size() < toQString(alert.text).trimmed().size())
        message.buttons.push_back({"barMore", tr("&More…"), [&bars, whole = alert]() mutable {
                                       whole.hasSuppressionBox = false;
                                       Dialogs::showAlert(bars.window(), whole, [](AlertAnswer) {});
                                   }});
    else if (!alert.helpAnchor.empty())
        message.buttons.push_back(helpButton(
            [anchor = alert.helpAnchor] { MainController::sharedInstance().showHelpAnchor(anchor); }));
    // A worker waits for this one, but a bar may stand for long.
    const bool isAnsweredAtOnce = !alert.hasSuppressionBox || alert.kind == AlertKind::tagNotPresent;
    if (alert.hasSuppressionBox) {
        message.buttons.push_back(
            {"dontShowAgain", tr("&Don’t Show Again"), [&bars, name, answer, isAnsweredAtOnce] {
                 bars.dismiss(name);
                 if (isAnsweredAtOnce)
                     UserDefaults::sharedInstance().setObject("showTagNotPresentDialog", false);
                 else
                     answer({0, true});
             }});
        if (!isAnsweredAtOnce)
            message.closed = [answer] { answer({}); };
    }
    bars.present(std::move(message));
    if (isAnsweredAtOnce)
        answer({});
}

bool AlertBars::canShow(NoticeDialog dialog) {
    return dialog == NoticeDialog::noFilesSelected || dialog == NoticeDialog::simpleTemplateFileList;
}

void AlertBars::show(MessageBars& bars, NoticeDialog dialog,
                     const std::function<void(NoticeAnswer)>& answer) {
    const Dialogs::NoticeWords words = Dialogs::wordsOf(dialog);
    const QString name = words.name;
    const auto gives = [&bars, name, answer](int choice, bool isSilenced) {
        return [&bars, name, answer, choice, isSilenced] {
            bars.dismiss(name);
            answer({choice, isSilenced});
        };
    };
    BarMessage message{.objectName = name,
                       .kind = dialog == NoticeDialog::simpleTemplateFileList ? BarMessage::Kind::done
                                                                              : BarMessage::Kind::hint,
                       .bold = words.title,
                       .plain = words.text,
                       .buttons = {helpButton(gives(NoticeAnswer::help, false))},
                       .closed = gives(NoticeAnswer::ok, false)};
    if (words.canBeSwitchedOff)
        message.buttons.push_back({"dontShowAgain", tr("&Don’t Show Again"), gives(NoticeAnswer::ok, true)});
    bars.present(std::move(message));
}

void AlertBars::showError(MessageBars& bars, const std::string& message) {
    showSentences(bars, "errorBar", BarMessage::Kind::failure, message);
}

void AlertBars::showNotice(MessageBars& bars, const std::string& text) {
    showSentences(bars, "noticeBar", BarMessage::Kind::hint, text);
}

} // namespace tavrin
