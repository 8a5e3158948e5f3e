#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class HandEditsTest : public ShellFixture {
  protected:
    HandEdits& hands() { return controller().handEdits(); }
    PreviewList::Row row(const std::string& path) {
        PreviewList& list = controller().nodeController();
        return list.rowWithId(list.rowWithPath(path)).value_or(PreviewList::Row());
    }
    std::vector<std::string> tableAfterPreview() {
        waitForPreview();
        return table();
    }
};

using Lines = std::vector<std::string>;

TEST_F(HandEditsTest, NamesStandUntilTheStepsMeanThemToo) {
    start();
    setSteps({{"Add to end", {{"string", u"1"}}}});
    const auto paths = add({"a", "b"});
    EXPECT_TRUE(hands().pin(row(paths[0]), u"a/x"));
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a/x", "b > b1"}));
    EXPECT_TRUE(row(paths[0]).isPinned);
    EXPECT_EQ(hands().computedName(row(paths[0])), u"a1");
    setSteps({{"Add to end", {{"string", u"2"}}}});
    controller().rereadList();
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a/x", "b > b2"}));
    EXPECT_EQ(hands().computedName(row(paths[0])), u"a2");
    EXPECT_FALSE(hands().pin(row(paths[1]), u"\xD83D")) << "half a character";

    hands().setNamesCount(false);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a2", "b > b2"}));
    hands().setNamesCount(true);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a/x", "b > b2"}));

    const NamePins former = hands().snapshot();
    EXPECT_TRUE(hands().pin(row(paths[1]), u"b2")) << "which is what the steps make of it";
    EXPECT_TRUE(hands().pin(row(paths[0]), u"a2"));
    EXPECT_EQ(hands().pinned(), 0U);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a2", "b > b2"}));
    hands().restore(former);
    EXPECT_EQ(hands().pinnedName(paths[0]), u"a/x");
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a/x", "b > b2"}));
    EXPECT_EQ(hands().pin({{paths[0], u""}, {paths[1], u"c"}}), 0U);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > a2", "b > c"}));
    EXPECT_GE(std::ranges::count(frontEnd.events, "hand edits"), 6);
}

TEST_F(HandEditsTest, EndWithTheRunOrTheList) {
    start();
    setSteps({{"Add to end", {{"string", u"1"}}}});
    const auto paths = add({"a", "b", "c"});
    hands().pin({{paths[0], u"x"}, {paths[1], u"y"}});
    hands().setTakesPart(std::vector{row(paths[2]).id}, false);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > x", "b > y", "c > c"}));
    EXPECT_TRUE(row(paths[2]).isLeftOut);
    EXPECT_EQ(status(), "2 out of 2 items need renaming.");
    files.write("y", "in the way");
    set("interactiveMode", 0);
    frontEnd.expect("problem", ConfirmationChoice::one);
    frontEnd.expect("alert summary");
    controller().ok();
    waitUntilIdle();
    EXPECT_EQ(tableAfterPreview(), (Lines{"b > y", "c > c", "x > x1"}));
    EXPECT_EQ(hands().pinned(), 1U);
    hands().tickAll();
    hands().unpinAll();
    EXPECT_EQ(tableAfterPreview(), (Lines{"b > b1", "c > c1", "x > x1"}));
    hands().setTakesPart(std::vector{paths[2]}, false);
    controller().clearPreview();
    EXPECT_TRUE(hands().snapshot().isEmpty());
    EXPECT_TRUE(hands().takesPart(paths[2]));
}

} // namespace
} // namespace tavrin::test
