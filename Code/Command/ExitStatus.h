#pragma once

#include <stdexcept>

namespace tavrin {

/// What the program tells its caller.
enum class ExitStatus : int {
    allWell = 0,
    itemsFailed = 1, ///< at least one item
    badUsage = 2,    ///< nothing has been touched
    stopped = 3,     ///< by the user
};

/// The command cannot do what it was asked for; nothing has been touched. The text is a sentence for the
/// user.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace tavrin
