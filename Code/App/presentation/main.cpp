#include "presentation/Appearance.h"
#include "presentation/TavrinApplication.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <clocale>
#include <cstdio>
#include <stdexcept>

namespace {

std::vector<std::string> absolutePaths(int count, char** arguments) {
    std::vector<std::string> paths;
    const std::string folder = QDir::currentPath().toStdString();
    for (int i = 1; i < count; ++i) {
        const std::string path = arguments[i];
        if (!path.empty())
            paths.push_back(path.front() == '/' ? path : folder + "/" + path);
    }
    return paths;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    // Numbers in files are free of the locale, which Qt has just set.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName("tavrin");
    QApplication::setApplicationDisplayName("Tavrin");
    QApplication::setDesktopFileName("net.calderwick.tavrin");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(
        QIcon::fromTheme("net.calderwick.tavrin", QIcon(":/icons/net.calderwick.tavrin.svg")));
    tavrin::Appearance::apply();
    try {
        tavrin::TavrinApplication tavrin({});
        tavrin.start(absolutePaths(argc, argv));
        return QApplication::exec();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "tavrin: %s\n", failure.what());
        return 1;
    }
}
