#include "Commands.h"
#include "Terminal.h"
#include "engine/history/JournalPlaces.h"
#include "engine/history/RunHistory.h"
#include "platform/desktop/UserFolders.h"
#include "support/text/DisplayText.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>
#include <optional>
#include <system_error>

namespace tavrin {

namespace {

/// One object a line.
class JsonLine {
  public:
    JsonLine& text(std::string_view key, std::string_view bytes) {
        begin(key);
        display::appendJson(text::fromBytes(bytes), line);
        return *this;
    }
    JsonLine& textOrNull(std::string_view key, std::string_view bytes) {
        return bytes.empty() ? raw(key, "null") : text(key, bytes);
    }
    JsonLine& raw(std::string_view key, std::string_view value) {
        begin(key);
        line += value;
        return *this;
    }
    [[nodiscard]] std::string end() const { return line + "}\n"; }

  private:
    void begin(std::string_view key) { line += fmt::format("{}\"{}\":", line == "{" ? "" : ",", key); }

    std::string line = "{";
};

std::string countOrNull(const PastRun& run, std::int64_t RunEnd::*count) {
    return run.end ? std::to_string((*run.end).*count) : "null";
}

void printRun(const PastRun& run, bool json, Terminal& terminal) {
    RunRecordReader record(run.path);
    record.examine();
    const std::string folder = record.commonFolder();
    const std::string_view what = runLine::nameOf(run.heading.what);
    const std::string_view state = record.isDamaged() ? "damaged" : run.state();
    if (json) {
        terminal.output().append(JsonLine()
                                     .text("run", run.name)
                                     .textOrNull("time", run.heading.time)
                                     .textOrNull("who", run.heading.who)
                                     .text("what", what)
                                     .textOrNull("of", run.heading.of)
                                     .text("state", state)
                                     .raw("items", std::to_string(record.itemCount()))
                                     .raw("changed", countOrNull(run, &RunEnd::changed))
                                     .raw("failed", countOrNull(run, &RunEnd::failed))
                                     .textOrNull("folder", folder)
                                     .textOrNull("recipe", record.recipe())
                                     .end());
        return;
    }
    terminal.output().append(fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\n", run.name,
                                         terminal.shown(run.heading.time), terminal.shown(run.heading.who),
                                         what, state, record.itemCount(), terminal.shown(folder)));
}

/// Where an item is now, in the words of the output, and the name that it bears; empty for none.
struct Now {
    std::string_view place;
    std::string name;
};

Now nowOf(const PlacedItem& placed, RenamedAgain& again) {
    constexpr std::array<std::string_view, 6> words = {"done",     "stand-in", "old",
                                                       "replaced", "gone",     "unclear"};
    if (placed.place == ItemPlace::gone || placed.place == ItemPlace::replaced) {
        const RenamedAgain::Hit* hit =
            again.find(joinedPath(placed.folder, placed.item.newName), placed.item.inode);
        if (hit != nullptr)
            return {"renamed", hit->newName};
    }
    const bool isNowhere = placed.place == ItemPlace::gone || placed.place == ItemPlace::unclear;
    return {words.at(static_cast<std::size_t>(placed.place)), isNowhere ? std::string() : placed.name};
}

ExitStatus printItems(const PastRun& run, const std::string& folder, bool json, Terminal& terminal) {
    if (!run.problem.empty())
        throw UsageError(fmt::format("the run {} can't be used. {}", run.name, run.problem));
    RunRecordReader record(run.path);
    record.examine();
    RenamedAgain again(folder, run.name);
    JournalPlaces(record).visit(JournalPlaces::Which::all, [&](const PlacedItem& placed) {
        const Now now = nowOf(placed, again);
        if (json)
            terminal.output().append(JsonLine()
                                         .text("folder", placed.folder)
                                         .text("oldName", placed.item.oldName)
                                         .text("newName", placed.item.newName)
                                         .text("now", now.place)
                                         .textOrNull("nowName", now.name)
                                         .end());
        else
            terminal.output().append(fmt::format(
                "{}\t{}\t{}\t{}\t{}\n", terminal.shown(placed.folder), terminal.shown(placed.item.oldName),
                terminal.shown(placed.item.newName), now.place, terminal.shown(now.name)));
    });
    return terminal.finish();
}

PastRun runNamed(const RunHistory& history, const std::string& name) {
    auto found = history.find(name);
    if (const auto* reason = std::get_if<std::string>(&found))
        throw UsageError(*reason);
    return std::get<PastRun>(std::move(found));
}

ExitStatus forget(const PastRun& run, Terminal& terminal) {
    const int error = RunHistory::forget(run);
    if (error == 0)
        return ExitStatus::allWell;
    terminal.complain(
        fmt::format("tvrn: {} can't be forgotten: {}", run.name, std::generic_category().message(error)));
    return ExitStatus::itemsFailed;
}

} // namespace

ExitStatus runHistoryCommand(const HistoryOptions& options) {
    Terminal terminal;
    const std::string folder = UserFolders::state() + "/tavrin/runs";
    const RunHistory history(folder);
    if (!options.forget.empty())
        return forget(runNamed(history, options.forget), terminal);
    if (!options.run.empty())
        return printItems(runNamed(history, options.run), folder, options.json, terminal);
    if (const std::string problem = history.problem(); !problem.empty())
        throw UsageError(problem);
    ExitStatus status = ExitStatus::allWell;
    for (const PastRun& run : history.runs()) {
        if (!options.clear)
            printRun(run, options.json, terminal);
        else if (run.isSettled && run.problem.empty() && forget(run, terminal) != ExitStatus::allWell)
            status = ExitStatus::itemsFailed;
    }
    return terminal.finish(status);
}

} // namespace tavrin
