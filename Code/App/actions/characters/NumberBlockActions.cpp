#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> numberBlockActions() { return {}; }

} // namespace tavrin
