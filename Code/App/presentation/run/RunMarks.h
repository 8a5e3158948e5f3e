#pragma once

#include "engine/renaming/RunOutcomes.h"
#include "shell/preview/PreviewList.h"

#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// What a run has made of the rows of the list, for those that are painted: while it goes on, and of those
/// that were not renamed why, until the row changes. Main thread.
class RunMarks {
  public:
    RunMarks(const RunOutcomes& runOutcomes, PreviewList& shownList)
        : outcomes(runOutcomes), list(shownList) {}

    /// Forgets the last run and follows the one that begins.
    void begin();
    /// Takes over what has failed since the last call.
    void refresh();
    /// The run is over: what it marked stays until the list is read anew.
    void end();
    /// The list has been read anew: from now on a reason holds as long as its row keeps the new name that it
    /// has now.
    void listWasRead();

    /// The outcomes of the run that goes on, for all rows at once; absent where none does.
    [[nodiscard]] std::optional<RunOutcomes::View> runUnderWay() const {
        return isOver ? std::nullopt : view;
    }
    [[nodiscard]] RunOutcome outcomeOf(const PreviewList::Row& row) const;
    /// Why a row was not renamed; empty for others.
    [[nodiscard]] QString reasonOf(const PreviewList::Row& row) const;
    /// The rows that were not renamed and are on the list, in ascending order.
    [[nodiscard]] std::vector<RowId> notRenamed() const;
    [[nodiscard]] bool hasNotRenamed() const { return !reasons.empty(); }
    /// The row of the failure after this one, which goes on behind it and begins anew after the last.
    [[nodiscard]] RowId nextFailed();

  private:
    struct Reason {
        std::string text; ///< UTF-8
        std::optional<std::u16string> newName;
    };

    const RunOutcomes& outcomes;
    PreviewList& list;
    std::optional<RunOutcomes::View> view; ///< while the rows are those that the run has, or found
    bool isOver = true;
    std::size_t known = 0; ///< failures taken over
    std::vector<std::string> failedPaths;
    std::size_t visited = 0;                         ///< of these
    std::unordered_map<std::string, Reason> reasons; ///< by path
};

} // namespace tavrin
