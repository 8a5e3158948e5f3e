#pragma once

#include <cstddef>

namespace tavrin {

/// Raises the number of descriptors that the process may hold to this, or as far as the system allows; the
/// number that it may hold now. Any thread.
std::size_t raiseDescriptorLimit(std::size_t wanted);

} // namespace tavrin
