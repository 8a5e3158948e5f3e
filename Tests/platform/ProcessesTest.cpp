#include "common/ManualRunLoop.h"
#include "common/Testing.h"
#include "platform/desktop/Quoting.h"
#include "platform/files/Descriptor.h"
#include "platform/processes/ChildProcess.h"
#include "platform/processes/QueueRunLoop.h"

#include <csignal>

namespace tavrin {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using test::ManualRunLoop;

/// What a script of sh prints, up to 20 bytes, and how it ends.
std::string told(const std::string& script) {
    ChildProcess::Request request;
    request.arguments = {"/bin/sh", "-c", script};
    request.outputLimit = 20;
    request.timeout = script.find("sleep") == std::string::npos ? 60s : 200ms;
    const auto result = ChildProcess::run(request);
    return fmt::format("{}|{}{}{}{}", result.output, result.exitStatus, result.succeeded() ? " well" : "",
                       result.timedOut ? " late" : "", result.outputWasCut ? " cut" : "");
}

TEST(ChildProcess, TellsWhatAProgramPrintsAndHowItEnds) {
    const std::pair<const char*, std::string> cases[] = {
        {"printf 'a\\000b'; echo to nowhere >&2; cat; exit 3", "a\0b|3"s},
        {"exit 0", "|0 well"},
        {"kill -9 $$", "|-1"},
        {"yes | head -c 300000; echo $? > /dev/null", "y\ny\ny\ny\ny\ny\ny\ny\ny\ny\n|0 well cut"},
        {"echo begun; sleep 1000; echo done", "begun\n|-1 late"},
        {"echo begun; sleep 1000 & wait", "begun\n|-1 late"},
        {"echo begun; exec >&-; sleep 1000", "begun\n|-1 late"},
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(told(script), expected) << script;
}

TEST(ChildProcess, PassesArgumentsAndEnvironmentAsTheyAre) {
    const test::Variable present("TAVRIN_TEST_PRESENT", "old");
    ChildProcess::Request request;
    request.arguments = {"sh", "-c", "echo \"$0|$1|$TAVRIN_TEST_PRESENT|$TAVRIN_TEST_NEW\"", "caf\xE9 *",
                         "\"$x"};
    request.environment = {{"TAVRIN_TEST_PRESENT", "changed"}, {"TAVRIN_TEST_NEW", "a=b"}};
    EXPECT_EQ(ChildProcess::run(request).output, "caf\xE9 *|\"$x|changed|a=b\n");
    EXPECT_STREQ(std::getenv("TAVRIN_TEST_PRESENT"), "old");
    for (const auto& [arguments, error] :
         std::initializer_list<std::pair<std::vector<std::string>, int>>{{{"/nowhere/program"}, ENOENT},
                                                                         {{"/"}, EACCES},
                                                                         {{}, EINVAL},
                                                                         {{"/bin/echo", "a\0b"s}, EINVAL}}) {
        request.arguments = arguments;
        EXPECT_EQ(ChildProcess::run(request).error, error);
    }
}

TEST(ChildProcess, InheritsNeitherDescriptorsNorIgnoredSignals) {
    const Descriptor leaky(::fcntl(STDERR_FILENO, F_DUPFD, 77)); // without close-on-exec
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(told(fmt::format("test -e /proc/self/fd/{} || echo closed", leaky.get())), "closed\n|0 well");
    // Ended by the signal, not by a failed write.
    EXPECT_EQ(told("{ (yes; echo status $? >&3) | true; } 3>&1"), "status 141\n|0 well");
    std::signal(SIGPIPE, former);
}

TEST(Quoting, TextsComeBackFromShellsAndDesktopEntries) {
    for (const std::string& text :
         std::initializer_list<std::string>{"", "it's 'so'", " \t\r\\n\\ $x `y` \"z\"*", "caf\xE9\nb\\s "}) {
        EXPECT_EQ(told("printf %s " + quotedForShell(text)), text + "|0 well");
        EXPECT_EQ(desktopEntry::unescaped(desktopEntry::escaped(text)), text);
        EXPECT_EQ(desktopEntry::escaped(text).find('\n'), std::string::npos);
    }
    EXPECT_EQ(desktopEntry::escaped(" a"), "\\sa");
    EXPECT_EQ(desktopEntry::quotedArgument("a$`\"\\%"), "\"a\\$\\`\\\"\\\\%%\"");
}

TEST(QueueRunLoop, RunsActionsOfOthersInOrderOnItsThread) {
    QueueRunLoop loop;
    bool direct = false;
    EXPECT_TRUE(loop.performAndWait([&] { direct = loop.isCurrent(); }));
    EXPECT_TRUE(direct);
    std::vector<int> order;
    std::thread worker([&] {
        EXPECT_FALSE(loop.isCurrent());
        for (int i = 0; i < 100; ++i)
            loop.post([&, i] {
                EXPECT_TRUE(loop.isCurrent());
                order.push_back(i);
            });
        EXPECT_TRUE(loop.performAndWait([&] { order.push_back(100); }));
        EXPECT_EQ(order.size(), 101U) << "it waits";
        EXPECT_THROW((void)loop.performAndWait([] { throw std::runtime_error("failed"); }),
                     std::runtime_error);
        loop.stop();
    });
    loop.run();
    worker.join();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(QueueRunLoop, TimersAndActionsDoNotStarveEachOther) {
    QueueRunLoop loop;
    int ticks = 0;
    int actions = 0;
    std::function<void()> repost = [&] {
        ++actions;
        loop.post(repost);
    };
    const auto timer = loop.startTimer(1ms, true, [&] { ++ticks; });
    loop.post([&] { // an action may run the loop again
        loop.post(repost);
        EXPECT_TRUE(loop.runUntil([&] { return ticks >= 5 && actions >= 5; }));
        loop.stop();
    });
    loop.run();
    const double start = loop.now();
    const auto late = loop.startTimer(20ms, false, [&] { loop.stop(); });
    EXPECT_FALSE(loop.runUntil([] { return false; }));
    EXPECT_GE(loop.now() - start, 0.02);
    loop.stop(); // ends the next run too
    EXPECT_FALSE(loop.runUntil([] { return false; }));
}

/// A caller is freed whether the loop ends before or after it asks.
TEST(QueueRunLoop, FreesTheCallerWhenItEnds) {
    for (const bool closeFirst : {false, true}) {
        QueueRunLoop loop;
        if (closeFirst)
            loop.close();
        std::vector<std::jthread> workers;
        for (int i = 0; i < 4; ++i)
            workers.emplace_back([&] { EXPECT_FALSE(loop.performAndWait([] { ADD_FAILURE(); })); });
        loop.close();
    }
}

TEST(Timers, FireAtTheirMomentsInOrder) {
    ManualRunLoop loop;
    std::string trace;
    const auto repeating = loop.startTimer(100ms, true, [&] { trace += "r"; });
    const auto once = loop.startTimer(300ms, false, [&] { trace += "o"; });
    const auto never = loop.startTimer(100ms, false, [&] { trace += "n"; });
    auto cancelled = loop.startTimer(100ms, false, [&] { trace += "x"; });
    cancelled.reset();
    loop.advance(99ms);
    trace += "|";
    loop.advance(1ms);
    EXPECT_FALSE(never->isPending());
    EXPECT_TRUE(once->isPending());
    loop.advance(900ms);
    EXPECT_EQ(trace, "|rnrorrrrrrrr");
    EXPECT_NEAR(loop.now(), 1.0, 1e-9);
}

TEST(Timers, FireByHandMayEndThemselvesAndOutliveTheLoop) {
    auto loop = std::make_unique<ManualRunLoop>();
    std::string trace;
    const auto once = loop->startTimer(100ms, false, [&] { trace += "o"; });
    std::unique_ptr<Timer> repeating = loop->startTimer(100ms, true, [&] {
        trace += "r";
        if (trace.ends_with("rrr")) {
            repeating.reset();
            loop->advance(300ms); // which must not fire it again
        }
    });
    once->fire();
    once->fire();
    repeating->fire();
    EXPECT_FALSE(once->isPending());
    EXPECT_TRUE(repeating->isPending());
    loop->advance(100ms);
    trace += "|";
    repeating->fire();
    repeating->fire();
    loop->advance(100ms);
    const auto survivor = loop->startTimer(1ms, false, [&] { trace += "s"; });
    loop.reset();
    survivor->fire();
    EXPECT_EQ(trace, "orr|rrrs");
}

TEST(Timers, ALateRepeatingTimerSkipsWhatItMissed) {
    TimerSet timers;
    int fired = 0;
    const auto timer = timers.start(0, 100ms, true, [&] { ++fired; });
    EXPECT_TRUE(timers.fireNext(1.05));
    EXPECT_FALSE(timers.fireNext(1.05));
    EXPECT_EQ(fired, 1);
    ASSERT_TRUE(timers.nextDue());
    EXPECT_NEAR(*timers.nextDue(), 1.1, 1e-9);
}

} // namespace
} // namespace tavrin
