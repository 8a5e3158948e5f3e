#include "TerminalFrontEnd.h"

#include "InterruptHandler.h"
#include "Terminal.h"
#include "platform/processes/QueueRunLoop.h"

#include <fmt/format.h>

#include <cctype>

namespace tavrin {

namespace {

/// An answer with the letter in brackets that stands for it.
std::string_view wordsOf(ConfirmationChoice choice) {
    switch (choice) {
    case ConfirmationChoice::one:
        return "[y]es";
    case ConfirmationChoice::all:
        return "[a]ll";
    case ConfirmationChoice::leaveOut:
        return "[l]eave out";
    case ConfirmationChoice::stop:
        break;
    }
    return "[s]top";
}

/// A text of several paragraphs as one line.
std::string asOneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at))
        text.replace(at, text.find_first_not_of('\n', at) - at, " ");
    return text;
}

} // namespace

void TerminalFrontEnd::tellFailure(const std::string& title, const std::string& message,
                                   const std::string& path) {
    failures = true;
    terminal.complain(fmt::format("{}: {}{}{}", title, message, path.empty() ? "" : ": ", path));
}

void TerminalFrontEnd::tellFailures(const std::vector<ProcessingError>& errors) {
    for (const ProcessingError& error : errors)
        tellFailure(error.title, error.message, error.path);
}

void TerminalFrontEnd::showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    switch (alert.kind) {
    case AlertKind::summary:
    case AlertKind::fileListSaved:
    case AlertKind::manualSorting:
        break; // the command says how it ended, and sorts by itself
    case AlertKind::presetMigration:
    case AlertKind::dropletMigration:
    case AlertKind::nothingToTakeBack:
    case AlertKind::updateAvailable:
    case AlertKind::noUpdate:
    case AlertKind::settingsSetAside:
    case AlertKind::namesByHandLost:
    case AlertKind::runQuestion:
        break; // the command offers nothing that leads here
    case AlertKind::tagNotPresent:
        terminal.complain(fmt::format("tvrn: {}", alert.title));
        break;
    case AlertKind::noActiveActions:
    case AlertKind::filesNotAdded:
    case AlertKind::itemsNotRemoved:
    case AlertKind::dropletLocked:
    case AlertKind::dropletNotCreated:
    case AlertKind::dropletIsSilent:
    case AlertKind::dropletUpgrade:
    case AlertKind::presetDeletion:
    case AlertKind::exifSortingOff:
        refused = true;
        tellAlert(alert);
        break;
    }
    answer({});
}

void TerminalFrontEnd::tellAlert(const Alert& alert) {
    terminal.complain(fmt::format("tvrn: {} {}", alert.title, asOneLine(alert.text)));
}

void TerminalFrontEnd::showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    NoticeAnswer reply;
    switch (dialog) {
    case NoticeDialog::noFilesSelected:
        refused = true;
        terminal.complain("tvrn: there is nothing to rename");
        break;
    case NoticeDialog::inconsistentSettings:
        refused = true;
        terminal.complain("tvrn: the settings processFiles and processFolders are both off, so nothing takes "
                          "part in the renaming");
        reply.choice = NoticeAnswer::help; // leaves the settings as they are
        break;
    case NoticeDialog::dropletInformation:
    case NoticeDialog::dropletEditMode:
    case NoticeDialog::simpleTemplateFileList:
        break;
    }
    answer(reply);
}

// ---- the questions of a run

void TerminalFrontEnd::ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) {
    answer(std::visit([this](const auto& each) { return answerTo(each); }, question));
}

ConfirmationChoice TerminalFrontEnd::answerTo(const RenameQuestion& question) {
    return choose(
        fmt::format("Rename \"{}\" to \"{}\" in {}?", question.oldName, question.newName, question.path),
        allowedAnswers(question));
}

ConfirmationChoice TerminalFrontEnd::answerTo(const SwapQuestion& question) {
    return choose(
        fmt::format("Swap the names of {} and {}?", question.fullPathFirst, question.fullPathSecond),
        allowedAnswers(question));
}

ConfirmationChoice TerminalFrontEnd::answerTo(const NameCycleQuestion& question) {
    return choose(fmt::format("Names in {} depend on each other in a circle. Rename these items together?",
                              question.fullPath),
                  allowedAnswers(question));
}

ConfirmationChoice TerminalFrontEnd::answerTo(const ProblemReport& report) {
    tellFailure(report.title, report.message, report.fullPath);
    return choose("Go on?", allowedAnswers(report));
}

/// Where nobody can be asked it ends the run.
ConfirmationChoice TerminalFrontEnd::answerTo(const LibraryWarning& warning) {
    tellAlert(*alertOf(warning));
    if (!interactive) {
        refused = true;
        return ConfirmationChoice::stop;
    }
    const std::optional<std::string> line =
        terminal.ask("Continue all the same? [y]es, [s]top: ", interrupts.descriptor());
    const bool goesOn = line && (line->starts_with('y') || line->starts_with('Y'));
    stopped |= !goesOn;
    return goesOn ? ConfirmationChoice::one : ConfirmationChoice::stop;
}

ConfirmationChoice TerminalFrontEnd::answerTo(const NoRecordQuestion& question) {
    tellAlert(*alertOf(question));
    refused = needsRecord;
    return needsRecord ? ConfirmationChoice::stop : ConfirmationChoice::one;
}

ConfirmationChoice TerminalFrontEnd::answerTo(const PipelineFailure& failure) {
    failures = true;
    tellAlert(*alertOf(failure));
    return ConfirmationChoice::one;
}

ConfirmationChoice TerminalFrontEnd::choose(const std::string& question,
                                            std::span<const ConfirmationChoice> allowed) {
    if (!interactive)
        return ConfirmationChoice::one;
    std::string prompt = question;
    for (const ConfirmationChoice choice : allowed)
        prompt += fmt::format("{} {}", choice == allowed.front() ? "" : ",", wordsOf(choice));
    prompt += ": ";
    while (const std::optional<std::string> line = terminal.ask(prompt, interrupts.descriptor())) {
        const char letter =
            line->empty() ? '\0' : static_cast<char>(std::tolower(static_cast<unsigned char>(line->front())));
        for (const ConfirmationChoice choice : allowed) {
            if (wordsOf(choice)[1] != letter)
                continue;
            stopped |= choice == ConfirmationChoice::stop;
            return choice;
        }
    }
    stopped = true;
    return ConfirmationChoice::stop;
}

void TerminalFrontEnd::showProcessingErrors(const FailureReport& report, std::function<void()> closed) {
    tellFailures(report.errors);
    closed();
}

void TerminalFrontEnd::askForFilesToAdd(const std::string&,
                                        std::function<void(std::optional<FilesToAdd>)> answer) {
    answer(std::nullopt);
}

void TerminalFrontEnd::askForFileListFormat(std::function<void(FileListChoice)> answer) {
    answer({.choice = NoticeAnswer::cancel});
}

void TerminalFrontEnd::askForSavePath(const std::string&,
                                      std::function<void(std::optional<std::string>)> answer) {
    answer(std::nullopt);
}

void TerminalFrontEnd::presentError(const std::string& message) {
    failures = true;
    terminal.complain("tvrn: " + message);
}

void TerminalFrontEnd::presentNotice(const std::string& text) { terminal.complain("tvrn: " + text); }

void TerminalFrontEnd::terminate() { loop.stop(); }

} // namespace tavrin
