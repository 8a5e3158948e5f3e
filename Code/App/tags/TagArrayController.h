#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

class TagLibraryHelper;
class UserDefaults;
struct TagItem;

/// What stands behind the list of tags: the rows of the selected tab, which is the user default
/// "tagLibraryTabIndex" (0 all, then one category each). Main thread; the tag library and the user defaults
/// outlive it, and the rows belong to the library.
class TagArrayController {
  public:
    using Rows = std::vector<const TagItem*>;
    static constexpr const char* pasteboardType = "public.utf8-plain-text";
    /// The widest picture of a dragged row, in points.
    static constexpr double dragImageWidth = 190.0;

    TagArrayController(const TagLibraryHelper& tagLibrary, UserDefaults& userDefaults);

    /// The rows of the tab that is selected at this moment; none for a number without a tab.
    [[nodiscard]] Rows filteredArray() const;
    [[nodiscard]] const std::vector<TagItem>& getAvailableTags() const;
    /// What the list shows, replaced at each change of the tab.
    [[nodiscard]] const Rows& content() const { return shown; }
    /// Called after each such change.
    void setOnChange(std::function<void()> observer) { onChange = std::move(observer); }

    /// The text that a drag of rows offers under `pasteboardType`: the name of the first of them, in UTF-8.
    [[nodiscard]] std::optional<std::string> draggedText(std::span<const std::size_t> selectedRows) const;

  private:
    void refresh();

    const TagLibraryHelper& library;
    UserDefaults& defaults;
    Rows shown;
    std::function<void()> onChange;
    std::shared_ptr<void> observation; ///< last, so that it ends first
};

} // namespace tavrin
