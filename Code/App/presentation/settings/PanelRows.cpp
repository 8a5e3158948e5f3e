#include "presentation/settings/PanelRows.h"

#include "actions/BaseRenameAction.h"

#include <algorithm>

namespace tavrin {

namespace {

/// The row that a parameter belongs into; the end for one that begins a row of its own.
auto rowFor(std::vector<PanelRow>& rows, const ParameterDescription& parameter) {
    return std::ranges::find_if(rows, [&](const PanelRow& row) {
        return !parameter.besideKey.empty() && row.first().key == parameter.besideKey;
    });
}

} // namespace

std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action) {
    std::vector<PanelRow> rows;
    for (const ParameterDescription& parameter : action.parameters()) {
        if (parameter.isHidden)
            continue;
        if (const auto row = rowFor(rows, parameter); row != rows.end())
            row->parameters.push_back(&parameter);
        else
            rows.push_back({{&parameter}});
    }
    std::ranges::stable_sort(rows, {}, [](const PanelRow& row) { return row.first().section; });
    return rows;
}

} // namespace tavrin
