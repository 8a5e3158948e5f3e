#pragma once

#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class StoreContext;

/// The children of one folder by their current names. Eight bytes a slot and no text of its own, so that a
/// folder of a million children fits; names are compared in the rows.
class SiblingNames {
  public:
    /// Takes the names of these rows.
    void build(StoreContext& from, const std::vector<RowId>& children);
    /// The child that bears this very name, else the last one whose lower-cased name is the same when
    /// lower-cased. `name` is in the bytes of the file system.
    RowId find(std::string_view name);
    void clear();

  private:
    struct Slot {
        std::uint32_t hash = 0;
        RowId row = noRow;
    };
    using Table = std::vector<Slot>; ///< open addressing, a power of two in size

    void addLowerCased(RowId child);
    void addVeryNames(const std::vector<RowId>& children);
    bool isLowerCasedNameOf(RowId child, std::string_view wanted);

    StoreContext* context = nullptr;
    Table lowerCased;
    Table veryNames; ///< only made when children differ in case alone
    bool namesDifferInCaseAlone = false;
    std::string key;
    std::string other;
};

} // namespace tavrin
