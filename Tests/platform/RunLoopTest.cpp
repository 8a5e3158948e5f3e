#include "common/ManualRunLoop.h"
#include "platform/processes/QueueRunLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace tavrin {
namespace {

using namespace std::chrono_literals;
using test::ManualRunLoop;

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
    EXPECT_EQ(trace, "");
    loop.advance(1ms);
    EXPECT_EQ(trace, "rn");
    EXPECT_FALSE(never->isPending());
    EXPECT_TRUE(once->isPending());
    loop.advance(900ms);
    EXPECT_EQ(trace, "rnr"
                     "or"
                     "rrrrrrr");
    EXPECT_NEAR(loop.now(), 1.0, 1e-9);
}

TEST(Timers, FireByHandMayEndThemselvesAndOutliveTheLoop) {
    auto loop = std::make_unique<ManualRunLoop>();
    int fired = 0;
    const auto once = loop->startTimer(100ms, false, [&] { ++fired; });
    std::unique_ptr<Timer> repeating;
    repeating = loop->startTimer(100ms, true, [&] {
        fired += 10;
        if (fired > 30) {
            repeating.reset();
            loop->advance(300ms); // which must not fire it again
        }
    });
    once->fire();
    once->fire();
    repeating->fire();
    EXPECT_EQ(fired, 11);
    EXPECT_FALSE(once->isPending());
    EXPECT_TRUE(repeating->isPending());
    loop->advance(100ms);
    EXPECT_EQ(fired, 21);
    repeating->fire();
    loop->advance(100ms);
    EXPECT_EQ(fired, 31);
    const auto survivor = loop->startTimer(1ms, false, [&] { ++fired; });
    loop.reset();
    survivor->fire();
    EXPECT_EQ(fired, 32);
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
