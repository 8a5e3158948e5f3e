#include "presentation/start/ApplicationSetup.h"

#include "presentation/Appearance.h"

#include <QApplication>
#include <QIcon>
#include <clocale>

namespace tavrin {

void ApplicationSetup::names() {
    // Numbers in files are free of the locale, which Qt has just set.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName("tavrin");
    QApplication::setDesktopFileName("net.calderwick.tavrin");
}

void ApplicationSetup::looks() {
    QApplication::setApplicationDisplayName("Tavrin");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(
        QIcon::fromTheme("net.calderwick.tavrin", QIcon(":/icons/net.calderwick.tavrin.svg")));
    Appearance::apply();
}

} // namespace tavrin
