#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> dateActions() { return {}; }

} // namespace tavrin
