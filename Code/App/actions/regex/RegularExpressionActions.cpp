#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> regularExpressionActions() { return {}; }

} // namespace tavrin
