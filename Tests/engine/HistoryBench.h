#pragma once

#include "RenameBench.h"
#include "engine/history/RunHistory.h"
#include "engine/history/TakeBack.h"

#include <string>
#include <vector>

namespace tavrin::test {

/// A bench whose runs leave records, in a folder of their own.
class HistoryBench : public RenameBench {
  public:
    explicit HistoryBench(const std::string& place = "");

    TemporaryFolder records;
    /// What the last undo or redo could not do, "message: name" by names relative to the folder.
    std::vector<std::string> failures;
    /// Why it did not begin; empty where it did.
    std::string refusal;

    /// The run to undo or redo; empty: what is next.
    std::string chosen;

    /// Undoes or redoes it, as a program started anew would; the number of changed names.
    int takeBack(RunKind what, bool takesReplaced = false);
    /// The state of each run, newest first.
    [[nodiscard]] std::vector<std::string> states() const;
    /// The file of the newest record, relative to the folder of records.
    [[nodiscard]] std::string newestRecord() const;
    /// Cuts the last line off the newest record, as if the run had been killed, and marks its folders as ones
    /// that can't refuse a taken name.
    void interruptNewest(bool hasNoFlag = false) const;
};

} // namespace tavrin::test
