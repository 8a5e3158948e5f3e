#include "command/Workplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/inotify.h>

namespace tavrin::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> names(const Workplace& workplace) {
    std::vector<std::string> all;
    for (const auto& [name, content] : workplace.folder().tree())
        all.push_back(name);
    return all;
}

constexpr const char* upperCase = "tvrn rename --interactive --action 'Make uppercase' ";

TEST(Terminal, EachRenameIsAskedFor) {
    const Workplace workplace;
    for (const char* name : {"a", "b", "c", "d", "e"})
        workplace.folder().write(name);
    TerminalSession session(workplace, upperCase + std::string("a b c d e"));
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
    EXPECT_THAT(names(workplace), ElementsAre("A", "C", "D", "E", "b"));
}

/// What ends a run in the middle of a question, with what was done before.
struct Stop {
    const char* name;
    void (*stop)(TerminalSession&);
};

class TerminalStop : public testing::TestWithParam<Stop> {};

TEST_P(TerminalStop, EndsTheRunAndTellsWhatWasDone) {
    const Workplace workplace;
    for (const char* name : {"a", "b", "c"})
        workplace.folder().write(name);
    TerminalSession session(workplace, upperCase + std::string("a b c"));
    ASSERT_TRUE(session.await("[s]top: "));
    session.type("y\n");
    ASSERT_TRUE(session.await("Rename \"b\" to \"B\""));
    ASSERT_TRUE(session.await("[s]top: "));
    GetParam().stop(session);
    EXPECT_EQ(session.end(), 3);
    EXPECT_THAT(session.screen(), HasSubstr("1 file name was changed."));
    EXPECT_THAT(names(workplace), ElementsAre("A", "b", "c"));
}

INSTANTIATE_TEST_SUITE_P(
    All, TerminalStop,
    testing::Values(Stop{"Answer", [](TerminalSession& session) { session.type("stop\n"); }},
                    Stop{"EndOfInput", [](TerminalSession& session) { session.type("\x04"); }},
                    Stop{"Interrupt", [](TerminalSession& session) { session.interrupt(); }}),
    [](const auto& test) { return test.param.name; });

TEST(Terminal, SwapsAndCyclesAreAskedForAsAWhole) {
    const Workplace workplace;
    for (const char* name : {"cycle/1", "cycle/2", "cycle/3", "swap/a", "swap/b"})
        workplace.folder().write(name, name);
    TerminalSession session(workplace, "tvrn rename --interactive --action 'Replace characters' "
                                       "--set replaceCharacters0=1 --set with0=2 "
                                       "--set replaceCharacters1=2 --set with1=3 "
                                       "--set replaceCharacters2=3 --set with2=1 "
                                       "--action 'Replace characters' "
                                       "--set replaceCharacters0=a --set with0=b "
                                       "--set replaceCharacters1=b --set with1=a cycle/* swap/*");
    ASSERT_TRUE(session.await("Swap the names of "));
    session.type("y\n");
    ASSERT_TRUE(session.await("depend on each other in a circle"));
    ASSERT_TRUE(session.await("[y]es, [a]ll, [l]eave out, [s]top: "));
    session.type("y\n");
    EXPECT_EQ(session.end(), 0);
    const std::map<std::string, std::string> expected{
        {"cycle/", ""}, {"cycle/1", "cycle/3"}, {"cycle/2", "cycle/1"}, {"cycle/3", "cycle/2"},
        {"swap/", ""},  {"swap/a", "swap/b"},   {"swap/b", "swap/a"}};
    EXPECT_EQ(workplace.folder().tree(), expected);
}

TEST(Terminal, AProblemIsAskedAboutAndTheRestGoesOn) {
    const Workplace workplace;
    workplace.folder().write("a");
    workplace.folder().write("b");
    TerminalSession session(workplace, upperCase + std::string("a b"));
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
    EXPECT_THAT(names(workplace), ElementsAre("B"));
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

/// Returns when something in the folder has got a new name.
class FirstRename {
  public:
    explicit FirstRename(const std::string& folder) : events(::inotify_init1(IN_CLOEXEC)) {
        ::inotify_add_watch(events.get(), folder.c_str(), IN_MOVED_TO);
    }
    [[nodiscard]] bool await() const {
        pollfd source{events.get(), POLLIN, 0};
        return ::poll(&source, 1, 60'000) == 1;
    }

  private:
    Descriptor events;
};

TEST(Interrupt, ARunThatIsUnderWayEndsAfterTheStepInHand) {
    const Workplace workplace;
    ASSERT_EQ(workplace.run("touch {10001..40000}.jpg").status, 0);
    const FirstRename firstRename(workplace.folder().path());
    TerminalSession session(workplace, "tvrn rename --action 'Add to end' --set string=x *");
    ASSERT_TRUE(firstRename.await());
    session.interrupt();
    EXPECT_EQ(session.end(), 3);
    std::size_t renamed = 0;
    std::size_t untouched = 0;
    for (const std::string& name : names(workplace))
        (name.ends_with("x.jpg") ? renamed : untouched) += 1;
    EXPECT_EQ(renamed + untouched, 30'000u);
    EXPECT_GT(untouched, 0u);
    EXPECT_THAT(session.screen(), HasSubstr(std::to_string(renamed) + " file name"));
}

} // namespace
} // namespace tavrin::test
