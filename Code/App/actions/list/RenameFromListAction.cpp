#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> renameFromListActions() { return {}; }

} // namespace tavrin
