#pragma once

#include "actions/BaseRenameAction.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

class ContentBasedAction;

/// What the two strategies of a composed action tell each other about the name in hand. The views are valid
/// while that name is worked on.
struct StrategyContext {
    const InputContext& input;
    OutputContext& output; ///< its name is not to be changed here
    std::u16string_view textAsFound;
    std::u16string_view nameMinusText;
};

/// One half of a composed action. It keeps no values of its own: its parameters are rows of the action's
/// table, with the caches here.
class RenameActionStrategy {
  public:
    virtual ~RenameActionStrategy() = default;
    /// Adds the parameters to the action, which owns the strategy.
    virtual void addParametersTo(ContentBasedAction& action);
    /// Called after the caches have been refreshed.
    virtual void prepareParameters() {}
};

/// Where a text comes from.
class ContentStrategy : public RenameActionStrategy {
  public:
    /// The text to insert, or nothing when there is none; valid until the next call.
    [[nodiscard]] virtual std::optional<std::u16string_view> processName(std::u16string_view name,
                                                                         StrategyContext& context) = 0;
};

/// Where a text goes.
class InsertionStrategy : public RenameActionStrategy {
  public:
    /// Appends the new name to `result`: the name as it came where the place does not exist.
    virtual void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                        std::u16string& result) = 0;
};

} // namespace tavrin
