#include "command/Workplace.h"

namespace tavrin::test {
namespace {

/// Three files, each with its name in it, and an editor: lines of shell with the file as "$1".
struct EditPlace : Workplace {
    EditPlace() { EXPECT_EQ(run("mkdir .tmp; for f in a b c; do echo $f >$f; done").status, 0); }

    [[nodiscard]] ProgramResult edit(const std::string& editor, const std::string& arguments) const {
        folder().write(".editor", editor);
        return run("TMPDIR=$PWD/.tmp VISUAL='. ./.editor' EDITOR=false tvrn edit " + arguments);
    }
    /// Each name with its content.
    [[nodiscard]] std::string items() const {
        return run("for f in *; do printf '%q:%s ' \"$f\" \"$(cat \"$f\")\"; done").output;
    }
    [[nodiscard]] bool hasLeftNothing() const { return run("ls .tmp").output.empty(); }
};

const std::string untouched = "a:a b:b c:c ";

TEST(Edit, NamesAreThoseThatTheEditorLeaves) {
    const struct {
        std::string editor, arguments, output, items;
    } cases[] = {
        {R"(sed -i 's/\ta$/\tQ/;s/\tb$/\ta/;s/\tQ$/\tb/' "$1")", "a b", "2 file names were changed.\n",
         "a:b b:a c:c "},
        // Saved by renaming, in another order, without some lines.
        {R"(tac "$1" | sed '/\tb$/d;s/\tc$/\tb2/' >"$1~"; mv "$1~" "$1")", "*", "1 file name was changed.\n",
         "a:a b:b b2:c "},
        // As editors of another system save.
        {R"(printf '\357\273\277' >.t; sed 's/\tc$/\tC/;s/$/\r/' "$1" >>.t; cat .t >"$1")", "a c",
         "1 file name was changed.\n", "C:c a:a b:b "},
        {R"(sed -i 's/\ta$/\t"\\x80 \\t"/' "$1")", "a", "1 file name was changed.\n",
         "b:b c:c $'\\200 \\t':a "},
        {R"(sed -i 's/\tA$/\tnew/' "$1")", "--action 'Make uppercase' -v a b",
         "a\tnew\nb\tB\n2 file names were changed.\n", "B:b c:c new:a "},
        {R"(sed -i 's/\ta$/\tx/' "$1")", "-n a b", "a\tx\nb\tb\n", untouched},
        {R"(:)", "*", "No file names were changed.\n", untouched},
        {R"(: >"$1")", "--action 'Make uppercase' *", "No file names were changed.\n", untouched},
        // What is typed belongs to the editor.
        {R"(kill -INT $PPID; sed -i 's/\ta$/\tx/' "$1")", "a", "1 file name was changed.\n", "b:b c:c x:a "},
        {R"(stat -c %a "$1" "${1%/*}" >&2; echo "${1##*.}" >&2)", "a", "No file names were changed.\n",
         untouched},
    };
    for (const auto& [editor, arguments, output, items] : cases) {
        const EditPlace place;
        const ProgramResult run = place.edit(editor, arguments);
        EXPECT_EQ(run.status, 0) << editor;
        EXPECT_EQ(run.output, output) << editor;
        EXPECT_EQ(run.error, editor.starts_with("stat") ? "600\n700\nnames\n" : "") << editor;
        EXPECT_EQ(place.items(), items) << editor;
        EXPECT_TRUE(place.hasLeftNothing()) << editor;
    }
}

TEST(Edit, WrongLinesComeBackWithTheReasonUntilTheyAreRightOrLeft) {
    const std::pair<std::string, std::string> cases[] = {
        {"s/\\ta$/ a/", "#! a line begins with the number of an item and a tab\n1 a\n"},
        {"s/^1/7/", "#! there is no item 7\n7\ta\n"},
        {"s/^2.*/1\\tz/", "1\ta\n#! the item 1 has a line above\n1\tz\n"},
        {"s/\\ta$/\\t/", "#! the name is empty\n1\t\n"},
        {"s/\\ta$/\\t\"\"/", "#! the name is empty\n1\t\"\"\n"},
        {"s/\\ta$/\\t..\\/a/", "#! a name holds no \"/\"\n1\t../a\n"},
        {"s/\\ta$/\\t\"..\"/", "#! this name stands for a folder itself\n"},
        {"s/\\ta$/\\ta /", "#! it begins or ends with a blank; if that is meant, write"},
        {"s/\\ta$/\\ta\\t/", "#! it holds a control character; if that is meant, write"},
        {"s/\\ta$/\\t\\xe9/", "#! it is not UTF-8; if that is meant, write"},
        {"s/\\ta$/\\t\"a/", "#! the quote has no end"},
        {"s/\\ta$/\\t\"a\" b/", "#! something stands behind the closing quote\n"},
        {"s/\\ta$/\\t\"\\\\u{d800}\"/", "#! it holds half a character\n"},
        {"s/\\ta$/\\tb/", "#! the item 2 has this name too\n1\tb\n2\tb\n"},
        {"s/\\t[ab]$/\\tz/",
         "#! the item 2 has this name too\n1\tz\n#! the item 1 has this name too\n2\tz\n"},
        {"s/\\ta$/\\tc/", "#! Another file with this name already exists in this folder.\n1\tc\n"},
        {"s/\\ta$/\\t" + std::string(256, 'x') + "/", "#! File name too long: "},
    };
    const std::string opening = "[ -e .second ] && cat \"$1\" >.seen ";
    for (const auto& [change, seen] : cases) {
        const EditPlace place;
        const std::string first = "|| { touch .second; sed -i '" + change + "' \"$1\"; }";
        const ProgramResult left = place.edit(opening + first, "a b");
        EXPECT_EQ(left.status, 3) << change;
        EXPECT_THAT(left.error, HasSubstr("tvrn edit: line ")) << change;
        EXPECT_THAT(left.error, HasSubstr("nothing was renamed")) << change;
        EXPECT_THAT(place.run("cat .seen").output, HasSubstr(seen)) << change;
        EXPECT_EQ(place.items(), untouched) << change;
        EXPECT_EQ(place.run("rm .second").status, 0);
        const ProgramResult mended =
            place.edit("[ -e .second ] && printf '2\\tB\\n' >\"$1\" " + first, "a b");
        EXPECT_EQ(mended.status, 0) << change << mended.error;
        EXPECT_EQ(place.items(), "B:b a:a c:c ") << change;
        EXPECT_TRUE(place.hasLeftNothing()) << change;
    }
}

TEST(Edit, AnEditorThatFailsTouchesNothing) {
    const std::pair<std::string, std::string> cases[] = {
        {"exit 4", "has ended with status 4"},
        {"exec no-such-program", "could not be run"},
        {"kill -KILL $$", "was ended by a signal"},
        {"ln -sf $PWD/a \"$1\"", "has put a link"},
        {"rm \"$1\"", "is gone"},
        {"rm \"$1\"; mkfifo \"$1\"", "is no file"},
        {"head -c 101000000 /dev/zero >\"$1\"", "more than 100000000 bytes"},
        {"printf '1\\t/\\n' >>\"$1\"", "never comes right"},
        {"kill -TERM $PPID; sleep 60", "was ended by a signal"},
    };
    for (const auto& [editor, said] : cases) {
        const EditPlace place;
        const ProgramResult run = place.edit(editor, "--action 'Make uppercase' *");
        EXPECT_EQ(run.status, 3) << editor;
        EXPECT_THAT(run.error, HasSubstr(said)) << editor;
        EXPECT_THAT(run.output, testing::IsEmpty()) << editor;
        EXPECT_EQ(place.items(), untouched) << editor;
        EXPECT_TRUE(place.hasLeftNothing()) << editor;
    }
}

/// Whatever the editor makes of the form of names that nobody has touched.
TEST(Edit, NamesKeepTheirBytes) {
    const EditPlace place;
    ASSERT_EQ(place.run("rm a b c; touch $'e\\u0301' $'\\xff' x:y $'\\n' ' '").status, 0);
    const ProgramResult run = place.edit("sed -i $'s/e\\u0301/\\u00e9/;s/x:y/x:z/' \"$1\"", "-v *");
    EXPECT_EQ(run.output, "x/y\tx/z\n1 file name was changed.\n") << run.error;
    EXPECT_EQ(place.run("ls -b").output, "\\n\n\\ \ne\u0301\nx:z\n\\377\n");
}

/// The editor gets the terminal although a list and a pipe are in its place.
TEST(Edit, AnEditorHasTheTerminal) {
    const EditPlace place;
    place.folder().write(".editor", "test -t 0 && test -t 1 && sed -i 's/\ta$/\tx/' \"$1\"");
    TerminalSession session(place, "2>&1; ls | VISUAL='. ./.editor' tvrn edit -T- | cat");
    EXPECT_EQ(session.end(), 0);
    EXPECT_EQ(session.screen(), "1 file name was changed.\r\n");
    EXPECT_EQ(place.items(), "b:b c:c x:a ");
}

} // namespace
} // namespace tavrin::test
