#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> tagActions() { return {}; }

} // namespace tavrin
