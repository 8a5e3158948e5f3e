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

constexpr unsigned plansWithFailures = 3;

std::string trace(unsigned seed, std::size_t k) {
    return "plan " + std::to_string(seed) + ", call " + std::to_string(k);
}

/// What happens to a rename before it reaches the disk: 0 or an error. Rename 0 is the first one meant.
using Mishap = std::function<int(const WatchedRename&, std::size_t number)>;

/// Runs a few plans again and again, with the mishap from the first, the second, ... the last rename on.
void expectNothingLostWhen(const Mishap& mishap, const std::function<void(RenameBench&)>& afterEachRun) {
    for (unsigned seed = 0; seed < plansWithFailures; ++seed) {
        const RandomPlan plan(seed);
        bool wasReached = true;
        for (std::size_t k = 1; wasReached; ++k) {
            SCOPED_TRACE(trace(seed, k));
            RenameBench bench;
            plan.setUp(bench);
            RenameWatch watch;
            watch.before = [&](const WatchedRename& rename) {
                return watch.seen.size() < k ? 0 : mishap(rename, watch.seen.size() - k);
            };
            bench.rename();
            wasReached = watch.seen.size() >= k;
            EXPECT_TRUE(wasReached || k > 3) << "hardly anything was renamed";
            afterEachRun(bench);
            plan.expectNothingLost(bench);
        }
    }
}

} // namespace

TEST(RenameLaws, RandomPlansComeOutAsWanted) {
    for (unsigned seed = 0; seed < 80; ++seed) {
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
        bool hasFailed = true;
        for (std::size_t k = 1; hasFailed; ++k) {
            SCOPED_TRACE(trace(seed, k));
            RenameBench bench;
            plan.setUp(bench);
            FailingFileSystem failing;
            failing.failCall(k, EIO);
            bench.rename();
            hasFailed = failing.failureCount() > 0;
            EXPECT_TRUE(hasFailed || k > 6) << "hardly anything was called";
            plan.expectNothingLost(bench);
        }
    }
}

/// From each rename on, so many in a row fail: enough for all routes of one step but the last, for all of
/// them, for all that follows.
TEST(RenameLaws, EachRunOfFailingRenamesLosesNothing) {
    for (const std::size_t length : {3, 4, 100000}) {
        SCOPED_TRACE(std::to_string(length) + " in a row");
        expectNothingLostWhen(
            [length](const WatchedRename&, std::size_t number) { return number < length ? EACCES : 0; },
            [](RenameBench&) {});
    }
}

/// Somebody makes a file under the very name that a step is about to use.
TEST(RenameLaws, AnIntruderIsNeverReplaced) {
    std::string intruder;
    expectNothingLostWhen(
        [&](const WatchedRename& rename, std::size_t number) {
            if (number == 0) {
                intruder = rename.folder + "/" + rename.to;
                std::ofstream(intruder) << "intruder";
            }
            return 0;
        },
        [&](RenameBench& bench) {
            std::size_t found = 0;
            for (const auto& [path, content] : bench.files()) {
                if (content != "intruder")
                    continue;
                ++found;
                bench.disk.remove(path);
            }
            EXPECT_EQ(found, intruder.empty() ? 0U : 1U) << intruder;
            intruder.clear();
        });
}

} // namespace tavrin::test
