#include "engine/history/RunHistory.h"

#include "engine/history/RunRecordReader.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/PathParts.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <map>
#include <memory>
#include <ranges>
#include <set>
#include <system_error>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::string_view suffix = ".run";
constexpr std::uint64_t mostBytes = 256U << 20;
constexpr std::size_t mostHits = 1'000'000;

using Clock = std::chrono::system_clock;

std::string nameAt(Clock::time_point moment) {
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(moment.time_since_epoch());
    return fmt::format("{:%Y%m%dT%H%M%S}.{:06}", fmt::gmtime(Clock::to_time_t(moment)),
                       micros.count() % 1000000);
}

/// The number that the digits make, whatever stands between them, and one.
std::string countedUp(std::string name) {
    for (auto digit = name.rbegin(); digit != name.rend(); ++digit) {
        if (*digit >= '0' && *digit < '9') {
            ++*digit;
            break;
        }
        if (*digit == '9')
            *digit = '0';
    }
    return name;
}

/// Unless it `examines`, one without an end counts as whole and as having begun.
PastRun look(const std::string& folder, const std::string& name, bool examines) {
    PastRun run;
    run.name = name;
    run.path = folder + "/" + name + std::string(suffix);
    RunRecordReader reader(run.path);
    run.problem = reader.problem();
    run.heading = reader.heading();
    run.folder = reader.firstFolder();
    run.end = reader.end();
    run.size = reader.size();
    run.isUnderWay = reader.isHeld();
    run.root = name;
    run.isSettled = run.end.has_value();
    if (!examines || run.end || run.isUnderWay || !reader.isReadable())
        return run;
    reader.examine();
    run.hasBegunNothing = !reader.isDamaged() && reader.itemCount() == 0;
    run.isSettled = run.hasBegunNothing;
    if (reader.isDamaged() && run.problem.empty())
        run.problem = "It is damaged.";
    else if (run.hasBegunNothing)
        run.problem.clear();
    return run;
}

/// Whether it leaves anything to take back.
bool hasEffect(const PastRun& run) { return !run.hasBegunNothing && (!run.end || run.end->changed > 0); }

bool isUnfinished(const PastRun& run) { return !run.end || run.end->wasStopped; }

/// Which names the items of a line of runs bear.
enum class LineNames { former, wanted, mixed };

/// Whether names may be other than before it.
bool hasMoved(const PastRun& run) {
    return !run.hasBegunNothing &&
           (!run.end || run.end->changed > 0 || (run.end->failed == 0 && !run.end->wasStopped));
}

LineNames namesAfter(const PastRun& run, LineNames before, std::optional<LineNames> beforeUndone) {
    if (!hasMoved(run))
        return before;
    if (isUnfinished(run))
        return LineNames::mixed;
    return beforeUndone.value_or(run.isForward() ? LineNames::wanted : LineNames::former);
}

/// What the runs of one line have done to each other. `runs` comes newest first.
void relate(std::vector<PastRun>& runs) {
    struct Known {
        PastRun* run;
        LineNames before;
    };
    std::map<std::string, Known, std::less<>> byName;
    std::map<std::string, LineNames, std::less<>> lines; // by root
    for (PastRun& run : std::views::reverse(runs)) {
        std::optional<LineNames> beforeUndone;
        LineNames* names = nullptr;
        if (const auto of = byName.find(run.heading.of); of != byName.end()) {
            const auto& [other, beforeOther] = of->second;
            run.root = other->root;
            names = &lines[run.root];
            const bool undoesIt = other->isForward() != run.isForward();
            if (undoesIt)
                beforeUndone = beforeOther;
            // Begun half way, it knows folders by paths that another of them bore before.
            run.coversLine = other->coversLine && *names != LineNames::mixed;
        } else {
            if (!run.heading.of.empty())
                run.root = run.heading.of;
            names = &lines[run.root];
        }
        byName.emplace(run.name, Known{&run, *names});
        *names = namesAfter(run, *names, beforeUndone);
    }
    std::set<std::string, std::less<>> attempted;
    std::set<std::string, std::less<>> moved; // by a later run
    for (PastRun& run : runs) {
        const LineNames names = moved.contains(run.root) ? lines[run.root] : LineNames::mixed;
        run.isUndone = names == (run.isForward() ? LineNames::former : LineNames::wanted);
        run.isFinished = names == (run.isForward() ? LineNames::wanted : LineNames::former);
        if (hasMoved(run))
            moved.insert(run.root);
        run.isSettled |= attempted.contains(run.root);
        if (run.end && !run.heading.of.empty())
            attempted.insert(run.root);
    }
}

/// The run whose turn it is, or that stands in the way of all; null where there is none.
const PastRun* nextOf(const std::vector<PastRun>& all, RunKind what) {
    const auto isIt = [isUndo = what == RunKind::undo](const PastRun& run) {
        if (!run.problem.empty() || run.isUnderWay)
            return true;
        const bool goesBack = run.isForward() == isUndo;
        const bool isNext = goesBack ? !run.isUndone : isUnfinished(run) && !run.isFinished;
        return isNext && run.coversLine && hasEffect(run);
    };
    const auto found = std::ranges::find_if(all, isIt);
    return found == all.end() ? nullptr : &*found;
}

/// Whether a record that ended well has lost something since.
bool isDamaged(const PastRun& run) {
    RunRecordReader reader(run.path);
    reader.examine();
    return reader.isDamaged();
}

constexpr std::string_view damaged = "It is damaged.";

std::string sentence(const PastRun& run, std::string_view what) {
    return fmt::format("the run {} {}", run.name, what);
}

std::string sentenceOfNewest(const PastRun& run, std::string_view problem, const std::vector<PastRun>& all) {
    std::string reason = sentence(run, fmt::format("is the newest and can't be used. {}", problem));
    const auto older = std::ranges::find_if(all, [&](const PastRun& other) {
        return other.name < run.name && other.problem.empty() && hasEffect(other);
    });
    return older == all.end() ? reason : reason + fmt::format(" The next older one is {}.", older->name);
}

std::string keyOf(std::string_view path, std::uint64_t inode) {
    return std::to_string(inode).append(1, ' ').append(path);
}

} // namespace

HistoryLimits HistoryLimits::of(const UserDefaults& defaults) {
    HistoryLimits limits;
    if (const int days = defaults.integerForKey("historyDays"); days > 0)
        limits.days = days;
    if (const int runs = defaults.integerForKey("historyRuns"); runs > 0)
        limits.runs = runs;
    return limits;
}

std::string_view PastRun::state() const {
    if (!problem.empty())
        return "damaged";
    if (isUnderWay)
        return "running";
    if (isUndone)
        return "undone";
    if (isFinished || (end && !end->wasStopped))
        return "whole";
    return end ? "stopped" : "interrupted";
}

std::vector<std::string> RunHistory::names() const {
    FolderEntries entries;
    std::vector<std::string> found;
    if (read(entries) != 0)
        return found;
    for (const FolderEntry entry : entries) {
        if (entry.name.size() > suffix.size() && entry.name.ends_with(suffix))
            found.emplace_back(entry.name.substr(0, entry.name.size() - suffix.size()));
    }
    std::ranges::sort(found, std::greater<>());
    return found;
}

int RunHistory::read(FolderEntries& entries) const {
    std::unique_ptr<OpenFolder> open;
    const int error = FileSystem::sharedInstance().openFolder(folder, open);
    return error != 0 ? error : open->entries(entries);
}

std::string RunHistory::problem() const {
    FolderEntries entries;
    const int error = read(entries);
    if (error == 0 || error == ENOENT)
        return {};
    return fmt::format("the records in {} can't be read: {}", folder, std::generic_category().message(error));
}

std::vector<PastRun> RunHistory::runs() const { return runs(true); }

std::vector<PastRun> RunHistory::runs(bool examines) const {
    std::vector<PastRun> found;
    for (const std::string& name : names())
        found.push_back(look(folder, name, examines));
    relate(found);
    return found;
}

std::variant<PastRun, std::string> RunHistory::find(std::string_view name) const {
    std::vector<PastRun> matching;
    for (PastRun& run : runs()) {
        if (run.name == name)
            return std::move(run);
        if (run.name.ends_with(name))
            matching.push_back(std::move(run));
    }
    if (std::string reason = problem(); !reason.empty())
        return reason;
    if (matching.empty() || name.empty())
        return fmt::format("there is no run \"{}\"", name);
    if (matching.size() > 1)
        return fmt::format("more than one run has a name that ends with \"{}\"", name);
    return std::move(matching.front());
}

std::variant<ChosenRun, std::string> RunHistory::choose(RunKind what, std::string_view name) const {
    const bool isUndo = what == RunKind::undo;
    if (!name.empty()) {
        const auto found = find(name);
        if (const auto* reason = std::get_if<std::string>(&found))
            return *reason;
        const PastRun& run = std::get<PastRun>(found);
        if (!run.problem.empty() || isDamaged(run))
            return sentence(run,
                            "can't be used. " + (run.problem.empty() ? std::string(damaged) : run.problem));
        if (run.isUnderWay)
            return sentence(run, "is still under way");
        if (isUndo && !run.isForward() && !isUnfinished(run))
            return sentence(run, "is an undo, which redo takes back");
        return ChosenRun{run, what, run.isForward() != isUndo};
    }
    const std::vector<PastRun> all = runs();
    const PastRun* run = nextOf(all, what);
    if (!run) {
        std::string reason = problem();
        return !reason.empty() ? reason
                               : std::string(isUndo ? "there is no run to undo" : "there is no run to redo");
    }
    if (!run->problem.empty())
        return sentenceOfNewest(*run, run->problem, all);
    if (run->isUnderWay)
        return sentence(*run, "is still under way");
    if (isDamaged(*run))
        return sentenceOfNewest(*run, damaged, all);
    return ChosenRun{*run, what, run->isForward() != isUndo};
}

std::optional<ChosenRun> RunHistory::outlook(RunKind what) const {
    const std::vector<PastRun> all = runs(false);
    const PastRun* run = nextOf(all, what);
    if (!run)
        return std::nullopt;
    return ChosenRun{*run, what, run->isForward() != (what == RunKind::undo)};
}

std::optional<PastRun> RunHistory::interruptedRun() const {
    for (PastRun& run : runs()) {
        if (run.isInterrupted() && !run.isSettled)
            return std::move(run);
    }
    return std::nullopt;
}

int RunHistory::forget(const PastRun& run) {
    return run.isUnderWay ? EBUSY : FileSystem::sharedInstance().removeFile(run.path);
}

std::vector<RunHistory::NotForgotten> RunHistory::clear() const {
    std::vector<NotForgotten> left;
    for (const PastRun& run : runs()) {
        if (!run.isSettled || run.isUnderWay || !run.problem.empty())
            continue;
        if (const int error = forget(run))
            left.push_back({run.name, error});
    }
    return left;
}

void RunHistory::prune(const HistoryLimits& limits) const {
    const std::vector<std::string> surplus = namesBeyond(limits);
    std::vector<PastRun> settled;
    for (const std::string& name : surplus)
        if (PastRun run = look(folder, name, false); run.isSettled)
            settled.push_back(std::move(run));
    if (settled.size() < surplus.size()) { // what the others have left behind is told by later runs
        settled = runs();
        std::erase_if(settled, [&](const PastRun& run) {
            return !run.isSettled || std::ranges::find(surplus, run.name) == surplus.end();
        });
    }
    for (const PastRun& run : settled)
        static_cast<void>(forget(run));
}

std::vector<std::string> RunHistory::namesBeyond(const HistoryLimits& limits) const {
    const std::string oldest = nameAt(Clock::now() - std::chrono::days(limits.days));
    const auto mostRuns = static_cast<std::size_t>(limits.runs);
    std::vector<std::string> beyond;
    std::unique_ptr<OpenFolder> place;
    if (FileSystem::sharedInstance().openFolder(folder, place) != 0)
        return beyond;
    std::size_t count = 0;
    std::uint64_t bytes = 0;
    for (const std::string& name : names()) {
        FileStatus status;
        if (place->status(name + std::string(suffix), status) == 0)
            bytes += status.size;
        const bool isTooMuch = ++count > mostRuns || bytes > mostBytes || name < oldest;
        if (isTooMuch && count > 1)
            beyond.push_back(name);
    }
    return beyond;
}

std::string RunHistory::nextName() const {
    const std::string process = fmt::format("-{}", ::getpid());
    std::string name = nameAt(Clock::now());
    const std::vector<std::string> taken = names();
    // Where the clock was put back, the newest of all is still the last in order.
    if (!taken.empty() && taken.front() >= name)
        name = countedUp(taken.front().substr(0, taken.front().rfind('-')));
    return name + process;
}

const RenamedAgain::Hit* RenamedAgain::find(std::string_view path, std::uint64_t inode) {
    if (!std::exchange(isRead, true))
        read();
    const auto hit = hits.find(keyOf(path, inode));
    return hit == hits.end() ? nullptr : &hit->second;
}

void RenamedAgain::read() {
    for (const PastRun& run : RunHistory(folder).runs()) {
        if (run.name <= after)
            return;
        if (!run.problem.empty() || run.isUndone)
            continue;
        RunRecordReader reader(run.path);
        reader.examine();
        reader.visitItems([&](const RecordedItem& item, std::size_t) {
            hits.try_emplace(keyOf(joinedPath(reader.folders()[item.folder].path, item.oldName), item.inode),
                             Hit{run.name, item.newName});
            return hits.size() < mostHits;
        });
    }
}

} // namespace tavrin
