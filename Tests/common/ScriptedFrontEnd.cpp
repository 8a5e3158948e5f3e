#include "common/ScriptedFrontEnd.h"

#include "actions/BaseRenameAction.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tavrin::test {

namespace {

std::string nameOf(AlertKind kind) {
    switch (kind) {
    case AlertKind::noActiveActions:
        return "noActiveActions";
    case AlertKind::filesNotAdded:
        return "filesNotAdded";
    case AlertKind::itemsNotRemoved:
        return "itemsNotRemoved";
    case AlertKind::manualSorting:
        return "manualSorting";
    case AlertKind::iTunesWarning:
        return "iTunesWarning";
    case AlertKind::iPhotoWarning:
        return "iPhotoWarning";
    case AlertKind::noRecord:
        return "noRecord";
    case AlertKind::interruptedRun:
        return "interruptedRun";
    case AlertKind::nothingToTakeBack:
        return "nothingToTakeBack";
    case AlertKind::summary:
        return "summary";
    case AlertKind::fileListSaved:
        return "fileListSaved";
    case AlertKind::pipelineFailed:
        return "pipelineFailed";
    case AlertKind::dropletLocked:
        return "dropletLocked";
    case AlertKind::dropletNotCreated:
        return "dropletNotCreated";
    case AlertKind::dropletIsSilent:
        return "dropletIsSilent";
    case AlertKind::dropletUpgrade:
        return "dropletUpgrade";
    case AlertKind::presetDeletion:
        return "presetDeletion";
    case AlertKind::exifSortingOff:
        return "exifSortingOff";
    case AlertKind::tagNotPresent:
        return "tagNotPresent";
    case AlertKind::presetMigration:
        return "presetMigration";
    case AlertKind::dropletMigration:
        return "dropletMigration";
    case AlertKind::updateAvailable:
        return "updateAvailable";
    case AlertKind::noUpdate:
        return "noUpdate";
    case AlertKind::settingsSetAside:
        return "settingsSetAside";
    }
    return "?";
}

std::string nameOf(NoticeDialog dialog) {
    switch (dialog) {
    case NoticeDialog::noFilesSelected:
        return "noFilesSelected";
    case NoticeDialog::inconsistentSettings:
        return "inconsistentSettings";
    case NoticeDialog::dropletInformation:
        return "dropletInformation";
    case NoticeDialog::dropletEditMode:
        return "dropletEditMode";
    case NoticeDialog::simpleTemplateFileList:
        return "simpleTemplateFileList";
    }
    return "?";
}

std::string nameOf(ConfirmationSheet sheet) {
    switch (sheet) {
    case ConfirmationSheet::rename:
        return "rename";
    case ConfirmationSheet::swap:
        return "swap";
    case ConfirmationSheet::nameCycle:
        return "nameCycle";
    case ConfirmationSheet::problem:
        return "problem";
    }
    return "?";
}

} // namespace

ScriptedFrontEnd::~ScriptedFrontEnd() {
    for (const Expectation& expectation : script)
        ADD_FAILURE() << "never asked: " << expectation.question;
}

void ScriptedFrontEnd::expect(std::string question, Answer answer) {
    script.push_back({std::move(question), std::move(answer)});
}

void ScriptedFrontEnd::answerHeld(const Answer& answer) {
    ASSERT_TRUE(held) << "no question is held";
    std::exchange(held, nullptr)(answer);
}

template <typename Given>
ScriptedFrontEnd::Giver ScriptedFrontEnd::giverOf(std::function<void(Given)> handler) {
    return [handler = std::move(handler)](const Answer& answer) {
        if (const auto* given = std::get_if<Given>(&answer))
            handler(*given);
        else if (!std::holds_alternative<Closed>(answer))
            ADD_FAILURE() << "the script has an answer of another kind";
    };
}

void ScriptedFrontEnd::ask(const std::string& question, Giver giver) {
    if (script.empty() || script.front().question != question) {
        ADD_FAILURE() << "unexpected question: " << question
                      << ", expected: " << (script.empty() ? "none" : script.front().question);
        return;
    }
    note("asked " + question);
    const Answer answer = std::move(script.front().answer);
    script.pop_front();
    if (std::holds_alternative<Held>(answer))
        held = std::move(giver);
    else
        giver(answer);
}

void ScriptedFrontEnd::showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    alerts.push_back(alert);
    ask("alert " + nameOf(alert.kind), giverOf(std::move(answer)));
}

void ScriptedFrontEnd::showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    ask(fmt::format("notice {}", nameOf(dialog)), giverOf(std::move(answer)));
}

void ScriptedFrontEnd::showConfirmationSheet(ConfirmationSheet sheet, const PropertyDictionary& context,
                                             const std::optional<std::string>& previewPath,
                                             std::function<void(ConfirmationChoice)> answer) {
    sheets.push_back({sheet, context, previewPath});
    ask("sheet " + nameOf(sheet), giverOf(std::move(answer)));
}

void ScriptedFrontEnd::showProcessingErrors(const FailureReport& report, std::function<void()> closed) {
    failures = report;
    ask("errors", [closed = std::move(closed)](const Answer& answer) {
        if (!std::holds_alternative<Closed>(answer))
            closed();
    });
}

void ScriptedFrontEnd::askForFilesToAdd(const std::string& startFolder,
                                        std::function<void(std::optional<FilesToAdd>)> answer) {
    note("panel starts at " + startFolder);
    ask("files to add", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::askForFileListFormat(std::function<void(FileListChoice)> answer) {
    ask("list format", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::askForSavePath(const std::string& title,
                                      std::function<void(std::optional<std::string>)> answer) {
    note("panel titled " + title);
    ask("save path", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::askForDropletPath(const std::string& title, const std::string& startFolder,
                                         std::function<void(std::optional<std::string>)> answer) {
    note(fmt::format("panel titled {} starts at {}", title, startFolder));
    ask("droplet path", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::askForDroplets(const LocatePanel& panel,
                                      std::function<void(std::optional<std::vector<std::string>>)> answer) {
    note("panel titled " + panel.title + ", " + panel.message + ", " + panel.prompt);
    ask("droplets", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::askToTakeBack(const TakeBackQuestion& question, std::function<void(bool)> answer) {
    takeBack = question;
    ask("take back " + question.title,
        giverOf<AlertAnswer>([answer](const AlertAnswer& given) { answer(given.button == 0); }));
}

void ScriptedFrontEnd::askForFolder(const LocatePanel& panel,
                                    std::function<void(std::optional<std::string>)> answer) {
    note("panel titled " + panel.title);
    ask("folder", giverOf(std::move(answer)));
}

void ScriptedFrontEnd::fetchAddress(const std::string& address, std::size_t,
                                    std::function<void(FetchedAddress)> answer) {
    ask("fetch " + address, giverOf(std::move(answer)));
}

void ScriptedFrontEnd::terminate() {
    EXPECT_FALSE(isTerminated);
    isTerminated = true;
    note("terminate");
    if (onProgress)
        onProgress();
}

void ScriptedFrontEnd::selectMainTab(MainTab tab) { note(fmt::format("mainTab {}", static_cast<int>(tab))); }

void ScriptedFrontEnd::selectPreviewTab(PreviewTab tab) {
    note(fmt::format("previewTab {}", static_cast<int>(tab)));
}

void ScriptedFrontEnd::setColumnWidth(PreviewColumn column, int minimum, int maximum, int width) {
    if (column == PreviewColumn::regex6 || column == PreviewColumn::path)
        note(fmt::format("columns {} {} {}", minimum, maximum, width));
}

void ScriptedFrontEnd::previewFinished() {
    ++finishedPreviews;
    if (onProgress)
        onProgress();
}

void ScriptedFrontEnd::fillActionMenus(const std::vector<std::u16string>& actions,
                                       const std::vector<std::u16string>& categories) {
    note(actions.empty() || categories.empty() ? "empty menus" : "fillActionMenus");
}

void ScriptedFrontEnd::fillPresetMenu(const std::vector<std::u16string>& titles) {
    note(fmt::format("fillPresetMenu {}", titles.size()));
}

void ScriptedFrontEnd::showActionPanel(BaseRenameAction& action) { note("panel " + action.actionName()); }

void ScriptedFrontEnd::setDividerPosition(double position) {
    note(fmt::format("divider {}", position));
    if (onDividerMoved)
        onDividerMoved(position);
}

} // namespace tavrin::test
