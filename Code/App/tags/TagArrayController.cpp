#include "tags/TagArrayController.h"

#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"
#include "tags/TagLibraryHelper.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr const char* tabKey = "tagLibraryTabIndex";
/// By tab; an empty one stands for all.
constexpr std::string_view categories[]{"", "image", "camera", "exif_date", "file_date", "music"};

} // namespace

TagArrayController::TagArrayController(const TagLibraryHelper& tagLibrary, UserDefaults& userDefaults)
    : library(tagLibrary), defaults(userDefaults), shown(filteredArray()),
      observation(defaults.observe(tabKey, [this] { refresh(); })) {}

TagArrayController::Rows TagArrayController::filteredArray() const {
    Rows rows;
    const int tab = defaults.integerForKey(tabKey);
    if (tab < 0 || tab >= static_cast<int>(std::size(categories)))
        return rows;
    const std::string_view category = categories[tab];
    for (const TagItem& item : library.availableTags())
        if (category.empty() || item.category == category)
            rows.push_back(&item);
    return rows;
}

const std::vector<TagItem>& TagArrayController::getAvailableTags() const { return library.availableTags(); }

std::optional<std::string> TagArrayController::draggedText(std::span<const std::size_t> selectedRows) const {
    if (selectedRows.empty() || std::ranges::min(selectedRows) >= shown.size())
        return std::nullopt;
    return text::toUtf8(shown[std::ranges::min(selectedRows)]->name);
}

void TagArrayController::refresh() {
    shown = filteredArray();
    if (onChange)
        onChange();
}

} // namespace tavrin
