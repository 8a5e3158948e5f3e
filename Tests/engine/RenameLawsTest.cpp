#include "RandomPlan.h"
#include "RenameBench.h"
#include "common/FailingFileSystem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace tavrin::test {

namespace {

/// What happens to a call before it reaches the disk: 0 or an error. Call 0 is the first one meant.
using Mishap = std::function<int(const FileEvent&, std::size_t number)>;

/// Runs a few plans on each kind of volume again and again, with the mishap from the first, the second, ...
/// the last call on; of those that change names, or of all.
void expectNothingLostWhen(
    bool looksToo, const Mishap& mishap,
    const std::function<void(RenameBench&)>& afterEachRun = [](auto&) {}) {
    for (const Volume& volume : volumes) {
        for (const unsigned seed : RandomPlan::eventful) {
            const RandomPlan plan(seed, volume.ignoresCase);
            bool wasReached = true;
            for (std::size_t k = 1; wasReached; ++k) {
                SCOPED_TRACE(volume.title + std::string(", plan ") + std::to_string(seed) + ", call " +
                             std::to_string(k));
                RenameBench bench({}, RenameBench::inMemory());
                plan.setUp(bench);
                FailingFileSystem disk;
                volume.setUp(disk);
                std::size_t seen = 0;
                disk.before = [&](const FileEvent& event) {
                    return !(looksToo || event.changesNames()) || ++seen < k ? 0 : mishap(event, seen - k);
                };
                bench.rename();
                wasReached = seen >= k;
                EXPECT_TRUE(wasReached || k > 3) << "hardly anything was renamed";
                afterEachRun(bench);
                plan.expectNothingLost(bench);
            }
        }
    }
}

} // namespace

TEST(RenameLaws, RandomPlansComeOutAsWanted) {
    for (unsigned seed = 0; seed < 80; ++seed) {
        for (const Volume& volume : volumes) {
            SCOPED_TRACE(volume.title + std::string(", plan ") + std::to_string(seed));
            const RandomPlan plan(seed, volume.ignoresCase);
            RenameBench bench({}, RenameBench::inMemory());
            plan.setUp(bench);
            FailingFileSystem disk;
            volume.setUp(disk);
            bench.rename();
            ASSERT_EQ(bench.files(), plan.after());
            EXPECT_TRUE(bench.reports.empty());
            plan.expectNothingLost(bench);
        }
    }
}

/// Whatever single call fails, looks included, another route serves or the failure is reported; and so when
/// some of the next calls that change names fail too, or nothing works any more from there on. Of three
/// routes the last may work and not count, and its move be taken back or not.
TEST(RenameLaws, FailingCallsLoseNothing) {
    for (const std::uint64_t pattern : {0b1UL, 0b11UL, 0b111UL, 0b1011UL, 0b1111UL, ~0UL}) {
        SCOPED_TRACE(pattern);
        const bool looksToo = pattern == 1 || pattern == ~0UL;
        expectNothingLostWhen(looksToo, [=](const FileEvent&, std::size_t number) {
            return (pattern >> std::min(number, 63UL) & 1) == 0 ? 0 : looksToo ? EIO : EACCES;
        });
    }
}

/// Somebody makes a file under the very name that a call is about to use, as often as he can.
TEST(RenameLaws, AnIntruderIsNeverReplaced) {
    std::size_t made = 0;
    expectNothingLostWhen(
        false,
        [&](const FileEvent& event, std::size_t number) {
            const std::string path = event.folder + "/" + (event.to.empty() ? event.name : event.to);
            const int file = number > 2 ? -1 : ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
            if (file >= 0) {
                EXPECT_EQ(::write(file, "intruder", 8), 8);
                ::close(file);
                ++made;
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
            EXPECT_EQ(found, made);
            made = 0;
        });
}

} // namespace tavrin::test
