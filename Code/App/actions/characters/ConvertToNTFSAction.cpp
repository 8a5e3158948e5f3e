#include "actions/ActionFamilies.h"

namespace tavrin {

std::span<const ActionEntry> convertToNTFSActions() { return {}; }

} // namespace tavrin
