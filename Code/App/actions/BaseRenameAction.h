#pragma once

#include "actions/BaseAction.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What an action does, shown by a case: parameters beside the defaults, a name, and what becomes of it.
struct ActionExample {
    PropertyDictionary parameters;
    std::u16string before;
    std::u16string after;
};

/// The part of a name that an action works on; the values are those of the parameter `fragmentSelection`.
enum class FragmentSelection : std::int32_t {
    wholeName = 0,
    withoutExtension = 1,
    extensionWithoutDot = 2,
    extensionWithDot = 3,
};

/// An action that gives an item a new name: cuts the name into the fragment that it may touch and the rest,
/// runs the subclass on the fragment, and glues the result back.
class BaseRenameAction : public BaseAction {
  public:
    BaseRenameAction();

    void executeWithInputContext(InputContext& input, OutputContext& output) override;
    /// Cases for the user, run as tests too.
    [[nodiscard]] virtual std::vector<ActionExample> examples() const;

    [[nodiscard]] virtual bool isFragmentSelectionSupported() const { return true; }
    /// Together with usesMiniButtons: which of three sizes the fragment selector has.
    [[nodiscard]] virtual bool hasLongParameterList() const { return false; }
    [[nodiscard]] virtual bool usesMiniButtons() const { return false; }
    [[nodiscard]] virtual bool usesTagLibrary() const { return false; }
    /// In points.
    [[nodiscard]] virtual double preferredTagLibraryDisplayHeight() const { return 100.0; }

  protected:
    /// Appends the new form of the fragment to `result`. A fragment that can't be worked on is appended as it
    /// came. The caches are fresh. `input` is not to be changed.
    virtual void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                             std::u16string& result);

  private:
    std::int32_t paramFragmentSelectionMode = 1;
};

} // namespace tavrin
