#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowFixture.h"

namespace tavrin::test {

/// Steps as text, by the keys of the window.
class RecipesInTheWindow : public WindowFixture {
  protected:
    void paste(const QString& text) {
        QApplication::clipboard()->setText(text);
        QTest::keySequence(QApplication::focusWidget(), QKeySequence::Paste);
    }
    QString line() { return toQString(controller().recipeCommands().line()); }
};

TEST_F(RecipesInTheWindow, ArePastedCopiedAndTakenBack) {
    start();
    find("previewPane")->window()->activateWindow();
    const QString before = line();
    find("mainWindow")->setFocus();
    paste("lower | unaccent");
    waitForBar("2 steps were added.");
    EXPECT_EQ(Spoken::lastSaid(), "2 steps were added.");
    EXPECT_TRUE(find("stepsView")->isVisible());
    EXPECT_EQ(line(), before + " | lower | unaccent");
    click("undoSteps");
    EXPECT_EQ(line(), before);
    find("stepsView")->setFocus();
    QTest::keySequence(find("stepsView"), QKeySequence::Redo);
    EXPECT_EQ(line(), before + " | lower | unaccent");
    QTest::keySequence(find("stepsView"), QKeySequence::Undo);
    EXPECT_EQ(line(), before);
    paste("repalce a b");
    EXPECT_EQ(Spoken::lastSaid(), "Column 1: there is no verb \"repalce\". Did you mean \"replace\"?");
    // Text goes where text is typed, and is no matter of the steps while files are listed.
    start({makeFile("a.txt")});
    find("previewTableView")->setFocus();
    paste("lower");
    EXPECT_EQ(line(), before);

    trigger("showRecipeLine");
    EXPECT_EQ(find("recipeLine")->accessibleName(), "Recipe, " + before);
    trigger("copyAsCommand");
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("tvrn rename '" + before + "' '/"));
    click("recipeLine");
    EXPECT_EQ(QApplication::clipboard()->text(), before);
}

} // namespace tavrin::test
