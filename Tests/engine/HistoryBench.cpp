#include "HistoryBench.h"

#include "RecordText.h"

#include <gtest/gtest.h>

namespace tavrin::test {

HistoryBench::HistoryBench(const std::string& place) : RenameBench({}, place), records(place) {
    host.engine.setHistoryPlace({records.path(), "test"});
}

int HistoryBench::takeBack(RunKind what, bool takesReplaced) {
    failures.clear();
    refusal.clear();
    reports.clear();
    const auto run = RunHistory(records.path()).choose(what, chosen);
    if (const auto* reason = std::get_if<std::string>(&run)) {
        refusal = *reason;
        return 0;
    }
    TakeBackResult result;
    host.engine.processTakeBack(host.progress,
                                {.chosen = std::get<ChosenRun>(run), .takesReplaced = takesReplaced},
                                [&](EngineHost&, const TakeBackResult& found) { result = found; });
    host.waitUntilIdle();
    for (const ProcessingError& error : result.errors)
        failures.push_back(error.message + ": " + error.path.substr(disk.path().size() + 1));
    for (const ProblemReport& report : reports)
        failures.push_back(report.message + ": " + report.fullPath.substr(disk.path().size() + 1));
    return result.changed;
}

std::vector<std::string> HistoryBench::states() const {
    std::vector<std::string> found;
    for (const PastRun& run : RunHistory(records.path()).runs())
        found.emplace_back(run.state());
    return found;
}

std::string HistoryBench::newestRecord() const {
    const auto runs = RunHistory(records.path()).runs();
    EXPECT_FALSE(runs.empty());
    return runs.empty() ? "none" : runs.front().name + ".run";
}

void HistoryBench::interruptNewest(bool hasNoFlag) const {
    const std::string name = newestRecord();
    RecordText text(records.read(name));
    text.lines.pop_back();
    FileStatus status;
    EXPECT_EQ(FileSystem::sharedInstance().status(disk.path(), status), 0);
    if (hasNoFlag)
        text.lines.push_back("noflag\t" + std::to_string(status.identity.device));
    records.write(name, text.withChecksums());
}

} // namespace tavrin::test
