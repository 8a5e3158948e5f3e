#pragma once

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The ordered list of steps that the user builds, one of them current. The list is never empty. The
/// interface edits one instance on the main thread; each run makes one of its own from the flat parameter
/// list. Steps are made by the shared ActionList.
///
/// Observable keys: currentActionIndex, actionList (without a value), transientActionIndex, categoryItem,
/// fragmentSelection.
class CompositeRenameAction : public BaseRenameAction {
  public:
    using Steps = std::vector<std::unique_ptr<BaseRenameAction>>;

    /// Has one step, "Add to front". `use` is that of the steps made later.
    explicit CompositeRenameAction(ActionUse use = ActionUse::edited);
    ~CompositeRenameAction() override;

    /// Whoever edits the list; kept for the interface only.
    void setOwner(ActionObserver* newOwner) { owner = newOwner; }

    [[nodiscard]] std::int32_t count() const;
    [[nodiscard]] const Steps& getActionDictionaryList() const { return steps; }
    /// The index must be valid.
    [[nodiscard]] BaseRenameAction& actionAtIndex(std::int32_t index) const;
    [[nodiscard]] BaseRenameAction& getCurrentAction() const;
    /// Clamped to the list.
    [[nodiscard]] std::int32_t getCurrentActionIndexAsInt() const;
    /// Clamps; throws ActionError for an absent value.
    void setCurrentActionIndex(const std::optional<PropertyValue>& index);

    /// The key of the current step.
    [[nodiscard]] std::optional<PropertyValue> fragmentSelection() const;
    void setFragmentSelection(const std::optional<PropertyValue>& value);
    [[nodiscard]] std::int32_t getFragmentSelectionModeAsInt() const;

    /// The menu index of the current step; absent where it is in no menu.
    [[nodiscard]] std::optional<std::int32_t> transientActionIndex() const;
    /// Saves the parameters of the current step and puts a new action of the menu index in its place, which
    /// takes over `active` and `fragmentSelection`. Throws UnknownActionError, the step then stays.
    void setTransientActionIndex(std::int32_t menuIndex);
    /// The current step's place within its category.
    [[nodiscard]] std::optional<std::int32_t> categoryItem() const;
    void setCategoryItem(std::int32_t place);

    /// `currentActionIndex` and `composite actions array`, with `action name` and `action parameter list` of
    /// each step: the form in which chains are stored.
    [[nodiscard]] PropertyDictionary getFlatParameterList() const;
    /// Takes over all steps of a flat list; without steps in it there is a single "Produce numbered list".
    /// Throws UnknownActionError for an unknown name or an entry without one; the steps then stay.
    void setFlatParameterList(const std::optional<PropertyDictionary>& flatList);
    /// The flat list under the user default "composite action".
    void saveToPreferences() const;
    void loadFromPreferences();

    /// Move the current step by one place; nothing at the ends.
    void nudgeUp();
    void nudgeDown();
    /// Insert and remove a step; announced as a change of actionList. The current index stays. The last
    /// remaining step can't be removed (ActionError). The removed step is the caller's.
    void insertActionAtIndex(std::unique_ptr<BaseRenameAction> action, std::int32_t index);
    std::unique_ptr<BaseRenameAction> removeActionAtIndex(std::int32_t index);
    /// The steps of a flat list, made anew. Throws as setFlatParameterList.
    [[nodiscard]] Steps stepsOf(const PropertyDictionary& flatList) const;
    /// As above, of several steps at once, announced as one change. Where `wanted` is true of all steps none
    /// is removed.
    void insertSteps(Steps inserted, std::int32_t index);
    Steps removeSteps(const std::function<bool(const BaseRenameAction&)>& wanted);
    /// Whether the list of steps may be hidden: exactly one step, and active.
    [[nodiscard]] bool canClose() const;

    /// Runs all active steps on one item, each on the result of the one before.
    void executeWithInputContext(InputContext& input, OutputContext& output) override;
    /// Adds `oldName`, `path` (of the folder), `newName` and the columns `regex1` to `regex6` for one item.
    void addPreviewDataFor(const std::string& path, PropertyDictionary& toDictionary, InputContext& context);

    [[nodiscard]] std::optional<PropertyValue> valueForKey(std::string_view key) const override;
    void setValue(const std::optional<PropertyValue>& value, const std::string& key) override;

  protected:
    [[nodiscard]] std::vector<std::string_view>
    keyPathsForValuesAffectingValueForKey(std::string_view key) const override;

  private:
    [[nodiscard]] Steps stepsFrom(const PropertyArray& entries) const;
    void nudge(std::int32_t by);

    Steps steps;
    ActionUse use;
    ActionObserver* owner = nullptr;
};

} // namespace tavrin
