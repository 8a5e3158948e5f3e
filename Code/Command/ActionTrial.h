#pragma once

#include "actions/ActionFamilies.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What the examples of actions make of a name. No file has a part in that: examples that look at one are
/// left out.
namespace tavrin::actionTrial {

struct Trial {
    std::string_view action; ///< its stored name
    std::string recipe;      ///< the example, in canonical form
    std::u16string name;
    std::u16string newName;
};

/// Each example with each name, as if it were the only one.
[[nodiscard]] std::vector<Trial> trials(std::span<const ActionEntry* const> entries,
                                        std::span<const std::u16string> names);

} // namespace tavrin::actionTrial
