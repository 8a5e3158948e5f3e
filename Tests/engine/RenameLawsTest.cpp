#include "RandomPlan.h"
#include "common/Testing.h"

namespace tavrin::test {

namespace {

/// What happens to a call before it reaches the disk: 0 or an error. Call 0 is the first one meant.
using Mishap = std::function<int(const FileEvent&, std::size_t number)>;

/// Runs plans with the mishap from each call on; of those that change names, or of all.
void expectNothingLostWhen(
    bool looksToo, const Mishap& mishap,
    const std::function<void(RenameBench&)>& afterEachRun = [](auto&) {}) {
    atEachCall([&](const RandomPlan& plan, const Volume& volume, std::size_t call) {
        RenameBench bench({}, RenameBench::inMemory());
        plan.setUp(bench);
        FailingFileSystem disk;
        volume.setUp(disk);
        std::size_t seen = 0;
        disk.before = [&](const FileEvent& event) {
            return !(looksToo || event.changesNames()) || ++seen < call ? 0 : mishap(event, seen - call);
        };
        bench.rename();
        afterEachRun(bench);
        plan.expectNothingLost(bench);
        return seen >= call;
    });
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
                bench.folder.remove(path);
            }
            EXPECT_EQ(found, made);
            made = 0;
        });
}

/// During planning and renaming, with more rows than fit into memory: from the first, second, fourth ... read
/// on the store's own file fails, once or for good. A run whose rows can't be read ends with the true count
/// and paths, and says so once.
TEST(RenameLaws, ARenameOnAFailingStoreLosesNothingAndTellsTheTruth) {
    constexpr std::ptrdiff_t count = 4500;
    int brokenOff = 0;
    bool wasReached = true;
    bool forGood = true;
    for (int k = 1; wasReached; k *= 2, forGood = !forGood) {
        SCOPED_TRACE(k);
        FailingVfs vfs;
        const TemporaryFolder data(RenameBench::inMemory());
        RenameBench bench(
            {.kind = ItemStore::Kind::file, .folder = data.path(), .residentBudget = 1, .vfs = vfs.name()},
            RenameBench::inMemory());
        std::vector<std::string> files;
        for (int i = 0; i < count; ++i)
            bench.folder.write(files.emplace_back("f/" + std::to_string(10000 + i)));
        bench.read(files);
        StoreContext context(*bench.host.persistentStoreCoordinator(),
                             StoreContext::MergePolicy::contextWins);
        for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
            context.setFinalName(row, context.name(row) + u"!");
            context.change(row).diff = true;
        }
        context.commit();
        vfs.failRead(k, forGood);
        bench.rename();
        wasReached = vfs.reads() >= k;
        vfs.failRead(0);
        files.clear();
        for (const auto& [name, content] : bench.files())
            files.push_back(name);
        const auto renamed = std::ranges::count(files, '!', [](const auto& name) { return name.back(); });
        EXPECT_EQ(std::ssize(files), count);
        EXPECT_EQ(bench.renamed(), renamed);
        EXPECT_TRUE(renamed == count || wasReached);
        EXPECT_EQ(bench.host.errors().size(), renamed == count ? 0U : 1U);
        EXPECT_TRUE(bench.reports.empty());
        std::vector<std::string> paths = bench.sourcePaths();
        std::ranges::sort(paths);
        EXPECT_EQ(paths, files);
        brokenOff += renamed > 0 && renamed < count ? 1 : 0;
    }
    EXPECT_GT(brokenOff, 0) << "no read has failed in the middle of the renaming";
}

} // namespace tavrin::test
