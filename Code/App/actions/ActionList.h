#pragma once

#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class RunLoop;

/// What an action is made for.
enum class ActionUse {
    edited,    ///< the interface edits it, so the application observes its values
    privateRun ///< a copy that one run works with
};

/// The catalogue of rename actions: which there are, in which order and under which labels the menus show
/// them, how they fall into categories, and how an action is made from its name. Menu index, category number
/// and place are counted from 0. The tables never change once made, so reading them is safe from any thread.
class ActionList {
  public:
    /// With menus of these entries: category by category, in their order within each.
    explicit ActionList(std::vector<ActionEntry> entries = allActions());
    ~ActionList();
    ActionList(const ActionList&) = delete;
    ActionList& operator=(const ActionList&) = delete;

    /// The catalogue that the application, or a test, registered (not owned).
    [[nodiscard]] static ActionList& sharedActionList();
    static void setSharedActionList(ActionList* list);

    /// Where actions are made; null (as at first) makes them on the calling thread.
    void setRunLoop(RunLoop* loop) { runLoop = loop; }
    /// Observes all values of the actions made for editing from now on (not owned, may be null). Changing it
    /// ends the observations of the former one. Main thread.
    void setObserver(ActionObserver* newObserver);
    /// The global setting of that name, kept here for the actions that depend on an order. Any thread.
    void setAutomaticSorting(bool isOn) { automaticSortingIsOn = isOn; }
    [[nodiscard]] bool automaticSorting() const { return automaticSortingIsOn; }

    [[nodiscard]] const std::vector<std::string>& nameArray() const { return names; }
    [[nodiscard]] const std::vector<std::u16string>& popUpMenuItems() const { return labels; }
    [[nodiscard]] const std::vector<std::u16string>& categoryPopUpMenuItems() const { return categories; }
    /// Entries of nameArray, separators included.
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(names.size()); }
    [[nodiscard]] bool hasAction(std::string_view name) const { return entryForName(name) != nullptr; }
    /// Null for a name that there is not.
    [[nodiscard]] const ActionEntry* entryForName(std::string_view name) const;

    /// "Error" for a name that is in no menu.
    [[nodiscard]] std::u16string popUpMenuItemStringForName(std::string_view name) const;
    [[nodiscard]] std::optional<std::int32_t> popUpMenuIndexForName(std::string_view name) const;
    /// Empty at a separator and past the ends.
    [[nodiscard]] std::string nameForPopUpIndex(std::int32_t index) const;
    /// A separator belongs to the category in front of it. Absent past the ends, as in the next two.
    [[nodiscard]] std::optional<std::int32_t> translateActionIndexToCategoryIndex(std::int32_t index) const;
    /// The default action of a category.
    [[nodiscard]] std::optional<std::int32_t>
    getFirstActionIndexForCategoryIndex(std::int32_t category) const;
    [[nodiscard]] std::vector<std::u16string> getItemNamesForCategory(std::int32_t category) const;
    /// The menu indexes of each category.
    [[nodiscard]] const std::vector<std::vector<std::int32_t>>& categoryToActionMapping() const {
        return categoryToAction;
    }

    /// A new action with the parameters last saved for its name, else its defaults. It is made on the main
    /// thread, while the caller waits. Throws UnknownActionError. Any thread; the main thread must not wait
    /// for a thread that may be in here.
    [[nodiscard]] std::unique_ptr<BaseRenameAction> newActionForName(const std::string& name,
                                                                     ActionUse use = ActionUse::edited);

    /// The parameters of one action under its name in the user defaults, key "actions".
    void saveActionParametersToPreferences(const BaseAction& action) const;
    void loadActionParametersFromPreferences(BaseAction& action) const;

  private:
    void openCategory(ActionCategory category);
    void addToMenus(const ActionEntry& entry);
    [[nodiscard]] std::unique_ptr<BaseRenameAction> internalNewActionForName(const std::string& name,
                                                                             ActionUse use) const;

    std::vector<ActionEntry> entries; ///< in the order of the menus
    std::map<std::string_view, const ActionEntry*> entriesByName;
    std::vector<std::string> names;
    std::vector<std::u16string> labels;
    std::vector<std::u16string> categories;
    std::vector<std::int32_t> actionToCategory;
    std::vector<std::vector<std::int32_t>> categoryToAction;
    std::vector<std::vector<std::u16string>> categoryToActionNames;

    RunLoop* runLoop = nullptr;
    ActionObserver* observer = nullptr;
    std::shared_ptr<void> observerLifetime;
    std::atomic<bool> automaticSortingIsOn{true};
    std::mutex making; ///< lets callers of newActionForName through one at a time, but for the main thread
};

} // namespace tavrin
