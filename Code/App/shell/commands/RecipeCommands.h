#pragma once

#include "actions/CompositeRenameAction.h"
#include "shell/commands/ShellServices.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tavrin {

class ActionListCommands;
class StoreOwner;

/// The steps as text: written for people and for a shell, and read back from either. What was read in goes
/// into the chain as one change, which can be undone. Main thread.
class RecipeCommands final : private ActionObserver {
  public:
    /// What became of a text or file that was to give steps.
    struct Outcome {
        std::size_t steps = 0;  ///< that were added, or opened
        std::string title = {}; ///< what is wrong, where nothing was done; else empty
        std::string text = {};  ///< what was probably meant, or is to be said besides; may be empty
    };
    /// As many paths as a command line is to name.
    static constexpr std::size_t mostPaths = 20;

    RecipeCommands(ShellServices& shared, ActionListCommands& stepCommands, StoreOwner& owner);

    /// The chain on one line; without what only its display has written into it.
    [[nodiscard]] std::u16string line() const;
    /// A line for a POSIX shell that renames what is on the list by these steps: with the paths that the user
    /// gave, or with "PATH..." where there are none or too many.
    [[nodiscard]] std::u16string command() const;

    /// Adds the steps of a recipe, of a line that runs `tvrn`, or of a property list, behind the current
    /// step. The last of them becomes the current one, and the list of steps comes up.
    Outcome paste(std::u16string_view text);
    /// Puts the steps of a recipe's file, as text or as a property list, in the place of all others, as a
    /// preset does. `path` in bytes.
    Outcome open(const std::string& path);

    /// Takes the last change back; of steps that were pasted those that are still there, wherever they have
    /// been moved. Once more, it is done again.
    [[nodiscard]] bool canUndo() const { return !done.empty(); }
    [[nodiscard]] bool canRedo() const { return !undone.empty(); }
    void undo();
    void redo();

  private:
    /// Steps that were put in, or a whole chain that took the place of another.
    struct Change {
        std::unordered_set<const BaseRenameAction*> pasted = {}; ///< in the chain at the moment
        CompositeRenameAction::Steps removed = {};               ///< while it is undone
        std::int32_t place = 0;                                  ///< of the first of them
        PropertyDictionary otherChain = {};                      ///< empty where steps were pasted
    };

    void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue) override;
    void insert(Change& change, CompositeRenameAction::Steps steps);
    void exchangeChain(Change& change);
    void remember(Change change);
    void showList();

    ShellServices& services;
    ActionListCommands& commands;
    StoreOwner& store;
    std::vector<Change> done;
    std::vector<Change> undone;
    ActionObservation observation;
};

} // namespace tavrin
