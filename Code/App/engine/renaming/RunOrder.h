#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <vector>

namespace tavrin {

class StoreContext;

/// The items of a run in their order, a batch at a time: the deepest first, those that have to take turns
/// before others, the rest by name. Where nobody is asked it goes folder by folder, so that each is opened
/// once and only the items of one folder are put in order at a time. Worker thread only.
class RunOrder {
  public:
    enum class Form { byFolder, byName };

    /// What is `planned`; the run marks what it has handled.
    RunOrder(StoreContext& rows, const Predicate& planned, PassMarker marker, Form form);

    /// Empty at the end. The batch before has been handled by then.
    [[nodiscard]] std::vector<RowId> next();

  private:
    [[nodiscard]] std::vector<RowId> foldersInOrder() const;

    StoreContext& context;
    FetchRequest request;
    const Form form;
    std::vector<RowId> folders; ///< those left, the next at the end
    std::vector<RowId> items;   ///< of the folder in hand
    std::size_t taken = 0;      ///< of them
};

} // namespace tavrin
