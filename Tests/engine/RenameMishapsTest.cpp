#include "RenameBench.h"

#include <algorithm>

namespace tavrin::test {

/// During planning and renaming, with more rows than fit into memory: from the first, second, fourth ... read
/// on the store's own file fails, once or for good. A run whose rows can't be read ends with the true count
/// and paths, and says so once.
TEST(StoreMishaps, ARenameOnAFailingFileLosesNothingAndTellsTheTruth) {
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
