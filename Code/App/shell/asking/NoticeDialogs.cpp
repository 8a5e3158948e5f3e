#include "shell/asking/NoticeDialogs.h"

#include "platform/propertylists/UserDefaults.h"

namespace tavrin {

namespace {

struct Memory {
    std::string_view suppressingDefault; ///< any stored value switches the dialog off; empty: none does
    std::string_view helpAnchor;
};

Memory memoryOf(NoticeDialog dialog) {
    switch (dialog) {
    case NoticeDialog::noFilesSelected:
        return {"don't remind me about no files being selected", "helpTopic7"};
    case NoticeDialog::inconsistentSettings:
        return {"don't remind me about inconsistent settings", ""};
    case NoticeDialog::dropletInformation:
        return {"don't show droplet information again", "helpTopic28"};
    case NoticeDialog::dropletEditMode:
        return {"don't show droplet edit information again", "helpTopic18"};
    case NoticeDialog::simpleTemplateFileList:
        return {"", "helpTopic29"};
    }
    return {};
}

constexpr const char* showTagNotPresentKey = "showTagNotPresentDialog";

constexpr const char* tagNotPresentTitle =
    "Some files will not be renamed as they do not contain all the required information.";
constexpr const char* tagNotPresentText =
    "Tavrin 9 will only change the names of the files that contain all the information required to process "
    "all the tags in the pattern you have chosen.\n\nFiles that do not contain any or only part of the "
    "required information will be left entirely unchanged.";

} // namespace

void NoticeDialogs::showNoFilesSelectedDialog(Then then) {
    showWithMemory(NoticeDialog::noFilesSelected, std::move(then));
}

void NoticeDialogs::showInconsistentSettingsDialog(Then then) {
    showWithMemory(NoticeDialog::inconsistentSettings, std::move(then));
}

void NoticeDialogs::showDropletInformation(Then then) {
    if (services.defaults.objectForKey(memoryOf(NoticeDialog::dropletInformation).suppressingDefault)) {
        then(NoticeAnswer::ok);
        return;
    }
    showWithMemory(NoticeDialog::dropletInformation, std::move(then));
}

void NoticeDialogs::showDropletEditModeInfo(Then then) {
    showWithMemory(NoticeDialog::dropletEditMode, std::move(then));
}

void NoticeDialogs::showSimpleTemplateInformation() {
    showWithMemory(NoticeDialog::simpleTemplateFileList, [](int) {});
}

void NoticeDialogs::showTagNotPresentDialog(std::function<void()> then) {
    if (services.mode != OperationMode::normal || !services.defaults.boolForKey(showTagNotPresentKey)) {
        then();
        return;
    }
    services.frontEnd.showAlert({.kind = AlertKind::tagNotPresent,
                                 .title = tagNotPresentTitle,
                                 .text = tagNotPresentText,
                                 .buttons = {"OK"},
                                 .hasSuppressionBox = true,
                                 .helpAnchor = "helpTopic67"},
                                [this, then = std::move(then)](AlertAnswer answer) {
                                    if (answer.suppress)
                                        services.defaults.setObject(showTagNotPresentKey, false);
                                    then();
                                });
}

void NoticeDialogs::showWithMemory(NoticeDialog dialog, Then then) {
    const Memory memory = memoryOf(dialog);
    const std::string key(memory.suppressingDefault);
    if (!key.empty() && services.defaults.objectForKey(key)) {
        then(NoticeAnswer::help);
        return;
    }
    services.frontEnd.showNotice(
        dialog, [this, key, anchor = memory.helpAnchor, then = std::move(then)](NoticeAnswer answer) {
            if (answer.doNotShowAgain && !key.empty())
                services.defaults.setObject(key, true);
            if (answer.choice == NoticeAnswer::help && !anchor.empty())
                services.frontEnd.showHelp(anchor);
            then(answer.choice);
        });
}

} // namespace tavrin
