#include "presentation/MessageBars.h"
#include "presentation/WindowFixture.h"
#include "presentation/names/LinesEdit.h"

#include <random>

namespace tavrin::test {

/// As a page does, but for lines that are pasted.
void obey(LinesEdit& edit, int locked) {
    edit.setIsLocked([locked](int line) { return line == locked; });
    QObject::connect(&edit, &LinesEdit::changeWanted,
                     [&edit, locked](int line, int last, const auto& change) {
                         for (; line <= last; ++line)
                             if (const auto text = change(line, edit.line(line)); text && line != locked)
                                 edit.putLines(line, {*text});
                     });
}

TEST(LinesEdit, NoKeyMakesALineOrTakesOneAway) {
    LinesEdit edit([](int) { return LinesEdit::Line{}; });
    edit.restart({"one.jpg", "", "three and four.jpg", "five", "Ω.jpg", "last"});
    obey(edit, 3);
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
                                            Qt::AltModifier,
                                            Qt::AltModifier | Qt::ShiftModifier};
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

TEST(LinesEdit, ABlockIsChangedInAllLinesByColumns) {
    LinesEdit edit([](int) { return LinesEdit::Line{}; });
    edit.restart({"ab12.jpg", "漢34.jpg", "x", "e\u0301f56.jpg", "locked", "12"});
    obey(edit, 4);
    edit.resize(600, 300);
    edit.show();
    const auto select = [&](int start, int columns) {
        edit.goTo(0, start);
        for (int line = 0; line < 5; ++line)
            QTest::keyClick(&edit, Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
        for (int column = 0; column < columns; ++column)
            QTest::keyClick(&edit, Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    };
    const auto text = [&] { return edit.toPlainText().toStdString(); };
    select(2, 2);
    QTest::keyClick(&edit, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "12\n34\n\n56\nck\n");
    QTest::keyClicks(&edit, "no");
    EXPECT_EQ(text(), "abno.jpg\n漢no.jpg\nx\ne\u0301fno.jpg\nlocked\n12no");
    for (int times = 0; times < 3; ++times)
        QTest::keyClick(&edit, Qt::Key_Backspace);
    QTest::keyClick(&edit, Qt::Key_Delete);
    EXPECT_EQ(text(), "ajpg\n.pg\n\ne\u0301jpg\nlocked\n1") << "the caret is behind one column";
    QTest::keyClick(&edit, Qt::Key_Escape);
    QTest::keyClick(&edit, Qt::Key_Home);
    QTest::keyClicks(&edit, "z");
    EXPECT_EQ(edit.line(4), "locked");
    EXPECT_EQ(edit.line(5), "z1") << "one line alone";
    const auto placeOf = [&](int line, int column) {
        QTextCursor cursor(edit.document()->findBlockByNumber(line));
        cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, column);
        return edit.cursorRect(cursor).center();
    };
    QTest::mousePress(edit.viewport(), Qt::LeftButton, Qt::AltModifier, placeOf(0, 1));
    QTest::mouseMove(edit.viewport(), placeOf(3, 3));
    QTest::mouseRelease(edit.viewport(), Qt::LeftButton, Qt::AltModifier, placeOf(3, 3));
    QTest::keyClick(&edit, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(text(), "ag\n.\n\ne\u0301g\nlocked\nz1");
    QTest::mouseClick(edit.viewport(), Qt::LeftButton, {}, placeOf(5, 0));
    QTest::keyClicks(&edit, "y");
    EXPECT_EQ(text(), "ag\n.\n\ne\u0301g\nlocked\nyz1");
}

class NamesAsTextTest : public WindowFixture {
  protected:
    void SetUp() override {
        std::vector<std::string> paths;
        for (const std::string& name : files)
            paths.push_back(makeFile(name));
        start(paths);
        chooseAction("Make uppercase");
        waitUntil("the names", [&] { return newNames().size() == files.size() && newNames()[3] == "D.txt"; });
        trigger("namesAsText");
        edit = find<LinesEdit>("namesAsText");
    }
    void paste(const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    }
    std::string text() { return edit->toPlainText().toStdString(); }

    Names files{"a.txt", "b.txt", "c.txt", "d.txt"};
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
    find<QTableView>("previewTableView")->selectRow(3);
    trigger("moveRowUp");
    trigger("namesAsText");
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitUntil("the former order",
              [this] { return text() == "a.txt\nb.txt\nc.txt\nd.txt" && names()[3] == "d.txt"; });
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

TEST_F(NamesAsTextTest, ABlockTakesALineEachOrOneForAll) {
    const auto select = [this] {
        edit->goTo(1);
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Right})
            QTest::keyClick(edit, key, Qt::AltModifier | Qt::ShiftModifier);
    };
    select();
    paste("x\ny");
    waitForBar("The text has 2 lines, the block has 3.");
    paste("x\ny\nz");
    waitForNames({"A.txt", "x.txt", "y.txt", "z.txt"});
    select();
    paste("same ");
    QTest::keyClick(edit, Qt::Key_End);
    paste(QString(4097, 'x'));
    waitForBar("1 line stayed as it was.  No line may have more than 4,096 characters.");
    waitForNames({"A.txt", "same .txt", "same .txt", "same .txt"});
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitForNames({"A.txt", "x.txt", "y.txt", "z.txt"});
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitForNames({"A.txt", "B.txt", "C.txt", "D.txt"});
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

/// With a program in the place of the desktop's editor, and with an item that no line can hold.
class TextEditorTest : public NamesAsTextTest {
  protected:
    TextEditorTest() { files.push_back("e\nf.txt"); }

    void openEditor(const std::string& program) {
        for (const char* command : {"xdg-open", "gio"})
            std::filesystem::permissions(
                tools.write(command, "#!/bin/sh\ncd '" + tools.path() + "'\n" + program + "\n"),
                std::filesystem::perms::owner_all);
        click("openInTextEditor");
    }
    /// As most editors save: by another file in the place of the old one.
    void save(const std::string& text) { std::filesystem::rename(tools.write("saved", text), file); }

    TemporaryFolder tools;
    Variable searchPath{"PATH", (tools.path() + ":" + std::getenv("PATH")).c_str()};
    Variable place{"XDG_RUNTIME_DIR", tools.makeFolder("runtime").c_str()};
    std::string file;
};

TEST_F(TextEditorTest, WhatAnotherProgramSavesIsTakenOverLineByLine) {
    openEditor("printf %s \"$1\" >path.new && mv path.new path");
    waitUntil("the editor", [&] { return tools.kind("path").has_value(); });
    file = tools.read("path");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(std::filesystem::status(std::filesystem::path(file).parent_path()).permissions(),
              std::filesystem::perms(0700));
    edit->goTo(0);
    QTest::keyClicks(edit, "my ");
    save("\xEF\xBB\xBF"
         "A.txt\r\nb\r\nC.txt\r\nD.txt\r\nE and F.txt\r\n");
    waitForBar("1 line was taken over from the text editor.  1 line that cannot be edited as text stayed");
    waitForNames({"my A.txt", "b", "C.txt", "D.txt", "E\nF.txt"});
    const auto refused = [&](const std::string& why) {
        waitForBar(why);
        EXPECT_EQ(newNames(), (Names{"my A.txt", "b", "C.txt", "D.txt", "E\nF.txt"}));
    };
    save("A.txt\nb\nC.txt\nD.txt\n");
    refused("The file has 4 lines, 5 are needed.");
    std::ofstream(file) << "A.txt\nb\xFF\nC.txt\nD.txt\nE\n";
    refused("The file is not UTF-8.");
    std::filesystem::remove(file);
    refused("The text editor’s file is gone");
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    waitForNames({"my A.txt", "B.txt", "C.txt", "D.txt", "E\nF.txt"});
    controller().rereadList(); // which gives the rows other ids
    waitForPreview();
    std::ofstream(file) << "A.txt\nb\n\nd/D\nE␊F.txt\n";
    waitForNames({"my A.txt", "b", "C.txt", "d/D", "E\nF.txt"});
    waitUntil("the lines", [&] { return text() == "my A.txt\nb\n\nd/D\nE␊F.txt"; });
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_THAT(tools.names("runtime"), IsEmpty());
}

TEST_F(TextEditorTest, WithoutAProgramForTextsItIsSaidSo) {
    openEditor("exit 3");
    waitForBar("No program that opens texts could be started.");
    EXPECT_THAT(tools.names("runtime"), IsEmpty());
}

} // namespace tavrin::test
