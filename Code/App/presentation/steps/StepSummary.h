#pragma once

#include <QString>

namespace tavrin {

class BaseRenameAction;

/// What an action is set to, in a few words: the values that differ from those of a new one, or all texts
/// where nothing differs.
[[nodiscard]] QString stepSummaryOf(const BaseRenameAction& action);

} // namespace tavrin
