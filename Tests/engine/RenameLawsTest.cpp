#include "RandomPlan.h"
#include "RenameBench.h"
#include "RenameWatch.h"
#include "common/FailingFileSystem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <functional>

namespace tavrin::test {

namespace {

constexpr unsigned plansWithFailures = 5;

std::string trace(unsigned seed, std::size_t k) {
    return "plan " + std::to_string(seed) + ", call " + std::to_string(k);
}

/// How many calls the plan takes when all goes well.
template <typename Count> std::size_t callsOf(const RandomPlan& plan, Count count) {
    RenameBench bench;
    plan.setUp(bench);
    return count(bench);
}

std::size_t renamesOf(const RandomPlan& plan) {
    return callsOf(plan, [](RenameBench& bench) {
        RenameWatch watch;
        bench.rename();
        return watch.seen.size();
    });
}

} // namespace

TEST(RenameLaws, RandomPlansComeOutAsWanted) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        const RandomPlan plan(seed);
        RenameBench bench;
        plan.setUp(bench);
        ASSERT_EQ(bench.files(), plan.before());
        bench.rename();
        ASSERT_EQ(bench.files(), plan.after());
        for (const ProblemReport& report : bench.reports)
            EXPECT_NE(report.title, "Could not change a file name") << report.fullPath;
    }
}

/// Whatever single call fails, another route serves or the failure is reported.
TEST(RenameLaws, EachCallFailingOnceLosesNothing) {
    for (unsigned seed = 0; seed < plansWithFailures; ++seed) {
        const RandomPlan plan(seed);
        const std::size_t calls = callsOf(plan, [](RenameBench& bench) {
            FailingFileSystem counting;
            bench.rename();
            return counting.callCount();
        });
        for (std::size_t k = 1; k <= calls; ++k) {
            SCOPED_TRACE(trace(seed, k));
            RenameBench bench;
            plan.setUp(bench);
            FailingFileSystem failing;
            failing.failCall(k, EIO);
            bench.rename();
            EXPECT_EQ(failing.failureCount(), 1U);
            plan.expectNothingLost(bench);
        }
    }
}

/// From each rename on, so many in a row fail: enough for one route, for all routes of one step but the last
/// ones, for several steps, for all that follow.
TEST(RenameLaws, EachRunOfFailingRenamesLosesNothing) {
    for (const std::size_t length : {2, 3, 4, 9, 100000}) {
        for (unsigned seed = 0; seed < plansWithFailures; ++seed) {
            const RandomPlan plan(seed);
            const std::size_t calls = renamesOf(plan);
            for (std::size_t k = 1; k <= calls; ++k) {
                SCOPED_TRACE(trace(seed, k) + ", " + std::to_string(length) + " in a row");
                RenameBench bench;
                plan.setUp(bench);
                RenameWatch watch;
                watch.before = [&](const WatchedRename&) {
                    return watch.seen.size() >= k && watch.seen.size() < k + length ? EACCES : 0;
                };
                bench.rename();
                plan.expectNothingLost(bench);
            }
        }
    }
}

/// Somebody makes a file under the very name that a step is about to use.
TEST(RenameLaws, AnIntruderIsNeverReplaced) {
    for (unsigned seed = 0; seed < plansWithFailures; ++seed) {
        const RandomPlan plan(seed);
        const std::size_t calls = renamesOf(plan);
        for (std::size_t k = 1; k <= calls; ++k) {
            SCOPED_TRACE(trace(seed, k));
            RenameBench bench;
            plan.setUp(bench);
            RenameWatch watch;
            std::string intruder;
            watch.before = [&](const WatchedRename& rename) {
                if (watch.seen.size() == k) {
                    intruder = rename.folder + "/" + rename.to;
                    std::ofstream(intruder) << "intruder";
                }
                return 0;
            };
            bench.rename();
            std::size_t found = 0;
            for (const auto& [path, content] : bench.files())
                found += content == "intruder" ? 1 : 0;
            EXPECT_EQ(found, 1U) << intruder;
            for (const auto& [path, content] : bench.files())
                if (content == "intruder")
                    bench.disk.remove(path);
            plan.expectNothingLost(bench);
        }
    }
}

} // namespace tavrin::test
