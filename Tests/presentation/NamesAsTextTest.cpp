#include "presentation/MessageBars.h"
#include "presentation/WindowFixture.h"
#include "presentation/names/LinesEdit.h"

#include <random>

namespace tavrin::test {

TEST(LinesEdit, NoKeyMakesALineOrTakesOneAway) {
    LinesEdit edit([](int) { return LinesEdit::Line{}; });
    edit.restart({"one.jpg", "", "three and four.jpg", "five", "Ω.jpg", "last"});
    edit.setIsLocked([](int line) { return line == 3; });
    // As a page would, but for lines that are pasted.
    QObject::connect(&edit, &LinesEdit::clearingWanted, [&] {
        for (auto [line, last] = edit.selectedLines(); line <= last; ++line)
            if (line != 3)
                edit.putLines(line, {""});
    });
    edit.show();
    std::mt19937 random(12);
    const auto oneOf = [&](const auto& choices) {
        return choices[std::uniform_int_distribution<std::size_t>(0, std::size(choices) - 1)(random)];
    };
    constexpr Qt::Key keys[]{Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Return, Qt::Key_Enter,  Qt::Key_X,
                             Qt::Key_V,         Qt::Key_K,      Qt::Key_U,      Qt::Key_W,      Qt::Key_D,
                             Qt::Key_H,         Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Left,   Qt::Key_Right,
                             Qt::Key_Home,      Qt::Key_End,    Qt::Key_A,      Qt::Key_Insert, Qt::Key_Z,
                             Qt::Key_Tab,       Qt::Key_M};
    const Qt::KeyboardModifiers modifiers[]{Qt::NoModifier,
                                            Qt::NoModifier,
                                            Qt::ShiftModifier,
                                            Qt::ControlModifier,
                                            Qt::ControlModifier | Qt::ShiftModifier,
                                            Qt::AltModifier};
    const char* const clips[]{"a", "b\nc", "d\r\n", "\n\n\n\n\n\n\n\n", "x\u2028y", "", "tab\there"};
    for (int step = 0; step < 5000; ++step) {
        if (step % 20 == 0)
            QGuiApplication::clipboard()->setText(QString::fromUtf8(oneOf(clips)));
        const Qt::Key key = oneOf(keys);
        const Qt::KeyboardModifiers with = oneOf(modifiers);
        QTest::keyClick(&edit, key, with);
        ASSERT_EQ(edit.lineCount(), 6) << "step " << step << ", key " << key << " with " << with;
        ASSERT_EQ(edit.line(3), "five") << "step " << step << ", a locked line";
    }
}

class NamesAsTextTest : public WindowFixture {
  protected:
    void SetUp() override {
        std::vector<std::string> paths;
        for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
            paths.push_back(makeFile(name));
        start(paths);
        chooseAction("Make uppercase");
        waitForNames({"A.txt", "B.txt", "C.txt", "D.txt"});
        trigger("namesAsText");
        edit = find<LinesEdit>("namesAsText");
    }
    void paste(const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    }
    std::string text() { return edit->toPlainText().toStdString(); }

    LinesEdit* edit = nullptr;
};

TEST_F(NamesAsTextTest, WhatIsTypedIsANameByHandAndTheOthersFollowTheSteps) {
    EXPECT_EQ(text(), "A.txt\nB.txt\nC.txt\nD.txt");
    edit->goTo(1);
    QTest::keyClicks(edit, "my ");
    waitForNames({"A.txt", "my B.txt", "C.txt", "D.txt"});
    chooseAction("Make lowercase");
    waitForNames({"a.txt", "my B.txt", "c.txt", "d.txt"});
    EXPECT_EQ(text(), "a.txt\nmy B.txt\nc.txt\nd.txt");
    edit->goTo(1, 0, 8);
    QTest::keyClick(edit, Qt::Key_Delete);
    waitForNames({"a.txt", "b.txt", "c.txt", "d.txt"});
    EXPECT_EQ(text(), "a.txt\n\nc.txt\nd.txt") << "an empty line stays empty";
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitForNames({"a.txt", "my B.txt", "c.txt", "d.txt"});
    click("discardEdits");
    waitForNames({"a.txt", "b.txt", "c.txt", "d.txt"});
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_TRUE(find("previewTableView")->isVisible());
}

TEST_F(NamesAsTextTest, APasteOverwritesAsManyLinesAsThereAre) {
    edit->goTo(2);
    paste("x\ny\nz");
    const QString told = find("tooManyLines")->accessibleName();
    EXPECT_EQ(told.toStdString(), "The text has 3 lines, 2 fit from here.");
    EXPECT_EQ(newNames(), (Names{"A.txt", "B.txt", "C.txt", "D.txt"}));
    click("cancelPaste");
    paste("x\ny\nz");
    click("pasteFitting");
    waitForNames({"A.txt", "B.txt", "x", "y"});
    edit->selectAll();
    paste("1\n2\n3\n4\n");
    waitForNames({"1", "2", "3", "4"});
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_X, Qt::ControlModifier);
    waitForNames({"A.txt", "B.txt", "C.txt", "D.txt"});
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "1\n2\n3\n4");
}

TEST_F(NamesAsTextTest, AllMatchesAreReplacedAsOneChange) {
    QTest::keyClick(edit, Qt::Key_H, Qt::ControlModifier);
    click("useExpression");
    type("textFindField", "([A-C])\\.(t)");
    waitForText("textFindResult", "3 matches");
    type("textReplaceField", "$2-$1.");
    click("replaceAll");
    waitForNames({"t-A.xt", "t-B.xt", "t-C.xt", "D.txt"});
    waitForText("textFindResult", "No match");
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitForNames({"A.txt", "B.txt", "C.txt", "D.txt"});
    type("textFindField", "(");
    waitForText("textFindResult", "Not a pattern");
}

} // namespace tavrin::test
