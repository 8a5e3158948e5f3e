#pragma once

#include <chrono>
#include <cstdint>

namespace tavrin {

/// 2001-01-01 00:00:00 UTC, the zero of all stored times, in seconds since 1970.
inline constexpr std::int64_t referenceDateSince1970 = 978307200;

/// The present moment in seconds since 2001.
inline double secondsSince2001() {
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return since1970.count() - static_cast<double>(referenceDateSince1970);
}

} // namespace tavrin
