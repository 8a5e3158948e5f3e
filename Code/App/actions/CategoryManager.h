#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The categories of the catalogue as the two linked menus need them. An absent or unknown index or category
/// gives nothing.
struct CategoryManager {
    static std::optional<std::int32_t> categoryForAction(std::optional<std::int32_t> menuIndex);
    static std::optional<std::int32_t> defaultActionForCategory(std::optional<std::int32_t> category);
};

/// Between the menu index of an action and its category; back to the category's default action.
struct CategoryTransformer {
    static std::optional<std::int32_t> forward(std::optional<std::int32_t> menuIndex);
    static std::optional<std::int32_t> reverse(std::optional<std::int32_t> category);
};

/// From the menu index of an action to its place within its category. The reverse takes a number as a menu
/// index and gives its category.
struct CategoryItemTransformer {
    static std::optional<std::int32_t> forward(std::optional<std::int32_t> menuIndex);
    static std::optional<std::int32_t> reverse(std::optional<std::int32_t> menuIndex);
};

/// From the menu index of an action to the labels of its category.
struct CategoryItemNamesArrayTransformer {
    static std::optional<std::vector<std::u16string>> forward(std::optional<std::int32_t> menuIndex);
};

} // namespace tavrin
