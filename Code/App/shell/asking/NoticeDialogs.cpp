#include "shell/asking/NoticeDialogs.h"

#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <utility>

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

// ---- the notice of a worker

/// The dialogs that somebody waits for, from the moment they are asked for.
class MissingTagNotice::Dialogs {
  public:
    int open() {
        const std::lock_guard lock(mutex);
        ids.insert(++lastId);
        return lastId;
    }
    void close(int id) {
        const std::lock_guard lock(mutex);
        ids.erase(id);
        changed.notify_all();
    }
    void wait(int id) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return hasEnded || !ids.contains(id); });
    }
    void end() {
        const std::lock_guard lock(mutex);
        hasEnded = true;
        changed.notify_all();
    }
    [[nodiscard]] bool haveEnded() {
        const std::lock_guard lock(mutex);
        return hasEnded;
    }

  private:
    std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::set<int> ids;
    int lastId = 0;
    bool hasEnded = false;
};

MissingTagNotice::MissingTagNotice(RunLoop& mainLoop, Show showDialog)
    : loop(mainLoop), show(std::move(showDialog)), dialogs(std::make_shared<Dialogs>()) {}

MissingTagNotice::~MissingTagNotice() { end(); }

void MissingTagNotice::end() { dialogs->end(); }

void MissingTagNotice::tellThatTagIsNotPresent() {
    if (dialogs->haveEnded())
        return;
    if (loop.isCurrent()) { // who is to close the dialog must not wait for it
        show([] {});
        return;
    }
    const int id = dialogs->open();
    // Closes when whoever shows the dialog, or would have, lets go of it.
    auto closing = std::shared_ptr<void>(nullptr, [all = dialogs, id](void*) { all->close(id); });
    loop.post([this, all = dialogs, id, closing = std::move(closing)] {
        if (!all->haveEnded())
            show([all, id, closing] { all->close(id); });
    });
    dialogs->wait(id);
}

} // namespace tavrin
