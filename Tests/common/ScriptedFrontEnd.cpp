#include "common/ScriptedFrontEnd.h"

#include "common/Testing.h"
namespace tavrin::test {

namespace {

/// In the order of AlertKind.
constexpr std::array alertNames{
    "noActiveActions",   "filesNotAdded",    "itemsNotRemoved", "manualSorting",  "runQuestion",
    "nothingToTakeBack", "summary",          "fileListSaved",   "dropletLocked",  "dropletNotCreated",
    "dropletIsSilent",   "dropletUpgrade",   "presetDeletion",  "exifSortingOff", "tagNotPresent",
    "presetMigration",   "dropletMigration", "updateAvailable", "noUpdate",       "settingsSetAside",
    "namesByHandLost"};
/// In the order of NoticeDialog.
constexpr std::array noticeNames{"noFilesSelected", "inconsistentSettings", "dropletInformation",
                                 "dropletEditMode", "simpleTemplateFileList"};

} // namespace

ScriptedFrontEnd::~ScriptedFrontEnd() {
    for (const Expectation& expectation : script)
        ADD_FAILURE() << "never asked: " << expectation.question;
}

void ScriptedFrontEnd::answerHeld(const Answer& answer) {
    ASSERT_TRUE(held) << "no question is held";
    std::exchange(held, nullptr)(answer);
}

std::optional<ScriptedFrontEnd::Answer> ScriptedFrontEnd::nextAnswer(const std::string& question) {
    if (script.empty() || script.front().question != question) {
        ADD_FAILURE() << "unexpected question: " << question
                      << ", expected: " << (script.empty() ? "none" : script.front().question);
        return std::nullopt;
    }
    note("asked " + question);
    const Answer answer = std::move(script.front().answer);
    script.pop_front();
    return answer;
}

void ScriptedFrontEnd::showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) {
    alerts.push_back(alert);
    askFor(fmt::format("alert {}", alertNames.at(static_cast<std::size_t>(alert.kind))), answer);
}

void ScriptedFrontEnd::showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) {
    askFor(fmt::format("notice {}", noticeNames.at(static_cast<std::size_t>(dialog))), answer);
}

void ScriptedFrontEnd::ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) {
    const std::string words = inWords(question);
    askFor(words.substr(0, words.find(' ')), answer);
}

void ScriptedFrontEnd::terminate() {
    EXPECT_FALSE(isTerminated);
    isTerminated = true;
    note("terminate");
    onProgress();
}

} // namespace tavrin::test
