#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/RowValues.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

class SortBasedAction;
class StoreContext;

/// Sort orders, and dumps of the store. The context is used as it is: hold the main context's mutex.
namespace RenameEngineUtilities {

/// The sort order of a sorting mode, 0 to 13; absent for any other.
[[nodiscard]] std::optional<SortDescriptor> sortDescriptorForMode(int mode);
/// What has to be known of rows to sort them.
[[nodiscard]] RowValues valuesFor(std::span<const SortDescriptor> order);
/// The order in which an action wants the rows: by its first mode, then by its second.
[[nodiscard]] std::vector<SortDescriptor> sortDescriptorsOf(const SortBasedAction& action);

/// The counters, the source items and all rows with their paths, in bytes; also written to the log.
std::string contentsOfDatabaseAsString(StoreContext& context);

} // namespace RenameEngineUtilities

} // namespace tavrin
