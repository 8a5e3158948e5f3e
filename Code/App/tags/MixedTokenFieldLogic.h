#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class TagLibraryHelper;

/// The logic of the field in which a pattern is edited. Its value is a list of texts; one that is a tag of
/// the library shows as a token, which takes one position, and any other as plain text.
class MixedTokenFieldLogic {
  public:
    using Tokens = std::vector<std::u16string>;

    /// The library must outlive this.
    explicit MixedTokenFieldLogic(const TagLibraryHelper& tagLibrary) : library(tagLibrary) {}

    [[nodiscard]] bool isToken(std::u16string_view entry) const;
    /// The index of the entry that the insertion point is in or at an edge of, the first of two; 0 if there
    /// is none.
    [[nodiscard]] std::size_t tokenIndexFromInsertionPoint(const Tokens& value, std::size_t location) const;
    /// After each change by the user: the value with the tags recognised in the entry at the insertion
    /// point; absent where the field is to keep its value. In both cases the pattern has changed.
    [[nodiscard]] std::optional<Tokens> controlTextDidChange(const Tokens& value, std::size_t location) const;

  private:
    [[nodiscard]] Tokens recognised(std::u16string_view working) const;

    const TagLibraryHelper& library;
};

/// Between the pattern of an action and the entries of the field that edits it.
struct StringToTokenArrayTransformer {
    /// Nothing for no pattern and for an empty one.
    [[nodiscard]] static std::optional<std::vector<std::u16string>>
    transformedValue(const std::optional<std::u16string>& pattern);
    /// Empty for no entries.
    [[nodiscard]] static std::u16string
    reverseTransformedValue(const std::optional<std::vector<std::u16string>>& tokens);
};

} // namespace tavrin
