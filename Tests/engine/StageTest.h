#pragma once

#include "common/EngineTestHost.h"
#include "common/TemporaryFolder.h"
#include "engine/ProcessingStage.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tavrin::test {

/// A host with an empty store in memory, a folder on disk, and single stages run on them.
class StageTest : public ::testing::Test {
  protected:
    TemporaryFolder folder;
    EngineTestHost host;

    /// Runs the stage against a context of its own and commits.
    bool run(ProcessingStage& stage) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
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

} // namespace tavrin::test
