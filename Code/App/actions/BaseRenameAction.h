#pragma once

#include "actions/BaseAction.h"
#include "store/rows/RowValues.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The part of a name that an action works on; the values are those of the parameter `fragmentSelection`.
enum class FragmentSelection : std::int32_t {
    wholeName = 0,
    withoutExtension = 1,
    extensionWithoutDot = 2,
    extensionWithDot = 3,
};

/// An action that gives an item a new name: cuts the name into the fragment that it may touch and the rest,
/// runs the subclass on the fragment, and glues the result back. A subclass overrides `edit`, or
/// `processName` where it needs to know more than the fragment.
class BaseRenameAction : public BaseAction {
  public:
    BaseRenameAction();

    /// Called by the entry of the catalogue that makes the action; constants of the program.
    void introduce(std::string_view name, std::u16string_view explanation);

    /// Makes the new name of one item.
    virtual void executeWithInputContext(InputContext& input, OutputContext& output);

    [[nodiscard]] virtual bool isFragmentSelectionSupported() const { return true; }
    /// Together with usesMiniButtons: which of three sizes the fragment selector has.
    /// Whether a value that somebody gives to the parameter of that row has an effect.
    [[nodiscard]] bool hasUseFor(const ParameterDescription& row) const;
    [[nodiscard]] virtual bool hasLongParameterList() const { return false; }
    [[nodiscard]] virtual bool usesMiniButtons() const { return false; }
    [[nodiscard]] virtual bool usesTagLibrary() const { return false; }
    /// What it will take from the rows of items, beside the order that it may want them in.
    [[nodiscard]] virtual RowValues valuesNeeded() const { return RowValues::none; }
    /// The tags that its texts may hold, with their angle brackets; constants of the program. Empty where a
    /// text is taken as it is.
    [[nodiscard]] virtual std::vector<std::u16string_view> knownTags() const { return {}; }
    /// The anchor of the action's page in the help; empty when it has none of its own.
    [[nodiscard]] virtual std::string_view helpAnchor() const { return {}; }
    /// A sentence for the user about what the action does with its present parameters; empty where they speak
    /// for themselves.
    [[nodiscard]] virtual std::u16string explanation() const { return std::u16string(ownExplanation); }
    /// What an item of that rank gets of the sequence that the action counts through, where `lastRank` is
    /// that of the last one; null for actions that do not count, and where there is nothing to be shown. The
    /// caches are fresh.
    [[nodiscard]] virtual std::optional<std::u16string> sequenceValue(std::int32_t, std::int32_t) const {
        return std::nullopt;
    }
    /// Why the action can't work with its present parameters and what they name; empty when it can, even if
    /// it will find nothing. The terminal refuses a recipe with such a step, the window shows it. The caches
    /// are fresh.
    [[nodiscard]] virtual std::string failure() const { return {}; }
    /// A menu of ready-made values for the parameters, row by row, empty rows being no choice; empty where
    /// there is none.
    [[nodiscard]] virtual std::span<const std::string_view> patternMenu() const { return {}; }
    /// Puts in the values of a row, counted from 0. A row that has none does what its action says.
    virtual void selectPattern(std::int32_t) {}
    /// What stands on the button of that menu.
    [[nodiscard]] virtual std::string_view patternMenuTitle() const { return "Ready-made"; }
    /// Whether a new name follows from the name before and, of an action that counts, from the rank, so that
    /// it does not matter when, in which order and on how many copies of the action names are made.
    [[nodiscard]] virtual bool goesByNameAlone() const { return false; }
    /// Whether it has ever asked for more than the fragment, or answered more than a name.
    [[nodiscard]] bool hasAskedForItem() const { return hasAsked; }
    /// In points.
    [[nodiscard]] virtual double preferredTagLibraryDisplayHeight() const { return 100.0; }

  protected:
    /// Appends the new form of the fragment to `result`. A fragment that can't be worked on is appended as it
    /// came. The caches are fresh.
    virtual void processName(std::u16string_view fragment, std::u16string& result);
    /// The item in hand, and what else is told of it; both only within processName.
    [[nodiscard]] const InputContext& item() const {
        hasAsked = true;
        return *itemInHand;
    }
    [[nodiscard]] OutputContext& answer() const {
        hasAsked = true;
        return *answerInHand;
    }

    /// For actions that know no fragments, in prepareParameters: the whole name counts, whatever is stored.
    void workOnTheWholeName() { paramFragmentSelectionMode = 0; }

  private:
    std::int32_t paramFragmentSelectionMode = 1;
    const InputContext* itemInHand = nullptr;
    OutputContext* answerInHand = nullptr;
    mutable bool hasAsked = false;
    std::u16string_view ownExplanation;
};

/// An action that makes the new fragment of the old one alone.
class FragmentAction : public BaseRenameAction {
  public:
    [[nodiscard]] bool goesByNameAlone() const final { return true; }

  private:
    using BaseRenameAction::answer;
    using BaseRenameAction::item;
};

/// An action without parameters of its own, told by the function that appends the new form of a fragment.
template <void (*append)(std::u16string_view fragment, std::u16string& result)>
class PlainAction final : public FragmentAction {
  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        append(fragment, result);
    }
};

} // namespace tavrin
