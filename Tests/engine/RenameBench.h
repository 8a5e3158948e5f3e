#pragma once

#include "common/EngineTestHost.h"
#include "common/FailingVfs.h"
#include "common/Testing.h"
#include "engine/pipeline/ProcessingStage.h"

namespace tavrin::test {

/// A host whose store has rows that do not fit into memory, and whose file can't be read.
struct BrokenHost {
    explicit BrokenHost(const std::string& folder)
        : host({.kind = ItemStore::Kind::file, .folder = folder, .residentBudget = 1, .vfs = vfs.name()}) {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        const RowId parent = context.insertGhostNode(folder);
        for (int batch = 0; batch < 3; ++batch, context.commit())
            for (int i = 0; i < 5000; ++i)
                context.change(context.insertFile(parent, "x", true, false, i)).diff = true;
        vfs.failRead(1, true);
    }

    FailingVfs vfs;
    EngineTestHost host;
};

/// A folder on disk, a host with an empty store, and single stages run on them.
struct StageBench {
    explicit StageBench(ItemStore::Options options = {}, const std::string& place = "")
        : folder(place), host(std::move(options)) {}

    TemporaryFolder folder;
    EngineTestHost host;

    /// Runs the stage against a context of its own and commits.
    template <typename Stage, typename... Options> bool run(Options... options) {
        Stage stage(host.engine, options...);
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
        stage.setProgressInfo(&host.progress);
        stage.setSettings(host.settings.values());
        stage.setManagedObjectContext(&context);
        const bool goesOn = stage.process();
        context.commit();
        return goesOn;
    }

    /// The path below the folder; "/" for the folder itself, "" for what lies above it.
    [[nodiscard]] std::string relative(std::string_view path) const;
    /// Each name with its final one, "a/b=B", in the order of the paths.
    std::vector<std::string> shown();
};

class StageTest : public ::testing::Test, public StageBench {};

/// A folder on disk, its items read into a store, and the run that plans and performs their renames. Each
/// file's content is the name that it was made under, so that it is known again wherever it goes.
class RenameBench : public StageBench {
  public:
    /// What became of the files: content (the name before) by the name after.
    using Tree = std::map<std::string, std::string>;

    explicit RenameBench(ItemStore::Options options = {}, const std::string& place = "");

    /// A place for folders that costs no disk, for laws that make thousands of them.
    static std::string inMemory();

    /// Failures shown in the last run; after each the run goes on.
    std::vector<ProblemReport> reports;

    /// Makes files, by names relative to the folder; a slash at the end makes a folder.
    void make(const std::vector<std::string>& names);
    /// Puts these names on the list and reads them with all below.
    void read(const std::vector<std::string>& names);
    void setFinalName(const std::string& name, std::u16string_view finalName);
    /// All three: "a>b f/>g f/x" makes the file "a", which is to be "b", the folder "f", which is to be "g",
    /// and a file in it that is to stay. "~" is a space.
    void plan(std::string_view words);
    /// What somebody else does, in steps: "remove a, move a b, write a text, link a target, second a b (a
    /// hard link), folder a, save a" (which puts a new file in its place, as editors do).
    void happens(std::string_view steps) const;
    /// Plans and performs, on a worker.
    void rename();
    /// The same on the calling thread, which the questions of the run must not wait for.
    void renameOnThisThread();

    /// Files only.
    [[nodiscard]] Tree files() const;
    /// The source items, relative to the folder, in order.
    [[nodiscard]] std::vector<std::string> sourcePaths();
    /// What is told of each row, against what the run has counted.
    void checkOutcomes();
    [[nodiscard]] int renamed() { return host.counters().numberOfActuallyRenamedFiles; }
};

/// Files by their names, each with its content if that is another: "b=a c".
RenameBench::Tree tree(std::string_view words);
/// A name on disk as it is shown.
std::u16string shownName(std::string_view name);
std::vector<std::string> split(std::string_view words, char separator = ' ');
/// Settings that are numbers: "processFolders=0 renameMode=2".
void setAll(EngineTestHost& host, std::string_view settings);
/// The steps in words: "Add to end string=x; Make uppercase active=0". What is all digits is a number.
void setSteps(EngineTestHost& host, std::string_view steps);

} // namespace tavrin::test
