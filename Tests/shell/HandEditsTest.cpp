#include "shell/ShellFixture.h"
#include "shell/names/NameLines.h"

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
    hands().pin({{paths[0], u""}, {paths[1], u"c"}, {paths[1], u"\xD83D"}});
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

TEST_F(HandEditsTest, WhatOthersDidIsSeenAgain) {
    start();
    setSteps({{"Add to end", {{"string", u"1"}}}});
    const auto paths = add({"a", "b", "c"});
    files.write("b1");
    files.remove("a");
    controller().lookAgain();
    waitUntilIdle();
    EXPECT_EQ(row(paths[0]).note.sentence(), "no longer there");
    EXPECT_EQ(row(paths[1]).note.sentence(), "taken by a file not in the list");
    EXPECT_EQ(row(paths[2]).note.sentence(), "");
    hands().pin({{paths[1], u"x/y"}, {paths[2], u"c"}});
    controller().rereadList();
    EXPECT_EQ(tableAfterPreview(), (Lines{"b > x/y", "c > c"}));
    EXPECT_EQ(row(paths[1]).note.sentence(), "“/” becomes “:” on the disk");
    EXPECT_TRUE(row(paths[1]).note.isInfo);
    EXPECT_EQ(std::ranges::count(frontEnd.events, "gone 1"), 1);
    hands().pin({{paths[1], u"x"}, {paths[2], u"x"}});
    waitForPreview();
    EXPECT_EQ(row(paths[1]).note.sentence(), "same as “c”");
    EXPECT_EQ(row(paths[2]).note.sentence(), "same as “b”");
}

TEST_F(HandEditsTest, ASettingWithoutAValueCountsAtItsFirstUse) {
    start();
    setSteps({{"Completely rename", {{"newName", u"n"}}}});
    add({"a", "b"});
    EXPECT_EQ(table(), (Lines{"a > na", "b > nb"}));
    set("conflictResolutionDontChangeFirst", true);
    EXPECT_EQ(tableAfterPreview(), (Lines{"a > n", "b > na"}));
}

TEST_F(HandEditsTest, SnapshotOfManyStaysAsItWas) {
    start();
    std::vector<NameByHand> many;
    for (int i = 0; i < 100000; ++i)
        many.push_back({fmt::format("/some/folder/IMG_{}.jpg", i), u"another name"});
    hands().pin(std::move(many));
    const NamePins former = hands().snapshot();
    hands().pin({{"/some/folder/IMG_1.jpg", u""}});
    EXPECT_EQ(former.named(), 100000U);
    EXPECT_EQ(hands().pinned(), 99999U);
}

TEST(NameLines, OfNamesAndOfWhatIsPasted) {
    const std::pair<std::u16string, std::u16string> names[] = {{u"a b.txt", u"a b.txt"},
                                                               {u"a\nb", u"a\u240Ab"},
                                                               {std::u16string(u"a\0b", 3), u"a\u2400b"},
                                                               {u"\xDCFFx", u"\uFFFDx"},
                                                               {u"a\u202Egpj", u"a\uFFFDgpj"},
                                                               {u"\u2028", u"\uFFFD"},
                                                               {u"\U0001F600", u"\U0001F600"},
                                                               {u"\U0001F600\t", u"\U0001F600\u2409"}};
    for (const auto& [name, shown] : names) {
        EXPECT_EQ(nameLines::lineOf(name).text, shown);
        EXPECT_EQ(nameLines::lineOf(name).lock == nameLines::Lock::none, name == shown);
    }
    const auto pasted = nameLines::pasted(u"a\r\nb\u202E\x1B\xDC80\n\nc\u2029d\n", 3);
    EXPECT_EQ(pasted.lines, (std::vector<std::u16string>{u"a", u"b", u""}));
    EXPECT_EQ(pasted.count, 5U);
    EXPECT_EQ(pasted.changed, 1U);
    EXPECT_EQ(nameLines::pasted(std::u16string(25'000'000, u'\n'), nameLines::mostLines).count, 25'000'000U);
}

} // namespace
} // namespace tavrin::test
