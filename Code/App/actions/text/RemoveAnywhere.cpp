#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> removeAnywhereActions() { return {}; }

} // namespace tavrin
