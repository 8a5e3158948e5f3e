#include "presentation/QtFrontEnd.h"

#include "presentation/AddressFetcher.h"
#include "presentation/AlertBars.h"
#include "presentation/Dialogs.h"
#include "presentation/FileBrowser.h"
#include "presentation/MainWindow.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/WindowMemory.h"
#include "presentation/dialogs/LocateDialogs.h"
#include "presentation/dialogs/SaveListDialog.h"
#include "presentation/history/UndoCard.h"
#include "presentation/preview/HandEditing.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/settings/SettingsPane.h"
#include "presentation/steps/StepsPane.h"
#include "shell/MainController.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QTimer>
#include <QUrl>

namespace tavrin {

QtFrontEnd::QtFrontEnd() = default;

QtFrontEnd::~QtFrontEnd() = default;

void QtFrontEnd::setWindow(MainWindow* newWindow) {
    window = newWindow;
    if (window)
        return;
    later = std::make_unique<QObject>();
    fetcher.reset();
}

// --- Asking ---

void QtFrontEnd::whenShown(std::function<void()> action) {
    if (!window || !window->isVisible())
        QTimer::singleShot(0, later.get(), std::move(action));
    else
        action();
}

bool QtFrontEnd::hasBars() const {
    // Below a dialog that is in use a bar would be overlooked.
    return window && window->isVisible() && !qobject_cast<QDialog*>(QApplication::activeWindow());
}

void QtFrontEnd::showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    whenShown([this, alert, answer = std::move(answer)] {
        if (hasBars() && AlertBars::canShow(alert))
            AlertBars::show(window->previewPane().messageBars(), alert, answer);
        else if (window && window->isVisible() && alert.kind == AlertKind::namesByHandLost)
            showAsCard(alert, answer);
        else
            Dialogs::showAlert(window, alert, answer);
    });
}

void QtFrontEnd::showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    whenShown([this, dialog, answer = std::move(answer)] {
        if (hasBars() && AlertBars::canShow(dialog))
            AlertBars::show(window->previewPane().messageBars(), dialog, answer);
        else if (hasBars())
            Dialogs::showNoticeCard(window->questionPlace().over, dialog, answer);
        else
            Dialogs::showNotice(window, dialog, answer);
    });
}

void QtFrontEnd::ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) {
    if (std::optional<Alert> alert = alertOf(question)) {
        if (std::holds_alternative<NoRecordQuestion>(question))
            alert->title = QCoreApplication::translate(
                               "tavrin::QtFrontEnd", "This run can't be recorded, so it could not be undone.")
                               .toStdString();
        const auto given = [choices = allowedAnswers(question), answer = std::move(answer)](
                               AlertAnswer chosen) { answer(choices[chosen.button]); };
        if (window && !std::holds_alternative<PipelineFailure>(question))
            showAsCard(*alert, given);
        else
            showAlert(*alert, given);
        return;
    }
    if (!window)
        return;
    const bool thumbnails =
        window->services().controller.globalSettings().values().shouldShowQuickLookThumbnail != 0;
    window->setWaiting(true);
    questionCard.ask(window->questionPlace(), question, thumbnails,
                     [this, answer = std::move(answer)](ConfirmationChoice choice) {
                         window->setWaiting(false);
                         answer(choice);
                     });
}

/// An alert names the default first and what does least last; a card has them the other way round.
void QtFrontEnd::showAsCard(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    CardContent content{"alertCard", toQString(alert.title), toQString(alert.text)};
    const std::size_t last = alert.buttons.size() - 1;
    for (std::size_t i = 0; i <= last; ++i)
        content.buttons.push_back(
            {QString("cardButton%1").arg(last - i), toQString(alert.buttons[last - i])});
    content.defaultButton = last;
    window->setWaiting(true);
    Card::open(window->questionPlace().over, content,
               [this, last, answer = std::move(answer)](std::size_t button) {
                   window->setWaiting(false);
                   answer({last - button, false});
               });
}

void QtFrontEnd::showProcessingErrors(const FailureReport& report, std::function<void()> closed) {
    Dialogs::showProcessingErrors(window, report, std::move(closed));
}

void QtFrontEnd::showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer) {
    if (window)
        window->showRunReport(report, std::move(answer));
}

void QtFrontEnd::withdrawQuestions() {
    if (!window)
        return;
    // During a run no other dialog that is open waits for more than to be closed.
    for (QDialog* dialog : window->findChildren<QDialog*>())
        if (dialog->isVisible())
            dialog->reject();
    for (Card* card : window->findChildren<Card*>())
        if (card->isAsking())
            card->withdraw();
    window->showProgress();
}

void QtFrontEnd::askForFilesToAdd(const std::string& startFolder,
                                  std::function<void(std::optional<FilesToAdd>)> answer) {
    Dialogs::askForFilesToAdd(window, startFolder, window && window->isAskingForFolders(), std::move(answer));
}

void QtFrontEnd::askForFileListFormat(std::function<void(FileListChoice)> answer) {
    if (window)
        SaveListDialog::ask(window, window->services(), std::move(answer));
}

void QtFrontEnd::askForSavePath(const std::string& title,
                                std::function<void(std::optional<std::string>)> answer) {
    Dialogs::askForSavePath(window, title, std::move(answer));
}

void QtFrontEnd::askForDropletPath(const std::string& title, const std::string& startFolder,
                                   std::function<void(std::optional<std::string>)> answer) {
    if (window)
        tellNamesStayBehind();
    Dialogs::askForDropletPath(window, title, startFolder, std::move(answer));
}

/// A droplet keeps the steps alone.
void QtFrontEnd::tellNamesStayBehind() {
    const std::size_t pinned = window->services().controller.handEdits().pinned();
    if (pinned == 0)
        return;
    BarMessage message;
    message.objectName = "namesStayBehind";
    message.bold = MessageBars::tr("1 name by hand is not part of it.||%Ln names by hand are not part of it.",
                                   nullptr, static_cast<int>(pinned));
    window->previewPane().messageBars().present(message);
}

void QtFrontEnd::askToUndo(const UndoQuestion& question, std::function<void(UndoAnswer)> answer) {
    whenShown([this, question, answer = std::move(answer)] {
        if (!window)
            return;
        window->raise(); // it may have come from another of its windows
        window->activateWindow();
        Card::open(window->questionPlace().over, UndoCard::contentOf(question),
                   [answer](std::size_t button) { answer(static_cast<UndoAnswer>(button)); });
    });
}

void QtFrontEnd::tellInterruptedRun(const InterruptedRun& run,
                                    std::function<void(InterruptedRunAnswer)> answer) {
    if (!window)
        return;
    MessageBars& bars = window->previewPane().messageBars();
    bars.present(UndoCard::barOf(run, [&bars, answer = std::move(answer)](InterruptedRunAnswer given) {
        if (given != InterruptedRunAnswer::show)
            bars.dismiss(UndoCard::barName);
        answer(given);
    }));
}

void QtFrontEnd::askForDroplets(const LocatePanel& panel,
                                std::function<void(std::optional<std::vector<std::string>>)> answer) {
    LocateDialogs::askForDroplets(window, panel, std::move(answer));
}

void QtFrontEnd::askForFolder(const LocatePanel& panel,
                              std::function<void(std::optional<std::string>)> answer) {
    LocateDialogs::askForFolder(window, panel, std::move(answer));
}

void QtFrontEnd::fetchAddress(const std::string& address, std::size_t limit,
                              std::function<void(FetchedAddress)> answer) {
    if (!fetcher)
        fetcher = std::make_unique<AddressFetcher>();
    fetcher->fetch(address, limit, std::move(answer));
}

// --- Showing ---

void QtFrontEnd::presentNotice(const std::string& text) {
    whenShown([this, text] {
        if (hasBars())
            AlertBars::showNotice(window->previewPane().messageBars(), text);
        else
            (void)Dialogs::presentNotice(window, text);
    });
}

void QtFrontEnd::presentError(const std::string& message) {
    whenShown([this, message] {
        if (hasBars())
            AlertBars::showError(window->previewPane().messageBars(), message);
        else
            (void)Dialogs::presentError(window, message);
    });
}

bool QtFrontEnd::isRunningDroplet() const {
    return window && window->services().controller.operationMode() == OperationMode::dropletRun;
}

void QtFrontEnd::terminate() {
    if (isRunningDroplet() && !window->services().controller.isSilentDroplet())
        QTimer::singleShot(0, later.get(), [this] { terminateWhenAllIsRead(); });
    else
        terminateAtOnce();
}

void QtFrontEnd::terminateWhenAllIsRead() {
    const QList<QDialog*> dialogs = window->findChildren<QDialog*>();
    for (QDialog* dialog : dialogs) {
        if (!dialog->isVisible())
            continue;
        QObject::connect(dialog, &QObject::destroyed, later.get(), [this] {
            QTimer::singleShot(0, later.get(), [this] { terminateWhenAllIsRead(); });
        });
        return;
    }
    terminateAtOnce();
}

void QtFrontEnd::terminateAtOnce(int status) {
    if (window && window->services().controller.operationMode() == OperationMode::normal)
        WindowMemory::remember(*window, window->services().defaults);
    // Not quit(), which would first ask the windows to close: that is what leads here. Queued, since there
    // may be no event loop to leave yet.
    QMetaObject::invokeMethod(
        qApp, [status] { QCoreApplication::exit(status); }, Qt::QueuedConnection);
}

void QtFrontEnd::selectMainTab(MainTab tab) {
    if (tab == MainTab::interface)
        questionCard.end();
    if (window)
        window->selectMainTab(tab);
    if (isRunningDroplet() && !window->services().controller.isSilentDroplet())
        window->showRunAlone(tab == MainTab::progress);
}

void QtFrontEnd::selectPreviewTab(PreviewTab tab) {
    if (window)
        window->previewPane().selectPreviewTab(tab);
}

void QtFrontEnd::setColumnWidth(PreviewColumn column, int minimum, int maximum, int width) {
    if (window)
        window->previewPane().setColumnWidth(column, minimum, maximum, width);
}

void QtFrontEnd::setColumnHidden(PreviewColumn column, bool hidden) {
    if (window)
        window->previewPane().setColumnHidden(column, hidden);
}

void QtFrontEnd::sizeColumnsToFit() {
    if (window)
        window->previewPane().sizeColumnsToFit();
}

void QtFrontEnd::previewListChanged() {
    if (!window)
        return;
    window->previewPane().listChanged();
    window->refreshRenameButton();
}

void QtFrontEnd::previewRequested() {
    if (window)
        window->setPreviewDue(true);
}

void QtFrontEnd::previewFinished() {
    if (!window)
        return;
    window->previewPane().previewFinished();
    window->settingsPane().previewFinished();
    MainController& controller = window->services().controller;
    window->setPreviewDue(controller.previewControl().isPreviewPending() ||
                          controller.renameEngine().isPreviewWaiting());
}

void QtFrontEnd::handEditsChanged() {
    if (!window)
        return;
    window->previewPane().handEditing().handEditsChanged();
    window->stepsPane().handEditsChanged();
}

void QtFrontEnd::addingPaths() {
    if (window && !isRunningDroplet())
        window->previewPane().awaitArrivals();
}

void QtFrontEnd::pathsAdded(const std::vector<std::string>& paths) {
    if (window && !isRunningDroplet())
        window->previewPane().pathsAdded(paths);
}

void QtFrontEnd::itemsWereGone(std::size_t count) {
    if (window && !isRunningDroplet())
        window->previewPane().messageBars().present(
            {.objectName = "itemsWereGone",
             .bold = MessageBars::tr("1 item was no longer there.||%Ln items were no longer there.", nullptr,
                                     static_cast<int>(count))});
}

void QtFrontEnd::runStateChanged(bool isRunning) {
    if (window)
        window->setRunning(isRunning);
}

void QtFrontEnd::fillPresetMenu(const std::vector<std::u16string>& titles) {
    if (window)
        window->fillPresetMenu(titles);
}

void QtFrontEnd::actionListChanged() {
    if (!window)
        return;
    window->stepsPane().stepsChanged();
    window->settingsPane().stepsChanged();
}

void QtFrontEnd::showActionPanel(BaseRenameAction& action) {
    if (!window)
        return;
    window->settingsPane().showAction(action);
    actionListChanged();
}

void QtFrontEnd::setDividerPosition(double position) {
    if (window)
        window->setDividerPosition(position);
}

void QtFrontEnd::centreWindow() {
    if (window)
        window->centre();
}

void QtFrontEnd::showWindow() {
    if (!window)
        return;
    WindowMemory::restoreOnce(*window, window->services().defaults);
    window->show();
    window->raise();
    window->activateWindow();
}

void QtFrontEnd::hideWindow() {
    if (window)
        window->hide();
}

void QtFrontEnd::enterDropletEditMode() {
    if (window)
        window->enterDropletEditMode();
}

void QtFrontEnd::showHelp(std::string_view anchor) {
    if (window)
        window->showHelp(anchor);
}

void QtFrontEnd::showHistory(const std::string& run) {
    if (window)
        window->showHistory(run);
}

void QtFrontEnd::revealPath(const std::string& path) { FileBrowser::reveal(path); }

void QtFrontEnd::openAddress(const std::string& address) {
    QDesktopServices::openUrl(QUrl::fromEncoded(QByteArray::fromStdString(address)));
}

void QtFrontEnd::beep() { QApplication::beep(); }

} // namespace tavrin
