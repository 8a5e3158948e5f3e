#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> folderNameActions() { return {}; }

} // namespace tavrin
