#include "command/Workplace.h"
#include "common/Testing.h"

namespace tavrin::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* upperCase = "tvrn rename --interactive --action 'Make uppercase' *";

TEST(Terminal, EachRenameIsAskedFor) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch a b c d e").status, 0);
    TerminalSession session(workplace, upperCase);
    ASSERT_TRUE(session.await("Rename \"a\" to \"A\" in " + workplace.folder().path() + "?"));
    session.type("y\n");
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

/// What ends a run in the middle of a question: an answer, the end of the input, an interrupt.
TEST(Terminal, AStopEndsTheRunAndTellsWhatWasDone) {
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
    }
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
        {"preview --recipe * x", hostile + ": the property list is empty"},
        {"preview \"--`echo *`\" x", "not expected: --" + hostile + "\r\nTry \"tvrn preview --help\".\r\n"},
    };
    for (const auto& [line, shown] : cases) {
        TerminalSession session(workplace, "tvrn " + line);
        session.end();
        EXPECT_THAT(session.screen(), HasSubstr(shown));
        EXPECT_THAT(session.screen(), Not(HasSubstr("\x1b"))) << line;
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

} // namespace
} // namespace tavrin::test
