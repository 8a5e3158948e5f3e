#include "presentation/start/DropletStart.h"

#include "presentation/Dialogs.h"
#include "presentation/TavrinApplication.h"
#include "presentation/start/ApplicationSetup.h"
#include "shell/commands/MainController.h"
#include "support/text/DisplayText.h"

#include <fmt/format.h>

#include <QApplication>
#include <QMessageBox>
#include <cstdio>
#include <cstdlib>

namespace tavrin {

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

int DropletStart::run(const DropletRequest& request, char* programName) {
    if (!hasDisplay())
        return complain("there is no display to open a droplet on. In a terminal, \"tvrn rename --recipe "
                        "DROPLET FILES\" renames with it.");
    // What stands on the command line are files, not options of Qt.
    int count = 1;
    char* arguments[] = {programName, nullptr};
    const QApplication application(count, arguments);
    ApplicationSetup::names();
    ApplicationSetup::looks();
    // Recipes are checked against its catalogue.
    TavrinApplication tavrin({});
    std::variant<DropletRequest::Start, DropletRequest::Failure> start = request.start();
    if (const auto* failure = std::get_if<DropletRequest::Failure>(&start))
        return failure->isSilent ? complain(failure->message) : show(failure->message);
    return show(tavrin, std::get<DropletRequest::Start>(std::move(start)));
}

} // namespace tavrin
