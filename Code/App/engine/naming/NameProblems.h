#pragma once

#include "store/rows/NodeRow.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class Predicate;
class StoreContext;

/// Why an item will keep its name, or be refused another, in the words of the rename itself.
struct ToldProblem {
    std::string_view code; ///< for programs, such as "too-long"; several problems may have the same
    std::string message;   ///< UTF-8, for people
};

// What the last preview has foreseen of the rows in a context. Rows without a problem cost nothing; whoever
// uses the main context holds its mutex.

/// Absent for a row without a problem.
[[nodiscard]] std::optional<ToldProblem> problemOf(StoreContext& context, RowId id);
/// What is told as the title of a row's problem: that it can't be renamed, or has been left out for it.
[[nodiscard]] std::string_view problemTitle(StoreContext& context, RowId id);
/// The rows with a problem among these, by ascending id.
[[nodiscard]] std::vector<RowId> rowsWithProblems(StoreContext& context, const Predicate& among);
/// How many these are.
[[nodiscard]] std::size_t problemCount(StoreContext& context, const Predicate& among);

// The words.

[[nodiscard]] std::string_view codeOf(NameProblem problem);
/// What holds for every item with the problem; empty for none.
[[nodiscard]] std::string_view messageOf(NameProblem problem);
/// For a name that is too long: how long it is, and how long it may be.
[[nodiscard]] std::string tooLongMessage(NameProblem problem, std::size_t length, std::size_t limit);
/// For an item that was replaced.
[[nodiscard]] std::string replacedMessage(FileStatus::Kind former, FileStatus::Kind present);

} // namespace tavrin
