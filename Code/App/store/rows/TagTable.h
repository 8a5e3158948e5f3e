#pragma once

#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <cstddef>
#include <optional>
#include <unordered_map>

namespace tavrin {

class StoreFile;

/// The serialised metadata of files, by row. It comes once and may be long, so what exceeds a budget goes to
/// the file for good and is read from there. Not thread-safe: the store's lock guards it.
class TagTable {
  public:
    /// `file` is not owned and null without one; the budget is in bytes.
    TagTable(StoreFile* newFile, std::size_t newBudget) : file(newFile), budget(newBudget) {}

    void set(RowId row, PropertyData data);
    /// Throws StoreError when the file cannot be read.
    [[nodiscard]] std::optional<PropertyData> get(RowId row);
    void forget(RowId row);
    void leaveFile() { file = nullptr; }

  private:
    void pageOut();

    StoreFile* file;
    std::size_t budget;
    std::unordered_map<RowId, PropertyData> resident;
    std::size_t bytes = 0;
};

} // namespace tavrin
