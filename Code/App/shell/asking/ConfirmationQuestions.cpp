#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/ConfirmationFlow.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <string_view>

namespace tavrin {

// The questions of a run: the answering half of ConfirmationFlow.

namespace {

/// A path as part of a URL: what can't stand in one as "%" and two hexadecimal digits.
std::u16string percentEscaped(std::string_view path) {
    constexpr std::string_view legal = "-_.!~*'();/?:@&=+$,";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::u16string escaped;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isAlphanumeric =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        if (isAlphanumeric || legal.find(c) != std::string_view::npos) {
            escaped += static_cast<char16_t>(byte);
        } else {
            escaped += u'%';
            escaped += static_cast<char16_t>(digits[byte >> 4]);
            escaped += static_cast<char16_t>(digits[byte & 0xF]);
        }
    }
    return escaped;
}

struct LibraryWarning {
    const char* title;
    const char* text;
};

const LibraryWarning iTunesWarning{
    "Renaming files in your iTunes Music Library may damage your music library.",
    "Tavrin 9 thinks that you might be attempting to change the names of music files that are managed by "
    "iTunes.\n\niTunes uses the name and location of multimedia files to keep track of them. Changing the "
    "names will result in iTunes no longer being able to find the files and will break meta-information, "
    "such as playlists.\n\nYou should first export the files you want to rename from iTunes, then rename "
    "them and finally re-import them back into your iTunes library."};

const LibraryWarning iPhotoWarning{
    "Renaming files in your iPhoto Library may damage your library.",
    "Tavrin 9 thinks that you might be attempting to change the names of files that are managed by "
    "iPhoto.\n\niPhoto uses the name and location of multimedia files to keep track of them. Changing the "
    "names will result in iPhoto no longer being able to find the files and will break meta-information, "
    "such as slideshows.\n\nYou should first export the files you want to rename from iPhoto, then rename "
    "them and finally re-import them back into your iPhoto library."};

} // namespace

void ConfirmationFlow::confirmRename(const RenameQuestion& question, ConfirmationAnswerPointer answer) {
    dialogContext.insert_or_assign("path", percentEscaped(question.path));
    if (question.fullPath)
        dialogContext.insert_or_assign("fullPath", text::fromBytes(*question.fullPath));
    dialogContext.insert_or_assign("newName", text::fromBytes(question.newName));
    dialogContext.insert_or_assign("oldName", text::fromBytes(question.oldName));
    showSheet(ConfirmationSheet::rename, question.fullPath, std::move(answer));
}

void ConfirmationFlow::confirmSwap(const SwapQuestion& question, ConfirmationAnswerPointer answer) {
    dialogContext.insert_or_assign("path", percentEscaped(question.path));
    dialogContext.insert_or_assign("fullPathFirst", text::fromBytes(question.fullPathFirst));
    dialogContext.insert_or_assign("fullPathSecond", text::fromBytes(question.fullPathSecond));
    dialogContext.insert_or_assign("newName", text::fromBytes(question.newName));
    dialogContext.insert_or_assign("oldName", text::fromBytes(question.oldName));
    showSheet(ConfirmationSheet::swap, std::nullopt, std::move(answer));
}

void ConfirmationFlow::confirmNameCycle(const NameCycleQuestion& question, ConfirmationAnswerPointer answer) {
    dialogContext.insert_or_assign("fullPath", text::fromBytes(question.fullPath));
    showSheet(ConfirmationSheet::nameCycle, question.fullPath, std::move(answer));
}

void ConfirmationFlow::reportProblem(const ProblemReport& report, ConfirmationAnswerPointer answer) {
    dialogContext.insert_or_assign("title", text::fromBytes(report.title));
    dialogContext.insert_or_assign("message", text::fromBytes(report.message));
    dialogContext.insert_or_assign("path", percentEscaped(report.path));
    dialogContext.insert_or_assign("fullPath", text::fromBytes(report.fullPath));
    showSheet(ConfirmationSheet::problem, report.fullPath, std::move(answer));
}

void ConfirmationFlow::showSheet(ConfirmationSheet sheet, const std::optional<std::string>& previewPath,
                                 ConfirmationAnswerPointer answer) {
    // A run that is being stopped asks nothing more, but tells what fails; unless nobody is left to be told.
    if (services.engine.isStopRequested() && (sheet != ConfirmationSheet::problem || tellInstead)) {
        answer->give(ConfirmationChoice::stop);
        return;
    }
    services.frontEnd.showConfirmationSheet(sheet, dialogContext, previewPath,
                                            [this, shared = SharedAnswer(std::move(answer))](
                                                ConfirmationChoice choice) { giveAnswer(shared, choice); });
}

void ConfirmationFlow::giveAnswer(const SharedAnswer& answer, ConfirmationChoice choice) {
    dialogChoice = static_cast<int>(choice);
    answer->give(choice);
}

void ConfirmationFlow::showITunesWarning(ConfirmationAnswerPointer answer) {
    showLibraryWarning(services.settings.shouldPreventAccidentalITunesLibraryDamage(),
                       AlertKind::iTunesWarning, std::move(answer));
}

void ConfirmationFlow::showIPhotoWarning(ConfirmationAnswerPointer answer) {
    showLibraryWarning(services.settings.shouldPreventAccidentalIPhotoLibraryDamage(),
                       AlertKind::iPhotoWarning, std::move(answer));
}

void ConfirmationFlow::showLibraryWarning(bool shouldWarn, AlertKind kind, ConfirmationAnswerPointer answer) {
    const SharedAnswer shared(std::move(answer));
    if (services.engine.isStopRequested()) {
        giveAnswer(shared, ConfirmationChoice::stop);
        return;
    }
    if (!shouldWarn) {
        giveAnswer(shared, ConfirmationChoice::one);
        return;
    }
    const LibraryWarning& warning = kind == AlertKind::iTunesWarning ? iTunesWarning : iPhotoWarning;
    services.frontEnd.showAlert(
        {.kind = kind, .title = warning.title, .text = warning.text, .buttons = {"Continue", "Abort"}},
        [this, shared](AlertAnswer given) {
            giveAnswer(shared, given.button == 0 ? ConfirmationChoice::one : ConfirmationChoice::stop);
        });
}

void ConfirmationFlow::confirmWithoutRecord(const std::string& reason, ConfirmationAnswerPointer answer) {
    // Nobody sits before a silent droplet.
    if (services.mode == OperationMode::dropletRun && services.settings.shouldCreateSilentDroplets() != 0) {
        answer->give(ConfirmationChoice::one);
        return;
    }
    services.frontEnd.showAlert({.kind = AlertKind::noRecord,
                                 .title = "This renaming can't be recorded, so it could not be undone.",
                                 .text = fmt::format("The record of the names can't be written: {}.", reason),
                                 .buttons = {"Rename All the Same", "Cancel"}},
                                [shared = SharedAnswer(std::move(answer))](AlertAnswer given) {
                                    shared->give(given.button == 0 ? ConfirmationChoice::one
                                                                   : ConfirmationChoice::stop);
                                });
}

void ConfirmationFlow::showPipelineFailed(const std::string& title, const std::string& text,
                                          ConfirmationAnswerPointer answer) {
    services.frontEnd.showAlert(
        {.kind = AlertKind::pipelineFailed,
         .style = AlertStyle::critical,
         .title = title,
         .text = text,
         .buttons = {"Quit"}},
        [shared = SharedAnswer(std::move(answer))](AlertAnswer) { shared->give(ConfirmationChoice::one); });
}

} // namespace tavrin
