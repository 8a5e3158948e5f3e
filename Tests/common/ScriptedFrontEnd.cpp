#include "common/ScriptedFrontEnd.h"

#include "actions/BaseRenameAction.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>

namespace tavrin::test {

namespace {

/// In the order of AlertKind.
constexpr std::array alertNames{"noActiveActions", "filesNotAdded",    "itemsNotRemoved",   "manualSorting",
                                "runQuestion",     "interruptedRun",   "nothingToTakeBack", "summary",
                                "fileListSaved",   "dropletLocked",    "dropletNotCreated", "dropletIsSilent",
                                "dropletUpgrade",  "presetDeletion",   "exifSortingOff",    "tagNotPresent",
                                "presetMigration", "dropletMigration", "updateAvailable",   "noUpdate",
                                "settingsSetAside"};
/// In the order of NoticeDialog.
constexpr std::array noticeNames{"noFilesSelected", "inconsistentSettings", "dropletInformation",
                                 "dropletEditMode", "simpleTemplateFileList"};

struct InWords {
    std::string operator()(const RenameQuestion& q) const {
        return "rename " + q.oldName + " -> " + q.newName;
    }
    std::string operator()(const SwapQuestion& q) const { return "swap " + q.oldName + " -> " + q.newName; }
    std::string operator()(const NameCycleQuestion& q) const { return "cycle " + q.fullPath; }
    std::string operator()(const ProblemReport& q) const { return "problem " + q.title + ": " + q.fullPath; }
    std::string operator()(const LibraryWarning& q) const {
        return q.library == LibraryWarning::Library::iTunes ? "iTunes" : "iPhoto";
    }
    std::string operator()(const NoRecordQuestion& q) const { return "no record: " + q.reason; }
    std::string operator()(const PipelineFailure& q) const { return "failed " + q.title; }
};

} // namespace

std::string inWords(const RunQuestion& question) { return std::visit(InWords(), question); }

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
void ScriptedFrontEnd::askFor(const std::string& question, const std::function<void(Given)>& handler) {
    if (script.empty() || script.front().question != question) {
        ADD_FAILURE() << "unexpected question: " << question
                      << ", expected: " << (script.empty() ? "none" : script.front().question);
        return;
    }
    note("asked " + question);
    const Answer answer = std::move(script.front().answer);
    script.pop_front();
    const Giver give = [handler](const Answer& chosen) {
        if (const auto* given = std::get_if<Given>(&chosen))
            handler(*given);
        else if (!std::holds_alternative<Closed>(chosen))
            ADD_FAILURE() << "the script has an answer of another kind";
    };
    if (std::holds_alternative<Held>(answer))
        held = give;
    else
        give(answer);
}

void ScriptedFrontEnd::showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    alerts.push_back(alert);
    askFor(fmt::format("alert {}", alertNames.at(static_cast<std::size_t>(alert.kind))), answer);
}

void ScriptedFrontEnd::showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    askFor(fmt::format("notice {}", noticeNames.at(static_cast<std::size_t>(dialog))), answer);
}

void ScriptedFrontEnd::ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) {
    runQuestions.push_back(question);
    const std::string words = inWords(question);
    askFor(words.substr(0, words.find(' ')), answer);
}

void ScriptedFrontEnd::showProcessingErrors(const FailureReport& report, std::function<void()> closed) {
    failures = report;
    askFor<AlertAnswer>("errors", [closed](const AlertAnswer&) { closed(); });
}

void ScriptedFrontEnd::withdrawQuestions() {
    note("withdrawQuestions");
    held = nullptr;
}

void ScriptedFrontEnd::askForFilesToAdd(const std::string& startFolder,
                                        std::function<void(std::optional<FilesToAdd>)> answer) {
    note("panel starts at " + startFolder);
    askFor("files to add", answer);
}

void ScriptedFrontEnd::askForFileListFormat(std::function<void(FileListChoice)> answer) {
    askFor("list format", answer);
}

void ScriptedFrontEnd::askForSavePath(const std::string& title,
                                      std::function<void(std::optional<std::string>)> answer) {
    note("panel titled " + title);
    askFor("save path", answer);
}

void ScriptedFrontEnd::askForDropletPath(const std::string& title, const std::string& startFolder,
                                         std::function<void(std::optional<std::string>)> answer) {
    note(fmt::format("panel titled {} starts at {}", title, startFolder));
    askFor("droplet path", answer);
}

void ScriptedFrontEnd::askForDroplets(const LocatePanel& panel,
                                      std::function<void(std::optional<std::vector<std::string>>)> answer) {
    note("panel titled " + panel.title + ", " + panel.message + ", " + panel.prompt);
    askFor("droplets", answer);
}

void ScriptedFrontEnd::askToTakeBack(const TakeBackQuestion& question, std::function<void(bool)> answer) {
    takeBack = question;
    askFor("take back " + question.title, answer);
}

void ScriptedFrontEnd::askForFolder(const LocatePanel& panel,
                                    std::function<void(std::optional<std::string>)> answer) {
    note("panel titled " + panel.title);
    askFor("folder", answer);
}

void ScriptedFrontEnd::fetchAddress(const std::string& address, std::size_t,
                                    std::function<void(FetchedAddress)> answer) {
    askFor("fetch " + address, answer);
}

void ScriptedFrontEnd::terminate() {
    EXPECT_FALSE(isTerminated);
    isTerminated = true;
    note("terminate");
    onProgress();
}

void ScriptedFrontEnd::selectMainTab(MainTab tab) { note(fmt::format("mainTab {}", static_cast<int>(tab))); }

void ScriptedFrontEnd::selectPreviewTab(PreviewTab tab) {
    note(fmt::format("previewTab {}", static_cast<int>(tab)));
}

void ScriptedFrontEnd::previewFinished() {
    ++finishedPreviews;
    onProgress();
}

void ScriptedFrontEnd::fillPresetMenu(const std::vector<std::u16string>& titles) {
    note(fmt::format("fillPresetMenu {}", titles.size()));
}

void ScriptedFrontEnd::showActionPanel(BaseRenameAction& action) { note("panel " + action.actionName()); }

void ScriptedFrontEnd::setDividerPosition(double position) {
    note(fmt::format("divider {}", position));
    onDividerMoved(position);
}

} // namespace tavrin::test
