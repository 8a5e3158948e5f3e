#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> dimensionsActions() { return {}; }

} // namespace tavrin
