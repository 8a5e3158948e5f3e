#include "command/Workplace.h"

namespace tavrin::test {
namespace {

constexpr const char* upperCase = "tvrn rename --interactive --action 'Make uppercase' *";

TEST(Terminal, EachRenameIsAskedFor) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch a b c d e").status, 0);
    TerminalSession session(workplace, std::string(upperCase) + " -v");
    ASSERT_TRUE(session.await("Rename \"a\" to \"A\" in " + workplace.folder().path() + "?"));
    session.type("y\n");
    ASSERT_TRUE(session.await("a\tA\r\n")); // before the next question
    ASSERT_TRUE(session.await("Rename \"b\""));
    session.type("what?\n"); // asks again
    ASSERT_TRUE(session.await("Rename \"b\""));
    session.type("l\n");
    ASSERT_TRUE(session.await("Rename \"c\""));
    session.type("a\n");
    EXPECT_EQ(session.end(), 0);
    EXPECT_THAT(session.screen(), HasSubstr("4 file names were changed."));
    EXPECT_THAT(session.screen(), Not(HasSubstr("Rename \"d\"")));
    EXPECT_EQ(workplace.run("ls").output, "A\nC\nD\nE\nb\n");
}

/// What ends a run in the middle of a question: an answer, the end of the input, an interrupt. A redo does
/// what it has left, and an undo then takes all of it back.
TEST(Terminal, AStopEndsTheRunAndTellsWhatWasDoneAndARedoFinishesIt) {
    for (void (*stop)(TerminalSession&) : {+[](TerminalSession& session) { session.type("stop\n"); },
                                           +[](TerminalSession& session) { session.type("\x04"); },
                                           +[](TerminalSession& session) { session.interrupt(); }}) {
        const Workplace workplace;
        ASSERT_EQ(workplace.run("touch a b c").status, 0);
        TerminalSession session(workplace, upperCase);
        ASSERT_TRUE(session.await("[s]top: "));
        session.type("y\n");
        ASSERT_TRUE(session.await("Rename \"b\" to \"B\""));
        ASSERT_TRUE(session.await("[s]top: "));
        stop(session);
        EXPECT_EQ(session.end(), 3);
        EXPECT_THAT(session.screen(), HasSubstr("1 file name was changed."));
        EXPECT_EQ(workplace.run("ls").output, "A\nb\nc\n");
        EXPECT_EQ(workplace.run("tvrn history | cut -f 4-5; tvrn redo && ls").output,
                  "rename\tstopped\n2 file names were changed.\nA\nB\nC\n");
        EXPECT_EQ(workplace.run("tvrn redo; tvrn undo && ls").output,
                  "3 file names were changed.\na\nb\nc\n");
    }
}

TEST(Terminal, AnswersComeFromTheTerminalWhileStandardInputIsAList) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch a b c").status, 0);
    TerminalSession session(workplace, "ls | tvrn rename -iT- --action 'Make uppercase'");
    ASSERT_TRUE(session.await("Rename \"a\""));
    session.type("l\n");
    ASSERT_TRUE(session.await("Rename \"b\""));
    session.type("all\n");
    EXPECT_EQ(session.end(), 0);
    EXPECT_EQ(workplace.run("ls").output, "B\nC\na\n");
}

TEST(Interrupt, AListWithoutEndIsLeftUnread) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch a; mkfifo list").status, 0);
    TerminalSession session(workplace, "tvrn rename --action 'Make uppercase' -T list");
    std::ofstream list(workplace.folder().path("list")); // waits for who reads
    for (int i = 0; i < 100'000; ++i)
        list << "a\n";
    list.flush();
    session.interrupt();
    EXPECT_EQ(session.end(), 3);
    EXPECT_THAT(session.screen(), HasSubstr("No file names were changed."));
    EXPECT_EQ(workplace.run("ls").output, "a\nlist\n");
}

TEST(Terminal, SwapsAndCyclesAreAskedForAsAWhole) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("mkdir c s; for f in c/1 c/2 c/3 s/a s/b; do echo $f >$f; done").status, 0);
    TerminalSession session(workplace, "tvrn rename --interactive --action 'Replace characters' "
                                       "--set replaceCharacters0=1 --set with0=2 "
                                       "--set replaceCharacters1=2 --set with1=3 "
                                       "--set replaceCharacters2=3 --set with2=1 "
                                       "--action 'Replace characters' "
                                       "--set replaceCharacters0=a --set with0=b "
                                       "--set replaceCharacters1=b --set with1=a c/* s/*");
    ASSERT_TRUE(session.await("Swap the names of "));
    session.type("y\n");
    ASSERT_TRUE(session.await("depend on each other in a circle"));
    ASSERT_TRUE(session.await("[y]es, [a]ll, [l]eave out, [s]top: "));
    session.type("y\n");
    EXPECT_EQ(session.end(), 0);
    EXPECT_EQ(workplace.run("cat c/1 c/2 c/3 s/a s/b").output, "c/3\nc/1\nc/2\ns/b\ns/a\n");
}

TEST(Terminal, AProblemIsAskedAboutAndTheRestGoesOn) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch a b").status, 0);
    TerminalSession session(workplace, upperCase);
    ASSERT_TRUE(session.await("Rename \"a\""));
    workplace.folder().remove("a"); // vanishes after the preview
    session.type("y\n");
    ASSERT_TRUE(session.await("Could not change a file name: "));
    ASSERT_TRUE(session.await("Go on? [y]es, [a]ll, [s]top: "));
    session.type("leave out\n"); // which is no answer here
    ASSERT_TRUE(session.await("Go on?"));
    session.type("y\n");
    ASSERT_TRUE(session.await("Rename \"b\""));
    session.type("y\n");
    EXPECT_EQ(session.end(), 1);
    EXPECT_EQ(workplace.run("ls").output, "B\n");
}

TEST(Terminal, NamesAreShownWithoutActingOnIt) {
    const Workplace workplace;
    workplace.folder().write("a\x1b[31m\n\xff\u202e");
    const std::string hostile = "a\\x1b[31m\\n\\xff\\u202e";
    const std::pair<std::string, std::string> cases[] = {
        {"preview --format 1 --action 'Make lowercase' *", hostile + "\r\n"},
        {"preview --action 'Make lowercase' * *",
         workplace.folder().path() + "/" + hostile + ": it is given"},
        {"preview --action * x", "there is no action \"" + hostile + "\""},
        {"preview --action 'Make lowercase' --set \"`echo *`=1\" x", "has no parameter \"" + hostile + "\""},
        {"preview --action 'Make lowercase' --setting \"`echo *`=1\" x",
         "there is no setting \"" + hostile + "\""},
        {"preview --action 'Rename from list' --set listFilePath=\"z`echo *`\" x", "z" + hostile + ": File"},
        {"preview --preset * x", "there is no preset \"" + hostile + "\""},
        {"preview --recipe * x", hostile + ", line 1, column 1: there is no step in it"},
        {"preview \"--`echo *`\" x", "not expected: --" + hostile + "\r\nTry \"tvrn preview --help\".\r\n"},
    };
    for (const auto& [line, shown] : cases) {
        TerminalSession session(workplace, "tvrn " + line);
        session.end();
        EXPECT_THAT(session.screen(), HasSubstr(shown));
        EXPECT_THAT(session.screen(), Not(HasSubstr("\x1b"))) << line;
    }
}

TEST(Columns, APreviewIsLaidOutForTheTerminal) {
    const Workplace workplace;
    ASSERT_EQ(
        workplace
            .run("mkdir d; touch 'a b' 'd/x y' same $'日 \\e[1m.txt' '0123 a long name that goes on.txt'")
            .status,
        0);
    const std::pair<std::string, std::string> recipes[] = {
        {"$R", "--action 'Replace text' --set 'searchTerm= ' --set replacementTerm=_"},
        {"$U", "--action 'Make uppercase'"}};
    const std::pair<std::string, std::string> cases[] = {
        {"tvrn preview $R 'a b' same", "  a b → a_b\n\n1 of 2 names changes.\n"},
        {"tvrn preview $R -a 'a b' same", "  a b → a_b\n  same\n\n1 of 2 names changes.\n"},
        {"tvrn preview $R same", "0 of 1 name changes.\n"},
        {"tvrn preview $R --recursive 'a b' same d",
         "./\n  a b → a_b\n\nd/\n  x y → x_y\n\n2 of 4 names change.\n"},
        {"tvrn preview --color always $R 'a b'",
         "  a\x1b[41m \x1b[0mb → a\x1b[32m_\x1b[0mb\n\n1 of 1 name changes.\n"},
        {"TERM=xterm tvrn preview $U 'a b' d/*",
         "\x1b[1m./\x1b[0m\n  \x1b[31ma b\x1b[0m → \x1b[32mA B\x1b[0m\n\n\x1b[1md/\x1b[0m\n"
         "  \x1b[31mx y\x1b[0m → \x1b[32mX Y\x1b[0m\n\n2 of 2 names change.\n"},
        {"TERM=xterm NO_COLOR=1 tvrn preview $U 'a b'", "  a b → A B\n\n1 of 1 name changes.\n"},
        {"TERM=xterm tvrn preview --color never $U 'a b'", "  a b → A B\n\n1 of 1 name changes.\n"},
        {"stty cols 40; tvrn preview $R *",
         "  0123 a l…s on.txt → 0123_a_lo…s_on.txt\n  a b            → a_b\n"
         "  日 \\x1b[1m.txt → 日_\\x1b[1m.txt\n\n3 of 5 names change.\n"},
        {"COLUMNS=10 tvrn preview $R -- 0* 日*",
         "  0123…txt\n → 012…txt\n  日 ….txt\n → 日_…txt\n\n2 of 2\nnames\nchange.\n"},
        // Not where the difference is.
        {"stty cols 45; tvrn preview --action 'Replace text' --set searchTerm=name --set "
         "replacementTerm=NAME 0*",
         "  0123 a long name…txt → 0123 a long NAME…txt\n\n1 of 1 name changes.\n"},
        {"stty cols 30; ln -s same 'l k'; tvrn preview $R 'a b' 'l k'",
         "  a b → a_b\n! l k → l_k\n    symbolic links are not\n    renamed\n\n"
         "1 of 2 names changes, 1\nproblem.\n"},
        {"tvrn preview 'replace \" \" \"/\"' 'a b' same",
         "  a b → a/b  “/” becomes “:” on the disk\n\n1 of 2 names changes.\n"},
        {"tvrn preview --format 0 $R 'a b' same", "a b\ta_b\nsame\tsame\n"},
    };
    for (const auto& [line, shown] : cases) {
        std::string full = line;
        for (const auto& [sign, recipe] : recipes)
            if (const std::size_t at = full.find(sign); at != std::string::npos)
                full.replace(at, sign.size(), recipe);
        TerminalSession session(workplace, "2>&1; " + full);
        EXPECT_EQ(session.end(), 0) << line;
        std::string screen = session.screen();
        std::erase(screen, '\r');
        EXPECT_EQ(screen, shown) << line;
    }
}

TEST(Interrupt, ARunThatIsUnderWayEndsAfterTheStepInHand) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch {10001..40000}.jpg").status, 0);
    TerminalSession session(workplace, "tvrn rename --action 'Add to end' --set string=x *");
    for (int wait = 0; wait < 60'000 && !workplace.folder().kind("10001x.jpg"); ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    session.interrupt();
    EXPECT_EQ(session.end(), 3);
    const int renamed = std::stoi(workplace.run("ls | grep -c x.jpg").output);
    const int untouched = std::stoi(workplace.run("ls | grep -c '[0-9].jpg'").output);
    EXPECT_EQ(renamed + untouched, 30'000);
    EXPECT_GT(untouched, 0);
    EXPECT_THAT(session.screen(), HasSubstr(std::to_string(renamed) + " file name"));
}

/// On a real file system that refuses to exchange names and to rename without replacing: names as wanted, and
/// a taken one stays.
TEST(Mounts, AFileSystemWithoutFlagsServesRingsPairsCaseAndFolders) {
    const Workplace workplace;
    const ProgramResult run = workplace.run(
        "mkdir real shown && bindfs real shown || exit 77; trap 'cd ..; fusermount -u shown || umount shown' "
        "EXIT; "
        "cd shown && for f in a b c d e report.txt t taken; do echo $f >$f; done && mkdir f g && "
        "touch 'f/was f' 'g/was g' T2 && printf '%s\\n' a,b b,c c,a d,e e,d f,g g,f report.txt,REPORT.TXT "
        "t,T2 | "
        "tr , '\\t' >../list && tvrn rename --action 'Rename from list' --set listFilePath=../list "
        "--set fragmentSelection=0 a b c d e f g report.txt t");
    if (run.status == 77)
        GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "8 file names were changed.\n");
    EXPECT_NE(run.error.find("Another file with this name already exists in this folder."),
              std::string::npos);
    std::map<std::string, std::string> found;
    for (const auto& [path, content] : workplace.folder().tree()) {
        if (path.starts_with("real/") && path.back() != '/')
            found.emplace(path.substr(5), content);
    }
    const std::map<std::string, std::string> after{
        {"b", "a\n"},         {"c", "b\n"},    {"a", "c\n"},   {"e", "d\n"},
        {"d", "e\n"},         {"t", "t\n"},    {"T2", ""},     {"REPORT.TXT", "report.txt\n"},
        {"taken", "taken\n"}, {"g/was f", ""}, {"f/was g", ""}};
    EXPECT_EQ(found, after);
}

/// The real program, killed in the middle: what it began is taken back, or finished and then taken back.
TEST(KilledRun, IsTakenBackOrFinished) {
    const std::string killed =
        "mkdir -p d/sub; (cd d/sub; seq -f 'file%g' 20000 | xargs touch); "
        "tvrn rename --recursive --action 'Add to front' --set string=new_ d >out 2>&1 & p=$!; "
        "until ls d/sub | grep -q '^new_' || test -d new_d; do :; done; kill -9 $p; wait $p; "
        "tvrn history | cut -f 4,5; test \"$(ls d/sub | grep -c '^new_')\" -lt 20000";
    const std::string before = "test -d d && test \"$(ls d/sub | grep -c '^file')\" = 20000";
    const std::string after = "test \"$(ls new_d/new_sub | grep -c '^new_file')\" = 20000";
    for (const bool isFinished : {false, true}) {
        const Workplace workplace;
        const ProgramResult run = workplace.run(killed);
        ASSERT_EQ(run.status, 0) << run.error;
        ASSERT_EQ(run.output, "rename\tinterrupted\n");
        if (isFinished) {
            const ProgramResult redo = workplace.run("tvrn redo --quiet && " + after);
            EXPECT_EQ(redo.status, 0) << redo.error;
        }
        const ProgramResult undo = workplace.run("tvrn undo --quiet && " + before);
        EXPECT_EQ(undo.status, 0) << undo.error;
        const ProgramResult redo = workplace.run("tvrn redo --quiet; ls; tvrn undo --quiet && " + before);
        EXPECT_EQ(redo.status, 0) << redo.error;
    }
}

} // namespace
} // namespace tavrin::test
