#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> romanNumeralActions() { return {}; }

} // namespace tavrin
