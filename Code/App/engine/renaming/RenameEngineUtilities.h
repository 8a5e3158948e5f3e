#pragma once

#include "store/queries/Predicate.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class StoreContext;

/// Sort orders, and dumps of the store. The context is used as it is: hold the main context's mutex.
struct RenameEngineUtilities {
    /// The sort order of a sorting mode, 0 to 13; absent for any other.
    static std::optional<SortDescriptor> sortDescriptorForMode(int mode);
    /// Those of several modes, the first one counting most.
    static std::vector<SortDescriptor> orderOfModes(std::initializer_list<std::int32_t> modes);

    /// The counters, the source items and all rows with their paths, in bytes; also written to the log.
    static std::string contentsOfDatabaseAsString(StoreContext& context);
    static void printContentsOfDatabase(StoreContext& context);
    /// Logs the rows around each source item, from its folder down.
    static void printNodeHierarchy(StoreContext& context);
    static void printOneNodeHierarchyTree(StoreContext& context, RowId startingFrom, int depth);
};

} // namespace tavrin
