#include "presentation/EnglishPlurals.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryFile>
#include <clocale>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // A screen large enough for the whole window.
    QTemporaryFile screens;
    if (!screens.open())
        return 1;
    screens.write(R"({"screens": [{"name": "test", "x": 0, "y": 0, "width": 1920, "height": 1080}]})");
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    const QApplication application(argc, argv);
    tavrin::EnglishPlurals plurals;
    QCoreApplication::installTranslator(&plurals);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
