#pragma once

#include "common/EngineTestHost.h"
#include "common/FailingVfs.h"
#include "common/TemporaryFolder.h"
#include "engine/pipeline/ProcessingStage.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tavrin::test {

/// A host whose store has rows that do not fit into memory, and whose file can't be read.
struct BrokenHost {
    explicit BrokenHost(const std::string& folder)
        : host({.kind = ItemStore::Kind::file, .folder = folder, .residentBudget = 1, .vfs = vfs.name()}) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        for (int batch = 0; batch < 3; ++batch, context.commit())
            for (int i = 0; i < 5000; ++i)
                context.insertFile(noRow, "x", true, false, i);
        vfs.failRead(1, true);
    }

    FailingVfs vfs;
    EngineTestHost host;
};

/// A host with an empty store in memory, a folder on disk, and single stages run on them.
struct StageBench {
    TemporaryFolder folder;
    EngineTestHost host;

    /// Runs the stage against a context of its own and commits.
    bool run(ProcessingStage& stage) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        stage.setSettings(host.settings.values());
        stage.setManagedObjectContext(&context);
        const bool goesOn = stage.process();
        context.commit();
        return goesOn;
    }
    template <typename Stage> bool run() {
        Stage stage(host.engine);
        stage.setProgressInfo(&host.progress);
        return run(stage);
    }

    /// The path below the test's folder; "/" for the folder itself, "" for what lies above it.
    [[nodiscard]] std::string relative(std::string_view path) const {
        if (path == folder.path())
            return "/";
        if (!path.starts_with(folder.path() + "/"))
            return {};
        return std::string(path.substr(folder.path().size() + 1));
    }
};

class StageTest : public ::testing::Test, public StageBench {};

} // namespace tavrin::test
