#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <vector>

namespace tavrin {

class StoreContext;

/// Sorts rows as a fetch in this order would: texts by code point, and by `manualOrder` what is equal.
void sortRows(StoreContext& context, const std::vector<SortDescriptor>& order, std::vector<RowId>& rows);

} // namespace tavrin
