#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The names that a folder's ".hidden" file lists, one a line, as they were when this object was made.
class HiddenNames {
  public:
    HiddenNames() = default;
    /// A list that is missing, unreadable or larger than 1 MiB counts as empty.
    explicit HiddenNames(const std::string& folder);

    [[nodiscard]] bool contains(std::string_view name) const;
    [[nodiscard]] bool empty() const { return names.empty(); }

  private:
    std::vector<std::string> names; ///< sorted
};

} // namespace tavrin
