#include "presentation/Spoken.h"
#include "presentation/WindowFixture.h"
#include "presentation/WindowSpeech.h"

namespace tavrin::test {

/// Keys that work wherever the focus is, and what is said on the way.
using KeysOfTheWindow = WindowFixture;

TEST_F(KeysOfTheWindow, GoRoundTheParts) {
    start({makeFile("a.txt")});
    application->window().activateWindow();
    controller().showMultistepDrawer();
    const auto part = [] {
        for (const QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget())
            for (const char* name : {"stepsPane", "settingsPane", "listPages", "messageBars", "bottomRow"})
                if (widget->objectName() == name)
                    return std::string(name);
        return std::string("none");
    };
    find("stepsView")->setFocus();
    controller().presentError("It failed. For a reason.");
    EXPECT_EQ(Spoken::lastSaid(), "It failed. For a reason.");
    EXPECT_EQ(part(), "stepsPane") << "a bar takes no focus";
    Names visited;
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
        visited.push_back(part());
    }
    EXPECT_EQ(visited,
              (Names{"settingsPane", "listPages", "messageBars", "bottomRow", "stepsPane", "settingsPane"}));
    click("closeMessage");
    find("previewTableView")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
    EXPECT_EQ(part(), "bottomRow");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(part(), "listPages");
}

TEST_F(KeysOfTheWindow, CommandsWinInFieldsButTextKeysDoNot) {
    start({makeFile("abc.txt")});
    application->window().activateWindow();
    chooseAction("Add to front");
    type("string", "some text");
    auto* field = QApplication::focusWidget();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "some text");
    QTest::keyClick(field, Qt::Key_E, Qt::ControlModifier);
    waitFor<QDialog>("saveListDialog")->reject();
    waitForNames({"some textabc.txt"});
    waitUntil("the edit is told", [] { return Spoken::lastSaid() == "1 out of 1 items need renaming."; });
}

TEST(WindowSpeech, TellsHowLongARunStillTakes) {
    EXPECT_EQ(WindowSpeech::progressText(0, 100, 10000), "0 percent");
    EXPECT_EQ(WindowSpeech::progressText(43, 100, 11000), "43 percent, about 14 seconds left");
    EXPECT_EQ(WindowSpeech::progressText(999, 1000, 10000), "99 percent, about 1 second left");
    EXPECT_EQ(WindowSpeech::progressText(1, 300000, 100), "0 percent, about 499 minutes left");
}

} // namespace tavrin::test
