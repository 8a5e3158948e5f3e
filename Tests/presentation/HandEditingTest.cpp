#include "presentation/WindowFixture.h"
#include "presentation/cards/Card.h"
#include "presentation/preview/PreviewTableView.h"

// Names that are typed, rows that are left out, an order made by hand, and how all that is undone.

namespace tavrin::test {
namespace {

class ByHand : public WindowFixture {
  protected:
    void startWithFour() {
        start({makeFile("a.txt"), makeFile("b.txt"), makeFile("c.txt"), makeFile("d.txt")});
        UserDefaults::sharedInstance().setObject("showManualSortingSortBasedActionAlert", false);
        waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
        view().setFocus();
    }
    PreviewTableView& view() { return *find<PreviewTableView>("previewTableView"); }
    QLineEdit& editor() { return *find<QLineEdit>("newNameEditor"); }
    void press(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&widget, key, modifiers);
    }
    void edit(int row) {
        view().setCurrentIndex(model().index(row, PreviewTableModel::currentName));
        trigger("editNewName");
        ASSERT_TRUE(editor().isVisible());
    }
    PreviewTableModel::State state(int row) { return model().stateOf(model().rowAt(row)); }
    std::string chip(const char* name) {
        const auto* found = find<QAbstractButton>(name);
        return found->isVisible() ? found->text().toStdString() : "";
    }
    void clickTick(int row) {
        const QRect place = view().visualRect(model().index(row, PreviewTableModel::tick));
        QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place.center());
    }
};

TEST_F(ByHand, NamesAreTypedRowByRow) {
    startWithFour();
    edit(0);
    EXPECT_EQ(editor().selectedText(), "Image_01");
    press(editor(), Qt::Key_F2);
    EXPECT_EQ(editor().selectedText(), "Image_01.txt");
    press(editor(), Qt::Key_F2);
    EXPECT_EQ(editor().selectedText(), "txt");
    press(editor(), Qt::Key_F2);
    QTest::keyClicks(&editor(), "dawn");
    press(editor(), Qt::Key_Tab); // keeps, and goes on
    EXPECT_EQ(editor().selectedText(), "Image_02");
    QTest::keyClicks(&editor(), "dusk");
    press(editor(), Qt::Key_Down);
    QTest::keyClicks(&editor(), "given up");
    press(editor(), Qt::Key_Escape);
    EXPECT_FALSE(editor().isVisible());
    waitForNames({"dawn.txt", "dusk.txt", "Image_03.txt", "Image_04.txt"});
    EXPECT_EQ(state(0), PreviewTableModel::State::byHand);
    EXPECT_EQ(chip("pinnedChip"), "2 by hand");
    EXPECT_TRUE(find("handNamesEntry")->isVisibleTo(find("stepsPane")));
    // They stay while the steps change, and are off for a look.
    type("prefix", "Trip ");
    waitForNames({"dawn.txt", "dusk.txt", "Trip 03.txt", "Trip 04.txt"});
    find<QAbstractButton>("namesByHand")->click();
    waitForNames({"Trip 01.txt", "Trip 02.txt", "Trip 03.txt", "Trip 04.txt"});
    find<QAbstractButton>("namesByHand")->click();
    waitForNames({"dawn.txt", "dusk.txt", "Trip 03.txt", "Trip 04.txt"});
    // Back to the name of the steps: by a key, or by nothing in the field.
    view().selectRow(0);
    trigger("unpinNames");
    edit(1);
    editor().clear();
    press(editor(), Qt::Key_Return);
    waitForNames({"Trip 01.txt", "Trip 02.txt", "Trip 03.txt", "Trip 04.txt"});
    EXPECT_EQ(chip("pinnedChip"), "");
    // Each of that is taken back while the list has the focus.
    view().setFocus();
    for (const char* names : {"Trip 01.txt dusk.txt", "dawn.txt dusk.txt", "dawn.txt Trip 02.txt"}) {
        trigger("undo");
        waitForPreview();
        EXPECT_EQ(newNames()[0] + ' ' + newNames()[1], names);
    }
    trigger("redo");
    waitForNames({"dawn.txt", "dusk.txt", "Trip 03.txt", "Trip 04.txt"});
}

TEST_F(ByHand, ABadNameIsSaidToBeSoWhileItIsTyped) {
    startWithFour();
    folder.write("taken.txt");
    edit(0);
    const auto hint = [this] { return find<QLabel>("newNameHint")->text(); };
    EXPECT_EQ(hint(), "Return keeps · Tab next row · Esc gives up · empty unpins");
    editor().setText("..");
    EXPECT_EQ(hint(), "“.” and “..” cannot be names");
    editor().setText(QString(130, QChar(0xE9)));
    waitForText("newNameHint", "260 bytes, 255 fit"); // which the disk says
    editor().setText("taken.txt");
    waitForText("newNameHint", "taken by a file not in the list");
    editor().setText("b.txt"); // of a row, so it may be free by then
    QTest::qWait(400);
    EXPECT_EQ(hint(), "Return keeps · Tab next row · Esc gives up · empty unpins");
    editor().insert(QString(QChar(1))); // control characters are refused
    EXPECT_EQ(editor().text(), "b.txt");
}

TEST_F(ByHand, RowsAreLeftOutByTheirTicks) {
    startWithFour();
    clickTick(1);
    waitForNames({"Image_01.txt", "b.txt", "Image_02.txt", "Image_03.txt"});
    EXPECT_EQ(state(1), PreviewTableModel::State::leftOut);
    EXPECT_EQ(chip("leftOutChip"), "1 left out");
    EXPECT_TRUE(view().selectedRows().empty());
    // Of several rows all follow the first.
    view().setFocus();
    view().selectRow(2);
    press(view(), Qt::Key_End, Qt::ShiftModifier);
    press(view(), Qt::Key_Space);
    waitForNames({"Image_01.txt", "b.txt", "c.txt", "d.txt"});
    EXPECT_EQ(chip("leftOutChip"), "3 left out");
    trigger("undo");
    waitForNames({"Image_01.txt", "b.txt", "Image_02.txt", "Image_03.txt"});
    QHeaderView& header = *view().horizontalHeader();
    const auto clickBox = [&] {
        const int left = header.sectionViewportPosition(PreviewTableModel::tick);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, {left + 15, header.height() / 2});
    };
    clickBox();
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
    clickBox();
    waitForNames({"a.txt", "b.txt", "c.txt", "d.txt"});
    waitForText("statusText", "No files selected.");
    UserDefaults::sharedInstance().setObject("showTickBoxes", false);
    waitUntil("the boxes are gone", [this] { return view().isColumnHidden(PreviewTableModel::tick); });
}

TEST_F(ByHand, WhatOthersDidIsSeenWhenTheWindowIsUsedAgain) {
    startWithFour();
    folder.remove("b.txt");
    QWidget other;
    other.show();
    other.activateWindow();
    waitUntil("another window", [&] { return other.isActiveWindow(); });
    waitUntil("the sign", [&] {
        application->window().activateWindow();
        if (state(1) == PreviewTableModel::State::problem)
            return true;
        other.activateWindow();
        return false;
    });
    EXPECT_EQ(model().rowAt(1).note.sentence(), "no longer there");
}

TEST_F(ByHand, RowsThatAreReadAnewStayOnTheScreenMeanwhile) {
    startWithFour();
    EXPECT_EQ(model().rowAt(3).name, u"d.txt");
    bool isGone = false;
    controller().renameEngine().changeRows([&](StoreContext& context) -> std::function<void()> {
        context.deleteNodes(100);
        context.commit();
        return [&] { isGone = true; };
    });
    waitUntil("an empty store", [&] { return isGone; });
    model().handEditsChanged(); // asks for them once more
    EXPECT_EQ(model().rowAt(3).name, u"d.txt");
    controller().rereadList();
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
    waitForPreview();
    folder.remove("b.txt");
    trigger("reloadPreview");
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt"});
    EXPECT_EQ(find("itemsWereGone")->accessibleName(), "1 item was no longer there.");
}

TEST_F(ByHand, AnOrderIsTakenBackToo) {
    startWithFour();
    view().selectRow(3);
    press(view(), Qt::Key_Up, Qt::AltModifier);
    press(view(), Qt::Key_Up, Qt::AltModifier);
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
    EXPECT_EQ(names(), (Names{"a.txt", "d.txt", "b.txt", "c.txt"}));
    trigger("undo"); // both moves, since one follows the other at once
    waitForPreview();
    EXPECT_EQ(names(), (Names{"a.txt", "b.txt", "c.txt", "d.txt"}));
    EXPECT_TRUE(controller().globalSettings().values().automaticSorting);
    trigger("redo");
    waitForPreview();
    EXPECT_EQ(names(), (Names{"a.txt", "d.txt", "b.txt", "c.txt"}));
}

TEST_F(ByHand, NamesThatWouldBeLostKeepTheWindowOpen) {
    startWithFour();
    edit(0);
    QTest::keyClicks(&editor(), "kept");
    press(editor(), Qt::Key_Return);
    application->window().close();
    auto* card = dynamic_cast<Card*>(waitFor("alertCard"));
    ASSERT_NE(card, nullptr);
    card->withdraw(); // as by Escape
    waitUntilGone("alertCard");
    EXPECT_TRUE(application->window().isVisible());
    waitForNames({"kept.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
    // Who closes a second time means it.
    EXPECT_EQ(runToTheEnd([this] { application->window().close(); }).status, 0);
}

} // namespace
} // namespace tavrin::test
