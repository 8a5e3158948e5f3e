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

/// The same in so few words that they stand beside the name: a form with places "%1" and "%2" for values,
/// which are UTF-8. The form is a constant of the program, so that it can be looked up in another language.
struct ProblemNote {
    std::string_view form = {}; ///< empty where nothing is to be told
    std::vector<std::string> values = {};
    bool isInfo = false; ///< no problem, but to be known
    [[nodiscard]] std::string sentence() const;
};

/// The most bytes that the system takes as a path.
inline constexpr std::size_t longestPath = 4095;

// What the last preview has foreseen of the rows in a context. Rows without a problem cost nothing; whoever
// uses the main context holds its mutex.

/// Absent for a row without a problem.
[[nodiscard]] std::optional<ToldProblem> problemOf(StoreContext& context, RowId id);
/// What is to be told of the row beside its new name.
[[nodiscard]] ProblemNote noteOf(StoreContext& context, RowId id);
/// The message of a row that has a problem, and behind it the note where only that says which item or
/// character it is about.
[[nodiscard]] std::string reasonInFull(StoreContext& context, RowId id);
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
