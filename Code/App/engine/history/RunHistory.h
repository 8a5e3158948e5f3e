#pragma once

#include "engine/history/RunRecord.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace tavrin {

class FolderEntries;
class UserDefaults;

/// How much of the history is kept.
struct HistoryLimits {
    int days = 90;
    int runs = 50;

    /// As the user wants it: "historyDays" and "historyRuns"; what is absent or below 1 is as above.
    [[nodiscard]] static HistoryLimits of(const UserDefaults& defaults);
};

/// Where a program keeps the records of its runs, and how it is called in them.
struct HistoryPlace {
    std::string folder; ///< a path in bytes; empty: no records are kept
    std::string who = "tvrn";
    /// Asked before old records go. Any thread.
    std::function<HistoryLimits()> limits = [] { return HistoryLimits(); };
};

/// One record of the history, without its items.
struct PastRun {
    std::string name;
    std::string path;
    std::string problem; ///< why it can't be used, a sentence; empty where it can
    RunHeading heading;
    std::string folder; ///< the first of the record
    std::optional<RunEnd> end;
    std::uint64_t size = 0;
    bool isUnderWay = false;
    bool isUndone = false;   ///< a later run has put things back as they were before this one
    bool isFinished = false; ///< a later run has done what this one left undone
    bool isSettled = true;   ///< it ended, or a later run has seen to what it left behind
    std::string root = {};   ///< the rename that it and its like go back to
    bool coversLine = true;  ///< its record has all items of its root, not only those that a cut left behind
    bool hasBegunNothing = false; ///< it was cut off before it touched anything

    [[nodiscard]] bool isInterrupted() const { return !end && !isUnderWay && problem.empty(); }
    /// Whether the names that its chain of runs started from are meant to be gone by it.
    [[nodiscard]] bool isForward() const { return heading.what != RunKind::undo; }
    /// "whole", "stopped", "interrupted", "undone", "running" or "damaged".
    [[nodiscard]] std::string_view state() const;
};

/// What undo or redo is to do: which record it goes by, and to which of its two names items go.
struct ChosenRun {
    PastRun run;
    RunKind what = RunKind::undo;
    bool toNewNames = false;
};

/// The records of past runs in their folder. Every call looks at the disk anew. Any thread.
class RunHistory {
  public:
    explicit RunHistory(std::string newFolder) : folder(std::move(newFolder)) {}

    /// Why the folder can't be read, a sentence without its dot; empty where it can or does not exist yet.
    [[nodiscard]] std::string problem() const;
    /// Newest first. Of whole records only both ends are read, others are examined from end to end.
    [[nodiscard]] std::vector<PastRun> runs() const;
    /// `name` is a run's name, or an end of it that no other has.
    [[nodiscard]] std::variant<PastRun, std::string> find(std::string_view name) const;
    /// What `undo` or `redo` takes up, by name or, where that is empty, by itself; else a sentence that says
    /// why nothing.
    [[nodiscard]] std::variant<ChosenRun, std::string> choose(RunKind what, std::string_view name) const;
    /// What `choose` would take up by itself as far as both ends of the records tell, damage between them
    /// aside; or the run that stands in its way. Quick however long the records are.
    [[nodiscard]] std::optional<ChosenRun> outlook(RunKind what) const;
    /// The newest run that was cut off and has not been seen to since.
    [[nodiscard]] std::optional<PastRun> interruptedRun() const;

    /// Removes one record that no run holds; 0 or an errno value.
    static int forget(const PastRun& run);
    /// Removes what is too old or too much, but no run that was cut off before it is seen to.
    void prune(const HistoryLimits& limits = {}) const;
    struct NotForgotten {
        std::string run;
        int error = 0; ///< an errno value
    };
    /// Removes all records but those of runs that were cut off and not seen to, are under way, or can't be
    /// read; tells which could not be removed.
    [[nodiscard]] std::vector<NotForgotten> clear() const;

    /// A name for a new record, above all that are there.
    [[nodiscard]] std::string nextName() const;

  private:
    /// 0 or an errno value.
    int read(FolderEntries& entries) const;
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] std::vector<PastRun> runs(bool examines) const;
    /// Those that are too old or too much, newest first; never the newest of all.
    [[nodiscard]] std::vector<std::string> namesBeyond(const HistoryLimits& limits) const;

    std::string folder;
};

/// Tells which later run has given an item yet another name. Reads the records of later runs when it is first
/// asked.
class RenamedAgain {
  public:
    struct Hit {
        std::string run;
        std::string newName;
    };

    /// `folder` is that of the records; `run` the one that later is meant of.
    RenamedAgain(std::string historyFolder, std::string runName)
        : folder(std::move(historyFolder)), after(std::move(runName)) {}

    /// Null where no later run has to do with the item.
    [[nodiscard]] const Hit* find(std::string_view path, std::uint64_t inode);

  private:
    void read();

    std::string folder;
    std::string after;
    bool isRead = false;
    std::unordered_map<std::string, Hit> hits; ///< by inode and path
};

} // namespace tavrin
