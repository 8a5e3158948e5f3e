#pragma once

#include "shell/start/OperationMode.h"

#include <atomic>

namespace tavrin {

class ActionList;
class CompositeRenameAction;
class FrontEnd;
class ProgressInfo;
class RenameEngine;
class RunLoop;
class SourceItemManager;
class TVRNGlobalPreferencesPseudoAction;
class UserDefaults;

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
};

} // namespace tavrin
