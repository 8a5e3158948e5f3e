#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> pathComponentsActions() { return {}; }

} // namespace tavrin
