#include "RenameBench.h"

#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/planning/PrepareForRenamingStage.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "engine/renaming/PerformRenameStage.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace tavrin::test {

RenameBench::RenameBench(ItemStore::Options options, const std::string& place)
    : disk(place), host(std::move(options)) {
    host.set("processSubfolders", 1);
    host.prompts.onProblem = [this](const ProblemReport& report) {
        reports.push_back(report);
        return ConfirmationChoice::one;
    };
}

std::string RenameBench::inMemory() {
    const char* const place = "/dev/shm";
    return ::access(place, W_OK) == 0 ? place : "";
}

void RenameBench::make(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (name.back() == '/')
            disk.makeFolder(name.substr(0, name.size() - 1));
        else
            disk.write(name, name);
    }
}

void RenameBench::read(const std::vector<std::string>& names) {
    for (const std::string& name : names)
        host.add({disk.path(name.back() == '/' ? name.substr(0, name.size() - 1) : name)});
    ProcessingPipeline pipeline(host.engine);
    pipeline.setProgressInfo(&host.progress);
    pipeline.addStage(std::make_unique<ReadItemsIntoDatabaseStage>(host.engine));
    host.onWorker([&] { pipeline.process(); });
}

void RenameBench::makeAndRead(const std::vector<std::string>& names) {
    make(names);
    read(names);
}

void RenameBench::setFinalName(const std::string& name, std::u16string_view finalName) {
    StoreContext& context = host.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const RowId row = context.fileWithPath(disk.path(name));
    ASSERT_NE(row, noRow) << name;
    context.setFinalName(row, finalName);
    context.change(row).diff = !text::canonicallyEqual(context.name(row), finalName);
    context.commit();
}

void RenameBench::rename() {
    reports.clear();
    host.onWorker([this] { renameOnThisThread(); });
}

void RenameBench::renameOnThisThread() {
    ProcessingPipeline pipeline(host.engine);
    pipeline.needRows();
    pipeline.setProgressInfo(&host.progress);
    pipeline.addStage(std::make_unique<PrepareForRenamingStage>(host.engine));
    pipeline.addStage(std::make_unique<PerformRenameStage>(host.engine));
    pipeline.process();
}

RenameBench::Tree RenameBench::files() const {
    Tree files = disk.tree();
    std::erase_if(files, [](const auto& entry) { return entry.first.back() == '/'; });
    return files;
}

std::vector<std::string> RenameBench::sourcePaths() {
    std::vector<std::string> paths;
    const std::lock_guard lock(host.managedObjectContext().mutex());
    for (const SourceItem& item : host.managedObjectContext().sourceItems())
        paths.push_back(item.path.substr(disk.path().size() + 1));
    return paths;
}

std::vector<std::string> RenameBench::problems() const {
    std::vector<std::string> problems;
    for (const ProblemReport& report : reports)
        problems.push_back(report.title + ": " + report.fullPath.substr(disk.path().size() + 1));
    return problems;
}

RenameBench::Tree untouched(const std::vector<std::string>& names) {
    RenameBench::Tree files;
    for (const std::string& name : names) {
        if (name.back() != '/')
            files.emplace(name, name);
    }
    return files;
}

} // namespace tavrin::test
