#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> characterSetActions() { return {}; }

} // namespace tavrin
