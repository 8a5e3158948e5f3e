#pragma once

#include "actions/ParameterDescription.h"

#include <vector>

namespace tavrin {

class BaseRenameAction;

/// One row of a panel: the parameters that share it, the first of which gives the label, the heading and the
/// conditions.
struct PanelRow {
    std::vector<const ParameterDescription*> parameters;

    [[nodiscard]] const ParameterDescription& first() const { return *parameters.front(); }
};

/// The rows of an action's panel, made from its parameter table: section by section, what belongs together in
/// one row, hidden parameters left out. The descriptions live as long as the action.
[[nodiscard]] std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action);

} // namespace tavrin
