#pragma once

#include <chrono>

namespace tavrin {

/// Waits until one of these poll events, or an error, is there for the descriptor; false when the end is
/// past.
[[nodiscard]] bool waitFor(int descriptor, short events, std::chrono::steady_clock::time_point end);

} // namespace tavrin
