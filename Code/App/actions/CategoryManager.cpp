#include "actions/CategoryManager.h"

#include "actions/ActionList.h"

namespace tavrin {

std::optional<std::int32_t> CategoryManager::categoryForAction(std::optional<std::int32_t> menuIndex) {
    return menuIndex ? ActionList::sharedActionList().translateActionIndexToCategoryIndex(*menuIndex)
                     : std::nullopt;
}

std::optional<std::int32_t> CategoryManager::defaultActionForCategory(std::optional<std::int32_t> category) {
    return category ? ActionList::sharedActionList().getFirstActionIndexForCategoryIndex(*category)
                    : std::nullopt;
}

std::optional<std::int32_t> CategoryTransformer::forward(std::optional<std::int32_t> menuIndex) {
    return CategoryManager::categoryForAction(menuIndex);
}

std::optional<std::int32_t> CategoryTransformer::reverse(std::optional<std::int32_t> category) {
    return CategoryManager::defaultActionForCategory(category);
}

std::optional<std::int32_t> CategoryItemTransformer::forward(std::optional<std::int32_t> menuIndex) {
    const auto first =
        CategoryManager::defaultActionForCategory(CategoryManager::categoryForAction(menuIndex));
    return first ? std::optional(*menuIndex - *first) : std::nullopt;
}

std::optional<std::int32_t> CategoryItemTransformer::reverse(std::optional<std::int32_t> menuIndex) {
    return CategoryManager::categoryForAction(menuIndex);
}

std::optional<std::vector<std::u16string>>
CategoryItemNamesArrayTransformer::forward(std::optional<std::int32_t> menuIndex) {
    const auto category = CategoryManager::categoryForAction(menuIndex);
    return category ? std::optional(ActionList::sharedActionList().getItemNamesForCategory(*category))
                    : std::nullopt;
}

} // namespace tavrin
