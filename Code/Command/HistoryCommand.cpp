#include "Commands.h"
#include "Terminal.h"
#include "engine/history/ItemsNow.h"
#include "engine/history/RunHistory.h"
#include "platform/desktop/UserFolders.h"
#include "support/text/DisplayText.h"
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

/// Where items are now, in the words of the output.
constexpr std::array<std::string_view, 7> nowWords = {"done", "stand-in", "old",    "replaced",
                                                      "gone", "unclear",  "renamed"};

ExitStatus printItems(const PastRun& run, bool json, Terminal& terminal) {
    if (!run.problem.empty())
        throw UsageError(fmt::format("the run {} can't be used. {}", run.name, run.problem));
    RunRecordReader record(run.path);
    record.examine();
    ItemsNow(record, run).visit([&](const PlacedItem& placed, const WhereNow& where) {
        const std::string_view now = nowWords.at(static_cast<std::size_t>(where.now));
        if (json)
            terminal.output().append(JsonLine()
                                         .text("folder", placed.folder)
                                         .text("oldName", placed.item.oldName)
                                         .text("newName", placed.item.newName)
                                         .text("now", now)
                                         .textOrNull("nowName", where.name)
                                         .end());
        else
            terminal.output().append(fmt::format(
                "{}\t{}\t{}\t{}\t{}\n", terminal.shown(placed.folder), terminal.shown(placed.item.oldName),
                terminal.shown(placed.item.newName), now, terminal.shown(where.name)));
    });
    return terminal.finish();
}

PastRun runNamed(const RunHistory& history, const std::string& name) {
    auto found = history.find(name);
    if (const auto* reason = std::get_if<std::string>(&found))
        throw UsageError(*reason);
    return std::get<PastRun>(std::move(found));
}

ExitStatus tellLeft(const std::vector<RunHistory::NotForgotten>& left, Terminal& terminal) {
    for (const auto& [run, error] : left)
        terminal.complain(
            fmt::format("tvrn: {} can't be forgotten: {}", run, std::generic_category().message(error)));
    return left.empty() ? ExitStatus::allWell : ExitStatus::itemsFailed;
}

ExitStatus forget(const PastRun& run, Terminal& terminal) {
    const int error = RunHistory::forget(run);
    return error == 0 ? ExitStatus::allWell : tellLeft({{run.name, error}}, terminal);
}

} // namespace

ExitStatus runHistoryCommand(const HistoryOptions& options) {
    Terminal terminal;
    const std::string folder = UserFolders::state() + "/tavrin/runs";
    const RunHistory history(folder);
    if (!options.forget.empty())
        return forget(runNamed(history, options.forget), terminal);
    if (!options.run.empty())
        return printItems(runNamed(history, options.run), options.json, terminal);
    if (const std::string problem = history.problem(); !problem.empty())
        throw UsageError(problem);
    if (options.clear)
        return terminal.finish(tellLeft(history.clear(), terminal));
    for (const PastRun& run : history.runs())
        printRun(run, options.json, terminal);
    return terminal.finish();
}

} // namespace tavrin
