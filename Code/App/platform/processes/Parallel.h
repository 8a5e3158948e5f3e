#pragma once

#include <cstddef>
#include <functional>

namespace tavrin {

/// Calls `work` with each number below `count`, in any order, on up to so many threads, of which the caller
/// is one; comes back when all have ended. Where the system gives fewer threads those do it. The first
/// exception is passed on, and what has not begun by then is left out.
void inParallel(std::size_t count, std::size_t mostThreads, const std::function<void(std::size_t)>& work);

} // namespace tavrin
