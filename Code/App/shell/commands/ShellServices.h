#pragma once

#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include <atomic>

namespace tavrin {

class ActionList;
class CompositeRenameAction;
class FrontEnd;
class ProgressInfo;
class RenameEngine;
class RunLoop;
class SourceItemManager;
class UserDefaults;

/// How this process runs; decided once at the start.
enum class OperationMode : int {
    normal = 0,
    dropletRun = 1,  ///< a droplet was given files: rename and quit, without a window
    dropletEdit = 2, ///< a droplet was opened: the settings go back into it
};

/// What the units of the shell work with; all of it outlives them.
struct ShellServices {
    FrontEnd& frontEnd;
    RunLoop& runLoop;
    UserDefaults& defaults;
    ActionList& actionList;
    TVRNGlobalPreferencesPseudoAction& settings;
    CompositeRenameAction& composite;
    ProgressInfo& progress;
    RenameEngine& engine;
    SourceItemManager& sourceItems;
    const std::atomic<OperationMode>& mode; ///< decided during the start

    /// Whether a droplet runs before which nobody sits.
    [[nodiscard]] bool isSilentDroplet() const {
        return mode == OperationMode::dropletRun && settings.values().shouldCreateSilentDroplets != 0;
    }
};

} // namespace tavrin
