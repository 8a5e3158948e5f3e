#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> mp3Actions() { return {}; }

} // namespace tavrin
