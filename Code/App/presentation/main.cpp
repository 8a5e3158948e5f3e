#include "documents/DropletScript.h"
#include "platform/desktop/FileManagerMenus.h"
#include "platform/files/Descriptor.h"
#include "presentation/Appearance.h"
#include "presentation/TavrinApplication.h"
#include "presentation/start/DropletStart.h"
#include "presentation/start/WindowArguments.h"
#include "presentation/start/WindowLink.h"
#include "support/text/DisplayText.h"

#include <QApplication>
#include <cstdio>
#include <stdexcept>

namespace {

using tavrin::WindowArguments;
using tavrin::WindowLink;

int endWith(const WindowArguments::End& end) {
    std::fputs(end.text.c_str(), end.status == 0 ? stdout : stderr);
    return end.status;
}

/// The window until it is closed.
int show(WindowLink* link, const std::vector<std::string>& paths) {
    tavrin::appearance::setUpLooks();
    tavrin::DropletScript::removeOrphans();
    tavrin::FileManagerMenus menus(tavrin::FileManagerMenus::runningProgram());
    tavrin::FileManagerMenus::setSharedInstance(&menus);
    tavrin::TavrinApplication tavrin({});
    if (link)
        link->setOpen([&tavrin](const std::vector<std::string>& later) { tavrin.open(later); });
    tavrin.start(paths);
    const int status = QApplication::exec();
    if (link)
        link->setOpen(nullptr);
    return status;
}

int start(int argc, char** argv) {
    tavrin::appearance::preferPortal();
    if (const auto droplet = tavrin::dropletRequestOf(argc, argv))
        return tavrin::runDroplet(*droplet, argv[0]);
    auto taken = WindowArguments::take(argc, argv);
    if (const auto* end = std::get_if<WindowArguments::End>(&taken))
        return endWith(*end);
    const QApplication application(argc, argv);
    tavrin::appearance::setUpNames();
    const auto given = std::get<WindowArguments>(taken).paths(argc, argv);
    if (const auto* end = std::get_if<WindowArguments::End>(&given))
        return endWith(*end);
    const auto& paths = std::get<std::vector<std::string>>(given);
    const std::unique_ptr<WindowLink> link = WindowLink::forThisSession();
    // A window that does not answer is no reason to leave the user without one.
    if (link && link->join(paths) == WindowLink::Role::handedOver)
        return 0;
    return show(link.get(), paths);
}

} // namespace

int main(int argc, char** argv) {
    tavrin::openStandardDescriptors();
    try {
        return start(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tavrin: %s\n", tavrin::display::visible(failure.what()).c_str());
        return 1;
    }
}
