#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavrin {

class ActionList;

/// Finds actions by words that the user types: words of the label first, then parts of it, then what people
/// say for it, then its category. Made once from the catalogue.
class ActionSearch {
  public:
    struct Hit {
        std::int32_t menuIndex = 0;
        std::u16string label;
        std::u16string category;
        std::u16string example; ///< "photo.jpg → 001photo.jpg", or empty
    };

    explicit ActionSearch(const ActionList& catalogue);

    /// The best hits in order, `limit` at most; all actions in menu order for a text without words.
    [[nodiscard]] std::vector<Hit> find(const std::u16string& typed, std::size_t limit) const;

  private:
    struct Entry {
        Hit hit;
        std::u16string label; ///< folded, as the rest
        std::u16string synonyms;
        std::u16string category;
    };

    std::vector<Entry> entries;
};

} // namespace tavrin
