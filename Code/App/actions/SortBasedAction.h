#pragma once

#include "actions/BaseRenameAction.h"

namespace tavrin {

/// The sort modes, 0 to 13, with their menu texts.
[[nodiscard]] std::span<const ParameterChoice> sortingModeChoices();

/// An action that depends on the order of the items. It tells in which order the run goes, and whether each
/// folder counts by itself; whoever runs it hands each item its rank in that order.
class SortBasedAction : public BaseRenameAction {
  public:
    /// The sort mode of an order made by hand, and the one that takes its place.
    static constexpr std::int32_t manualSorting = 13;
    static constexpr std::int32_t smartNameSorting = 10;

    SortBasedAction();

    /// The sort modes, 0 to 13, as they stand in the parameters; the second breaks ties of the first.
    [[nodiscard]] std::int32_t getSortingMode() const;
    [[nodiscard]] std::int32_t getSortingMode2() const;
    /// False where the rank starts again in each folder.
    [[nodiscard]] bool shouldUseGlobalSorting() const;
    [[nodiscard]] bool usingManualSorting() const;
    void activateManualSorting();
    void deactivateManualSortingIfNecessary();

    /// As in the base; a manual order does not survive a load while automatic sorting is on.
    void setParameterList(const PropertyDictionary& list) override;
    [[nodiscard]] std::optional<PropertyValue> valueForKey(std::string_view key) const override;

  protected:
    /// The item's place in the run, from 1.
    [[nodiscard]] static std::int32_t getSortIndex(const InputContext& input) { return input.rank; }
    [[nodiscard]] std::vector<std::string_view>
    keyPathsForValuesAffectingValueForKey(std::string_view key) const override;

  private:
    std::int32_t paramSortEachFolderSeparately = 0;
    std::int32_t paramSortingOrder = smartNameSorting;
    std::int32_t paramSortingOrder2 = 0;
};

} // namespace tavrin
