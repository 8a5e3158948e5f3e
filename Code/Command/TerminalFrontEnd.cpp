#include "TerminalFrontEnd.h"

#include "InterruptHandler.h"
#include "Terminal.h"
#include "engine/asking/UserPrompts.h"
#include "platform/processes/QueueRunLoop.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <cctype>
#include <charconv>

namespace tavrin {

namespace {

constexpr std::size_t abortButton = 1;

/// A text of a question's context, in bytes.
std::string entry(const PropertyDictionary& context, std::string_view key) {
    const PropertyValue* value = find(context, key);
    if (!value)
        return {};
    const std::u16string text = textValue(*value);
    return text::toBytes(text).value_or(text::toUtf8(text));
}

/// A path out of the form that it has in a URL.
std::string withoutPercentEscapes(std::string_view escaped) {
    std::string path;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        unsigned byte = 0;
        const char* const digits = escaped.data() + i + 1;
        if (escaped[i] == '%' && i + 2 < escaped.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            path += static_cast<char>(byte);
            i += 2;
        } else {
            path += escaped[i];
        }
    }
    return path;
}

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
    AlertAnswer reply;
    switch (alert.kind) {
    case AlertKind::summary:
    case AlertKind::fileListSaved:
    case AlertKind::manualSorting:
        break; // the command says how it ended, and sorts by itself
    case AlertKind::presetMigration:
    case AlertKind::dropletMigration:
    case AlertKind::interruptedRun:
    case AlertKind::nothingToTakeBack:
    case AlertKind::updateAvailable:
    case AlertKind::noUpdate:
    case AlertKind::settingsSetAside:
        break; // the command offers nothing that leads here
    case AlertKind::tagNotPresent:
        terminal.complain(fmt::format("tvrn: {}", alert.title));
        break;
    case AlertKind::iTunesWarning:
    case AlertKind::iPhotoWarning:
        reply = answerToLibraryWarning(alert);
        break;
    case AlertKind::noRecord:
        terminal.complain(fmt::format("tvrn: {} {}", alert.title, asOneLine(alert.text)));
        refused = needsRecord;
        if (needsRecord)
            reply.button = abortButton;
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
        terminal.complain(fmt::format("tvrn: {} {}", alert.title, asOneLine(alert.text)));
        break;
    case AlertKind::pipelineFailed:
        failures = true;
        terminal.complain(fmt::format("tvrn: {} {}", alert.title, asOneLine(alert.text)));
        break;
    }
    answer(reply);
}

AlertAnswer TerminalFrontEnd::answerToLibraryWarning(const Alert& alert) {
    terminal.complain(fmt::format("tvrn: {} {}", alert.title, asOneLine(alert.text)));
    AlertAnswer answer{abortButton, false};
    if (!interactive) {
        refused = true;
        return answer;
    }
    const std::optional<std::string> line =
        terminal.ask("Continue all the same? [y]es, [s]top: ", interrupts.descriptor());
    if (line && (line->starts_with('y') || line->starts_with('Y')))
        answer.button = 0;
    else
        stopped = true;
    return answer;
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

void TerminalFrontEnd::showConfirmationSheet(ConfirmationSheet sheet, const PropertyDictionary& context,
                                             const std::optional<std::string>&,
                                             std::function<void(ConfirmationChoice)> answer) {
    const auto shown = [&](std::string_view key) { return entry(context, key); };
    std::string question;
    switch (sheet) {
    case ConfirmationSheet::rename:
        question = fmt::format("Rename \"{}\" to \"{}\" in {}?", shown("oldName"), shown("newName"),
                               withoutPercentEscapes(entry(context, "path")));
        break;
    case ConfirmationSheet::swap:
        question =
            fmt::format("Swap the names of {} and {}?", shown("fullPathFirst"), shown("fullPathSecond"));
        break;
    case ConfirmationSheet::nameCycle:
        question = fmt::format("Names in {} depend on each other in a circle. Rename these items together?",
                               shown("fullPath"));
        break;
    case ConfirmationSheet::problem:
        tellFailure(entry(context, "title"), entry(context, "message"), entry(context, "fullPath"));
        question = "Go on?";
        break;
    }
    answer(interactive ? choose(question, allowedAnswers(sheet)) : ConfirmationChoice::one);
}

ConfirmationChoice TerminalFrontEnd::choose(const std::string& question,
                                            std::span<const ConfirmationChoice> allowed) {
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
