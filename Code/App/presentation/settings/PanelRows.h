#pragma once

#include "actions/ParameterDescription.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class BaseRenameAction;

/// One row of a panel: the parameters that share it, the first of which gives the label.
struct PanelRow {
    std::vector<const ParameterDescription*> parameters;
    std::string_view head; ///< a heading above the row, or empty

    [[nodiscard]] const ParameterDescription& first() const { return *parameters.front(); }
};

/// The rows of an action's panel, made from its parameter table: what belongs together stands in one row, the
/// order of the run comes last, and what has no control of its own is left out. The descriptions live as long
/// as the action.
[[nodiscard]] std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action);

/// A sentence of the panel about the action, or empty.
[[nodiscard]] std::string_view panelRemarkOf(std::string_view actionName);

/// What is added to a number of this key before it is shown.
[[nodiscard]] int shownOffsetOf(std::string_view key);

} // namespace tavrin
