#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> alphabeticalSequenceActions() { return {}; }

} // namespace tavrin
