#include "presentation/WindowFixture.h"
#include "presentation/preview/PreviewTableView.h"

// The list: its columns, its order, what of it shows, and what is said where nothing does.

namespace tavrin::test {
namespace {

class List : public WindowFixture {
  protected:
    PreviewTableView& view() { return *find<PreviewTableView>("previewTableView"); }
    QString text(int row, PreviewTableModel::Column column) {
        return model().index(row, column).data().toString();
    }
    void clickHead(PreviewTableModel::Column column) {
        QHeaderView& header = *view().horizontalHeader();
        const QPoint place(header.sectionViewportPosition(column) + 30, header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
    }
    void waitForOrder(const Names& order) {
        (void)QTest::qWaitFor([&] { return names() == order; }, 5000);
        EXPECT_EQ(names(), order);
    }
    bool isShown(const char* name) {
        const QWidget* widget = findWidget(name);
        return widget && widget->isVisible();
    }
    /// a00 to a99, and what a step makes of them.
    void startWithMany() {
        std::vector<std::string> paths;
        for (int i = 0; i < 100; ++i)
            paths.push_back(makeFile("a" + std::to_string(i / 10) + std::to_string(i % 10)));
        start(paths);
        UserDefaults::sharedInstance().setObject("showManualSortingAlert", false);
        UserDefaults::sharedInstance().setObject("showManualSortingSortBasedActionAlert", false);
    }
    std::string nameAtTop() { return text(view().rowAt(0), PreviewTableModel::currentName).toStdString(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&view(), key, modifiers);
    }
};

TEST_F(List, IsSortedByAnyColumnToAndFroAndBack) {
    start({makeFile("x/a2"), makeFile("y/a10"), makeFile("b1"), makeFile("x/c")});
    chooseAction("Replace text");
    currentAction().setValue(std::u16string(u"c"), "searchTerm");
    currentAction().setValue(std::u16string(u"a5"), "replacementTerm");
    const Names natural{"a2", "a10", "b1", "c"};
    waitForNames({"a2", "a10", "b1", "a5"});
    ASSERT_EQ(names(), natural);
    const std::tuple<PreviewTableModel::Column, Names, Names, const char*> columns[] = {
        {PreviewTableModel::newName, {"a2", "c", "a10", "b1"}, {"b1", "a10", "c", "a2"}, "Shown by New Name"},
        {PreviewTableModel::folder, {"b1", "a2", "c", "a10"}, {"a10", "a2", "c", "b1"}, "Shown by Folder"}};
    for (const auto& [column, upwards, downwards, words] : columns) {
        SCOPED_TRACE(words);
        clickHead(column);
        waitForOrder(upwards);
        EXPECT_EQ(find<QAbstractButton>("sortingChip")->text(), words);
        EXPECT_EQ(view().horizontalHeader()->sortIndicatorSection(), column);
        clickHead(column);
        waitForOrder(downwards);
        clickHead(column);
        waitForOrder(natural);
        EXPECT_FALSE(isShown("sortingChip"));
    }
    // New names that come move their rows; the numbers go by the other order.
    clickHead(PreviewTableModel::newName);
    chooseAction("Add number to start");
    clickHead(PreviewTableModel::newName);
    clickHead(PreviewTableModel::newName);
    waitForNames({"04c", "03b1", "02a10", "01a2"});
    click("sortingChip");
    waitForOrder(natural);
    // Current names become the order of a step that has one, so that is no mere view.
    clickHead(PreviewTableModel::currentName);
    waitForOrder({"c", "b1", "a10", "a2"});
    EXPECT_FALSE(isShown("sortingChip"));
    EXPECT_EQ(currentAction().getParamInt("sortingMode", 0), 11);
}

TEST_F(List, ShowsFoldersWhileThereAreSeveralUnlessTheyAreHidden) {
    start({makeFile("x/y/a"), makeFile("x/b")});
    const auto isHidden = [this] { return view().isColumnHidden(PreviewTableModel::folder); };
    EXPECT_FALSE(isHidden());
    EXPECT_TRUE(command("showPath").isChecked());
    EXPECT_EQ(text(0, PreviewTableModel::folder), "y");
    EXPECT_EQ(text(1, PreviewTableModel::folder), ".");
    trigger("showPath");
    EXPECT_TRUE(isHidden());
    application->open({makeFile("x/z/c")});
    waitUntil("the third is there", [this] { return model().rowCount() == 3; });
    EXPECT_TRUE(isHidden());
    trigger("showPath");
    EXPECT_FALSE(isHidden());
    EXPECT_EQ(controller().globalSettings().values().shouldShowPath, 0);
    // Of another list nothing has been hidden.
    trigger("showPath");
    trigger("clearPreview");
    application->open({folder.path("x/b")});
    waitUntil("the new list is there", [this] { return model().rowCount() == 1; });
    EXPECT_TRUE(isHidden());
    application->open({folder.path("x/y/a")});
    waitUntil("the column is there", [&] { return !isHidden(); });
}

TEST_F(List, GoesFromMatchToMatchAndCountsThem) {
    startWithMany();
    chooseAction("Replace text");
    currentAction().setValue(std::u16string(u"a77"), "searchTerm");
    currentAction().setValue(std::u16string(u"new b3"), "replacementTerm");
    waitForPreview();
    trigger("findInList");
    QTest::keyClicks(find("findField"), "3");
    waitForText("findResult", "1 of 20"); // a03 … a93, a30 … a39, and what a77 becomes
    const auto found = [this] { return text(view().currentIndex().row(), PreviewTableModel::currentName); };
    QTest::keyClicks(find("findField"), "5");
    waitForText("findResult", "1 of 1");
    EXPECT_EQ(found(), "a35");
    type("findField", "b3");
    waitForText("findResult", "1 of 1");
    EXPECT_EQ(found(), "a77");
    type("findField", "3");
    waitForText("findResult", "18 of 20");
    QTest::keyClick(find("findField"), Qt::Key_Return);
    EXPECT_EQ(found(), "a83");
    QTest::keyClick(find("findField"), Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClick(find("findField"), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(found(), "a73");
    trigger("findNext");
    trigger("findNext");
    trigger("findNext");
    trigger("findNext"); // round the end
    EXPECT_EQ(found(), "a03");
    // What is counted is what the list holds now.
    currentAction().setValue(std::u16string(u"4"), "replacementTerm");
    waitForText("findResult", "1 of 19");
    type("findField", "none");
    waitForText("findResult", "No match");
}

TEST_F(List, SaysWhyNothingShowsAndLeadsOut) {
    start({makeFile("a1"), makeFile("a2")});
    chooseAction("Replace text");
    waitForPreview();
    const std::pair<const char*, const char*> views[] = {
        {"showProblems", "No problems: every name can be written as shown."},
        {"showItemsToBeRenamed", "Every name is already as the steps want it."}};
    for (const auto& [name, words] : views) {
        trigger(name);
        EXPECT_EQ(find<QLabel>("emptyViewText")->text(), words);
        click("emptyViewButton");
        EXPECT_TRUE(view().isVisible());
        EXPECT_EQ(model().rowCount(), 2);
    }
    set("processFiles", 0);
    waitForText("emptyViewText", "2 files are hidden because Files is off.");
    EXPECT_TRUE(isShown("emptyView"));
    EXPECT_TRUE(command("clearPreview").isEnabled());
    EXPECT_TRUE(command("createFileList").isEnabled());
    click("emptyViewButton");
    waitUntil("the files are back", [this] { return model().rowCount() == 2; });
    trigger("clearPreview");
    EXPECT_TRUE(isShown("emptyListPage"));
    EXPECT_FALSE(command("clearPreview").isEnabled());
    EXPECT_FALSE(command("createFileList").isEnabled());
}

TEST_F(List, StaysWhereItIsFollowsWhatIsMovedAndBeginsAnewInAnotherOrder) {
    startWithMany();
    chooseAction("Add to end");
    waitForPreview();
    press(Qt::Key_End);
    EXPECT_EQ(view().currentIndex().row(), 99);
    press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(view().selectedRows().size(), 100U);
    EXPECT_EQ(view().currentIndex().row(), 0);

    press(Qt::Key_End);
    const std::string top = nameAtTop();
    ASSERT_NE(top, "a00");
    currentAction().setValue(std::u16string(u"x"), "string");
    waitForPreview();
    EXPECT_EQ(nameAtTop(), top);
    for (int i = 0; i < 60; ++i)
        press(Qt::Key_Up, Qt::AltModifier);
    waitForPreview();
    EXPECT_EQ(view().selectedRows(), std::vector<std::size_t>{39});
    EXPECT_EQ(text(39, PreviewTableModel::currentName), "a99");
    EXPECT_TRUE(view().viewport()->rect().contains(view().visualRect(view().currentIndex()).center()));
    EXPECT_FALSE(controller().globalSettings().values().automaticSorting);

    set("automaticSorting", true);
    waitForPreview();
    EXPECT_EQ(nameAtTop(), "a00");
    EXPECT_EQ(view().selectedRows(), std::vector<std::size_t>{99});
    application->open({makeFile("a50b")});
    waitUntil("the new one is in sight", [this] {
        const QRect place = view().visualRect(model().index(51, PreviewTableModel::currentName));
        return model().rowCount() == 101 && view().viewport()->rect().contains(place.center());
    });
}

} // namespace
} // namespace tavrin::test
