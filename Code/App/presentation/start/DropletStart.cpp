#include "presentation/start/DropletStart.h"

#include "presentation/Appearance.h"
#include "presentation/Dialogs.h"
#include "presentation/TavrinApplication.h"
#include "presentation/start/FileAddress.h"
#include "presentation/start/WindowArguments.h"
#include "shell/MainController.h"
#include "support/text/DisplayText.h"

#include <fmt/format.h>

#include <QApplication>
#include <QMessageBox>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tavrin {

namespace {

constexpr std::string_view bundleOption = "--droplet";
constexpr std::string_view launcherOption = "--launcher=";

/// Absolute; some desktops tell the launcher as an address. Empty stays empty.
std::string absolute(std::string path) {
    if (path.starts_with("file:"))
        path = FileAddress::path(QByteArray::fromStdString(path)).value_or("");
    const std::vector<std::string> paths = WindowArguments::absolute({std::move(path)});
    return paths.empty() ? "" : paths.front();
}

} // namespace

std::optional<DropletRequest> dropletRequestOf(int count, char** arguments) {
    const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
    DropletRequest request;
    auto word = words.begin();
    bool isDroplet = false;
    if (word != words.end() && *word == bundleOption && word + 1 != words.end()) {
        request.bundlePath = absolute(*(word + 1));
        word += 2;
        isDroplet = true;
    }
    // Some file managers take the quotes of a launcher in their own way and tear the path of the bundle
    // apart. Its pieces come before the launcher; the files, all of them absolute, behind it.
    const auto launcher = std::find_if(word, std::find(word, words.end(), "--"), [](const std::string& each) {
        return each.starts_with(launcherOption);
    });
    if (launcher != words.end() && *launcher != "--" && (isDroplet || launcher == words.begin())) {
        request.launcherPath = absolute(launcher->substr(launcherOption.size()));
        word = launcher + 1;
        isDroplet = true;
    }
    if (!isDroplet)
        return std::nullopt;
    if (word != words.end() && *word == "--")
        ++word;
    request.files = WindowArguments::absolute({word, words.end()});
    return request;
}

namespace {

constexpr int badUsage = 2;

/// Qt ends a program without a display by force.
bool hasDisplay() {
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"})
        if (const char* value = std::getenv(name); value && *value)
            return true;
    return false;
}

int complain(const std::string& message) {
    std::fputs(fmt::format("tavrin: {}\n", display::visible(message)).c_str(), stderr);
    return badUsage;
}

int show(const std::string& error) {
    (void)complain(error);
    QMessageBox* box = Dialogs::presentError(nullptr, error);
    QObject::connect(box, &QMessageBox::finished, qApp, [] { QCoreApplication::exit(badUsage); });
    return QApplication::exec();
}

int show(TavrinApplication& tavrin, DropletRequest::Start start) {
    tavrin.setDroplet(std::move(start.record));
    if (!start.missingFiles.empty()) {
        const std::string message =
            "Some of the dropped files are not there. " + DropletRequest::missingText(start.missingFiles);
        (void)complain(message);
        if (!start.isSilent)
            tavrin.controller().presentError(message);
    }
    tavrin.start({});
    return QApplication::exec();
}

} // namespace

int runDroplet(const DropletRequest& request, char* programName) {
    if (!hasDisplay())
        return complain("there is no display to open a droplet on. In a terminal, \"tvrn rename --recipe "
                        "DROPLET FILES\" renames with it.");
    // What stands on the command line are files, not options of Qt.
    int count = 1;
    char* arguments[] = {programName, nullptr};
    const QApplication application(count, arguments);
    appearance::setUpNames();
    appearance::setUpLooks();
    // Recipes are checked against its catalogue.
    TavrinApplication tavrin({});
    std::variant<DropletRequest::Start, DropletRequest::Failure> start = request.start();
    if (const auto* failure = std::get_if<DropletRequest::Failure>(&start))
        return failure->isSilent ? complain(failure->message) : show(failure->message);
    return show(tavrin, std::get<DropletRequest::Start>(std::move(start)));
}

} // namespace tavrin
