#pragma once

#include "store/rows/NameSlots.h"
#include "store/rows/NodeRow.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class StoreContext;

/// The children of one folder by their current names, for the search for who holds a wanted name.
class SiblingNames {
  public:
    /// Takes the names of these rows.
    void build(StoreContext& from, const std::vector<RowId>& children);
    /// The child that bears this very name, else the last one whose lower-cased name is the same when
    /// lower-cased. `name` is in the bytes of the file system.
    RowId find(std::string_view name);
    void clear();

  private:
    /// The last child whose lower-cased name is `key`; null for none.
    RowId* findLowerCased(std::uint32_t hash);

    StoreContext* context = nullptr;
    NameSlots lowerCased;
    NameSlots veryNames; ///< only filled when children differ in case alone
    std::string key;
    std::string other;
};

} // namespace tavrin
