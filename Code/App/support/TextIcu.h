#pragma once

#include <unicode/utypes.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// The common shape of ICU's calls. For source files of this folder only.
namespace tavrin::text::icu {

inline std::int32_t length(std::u16string_view text) { return static_cast<std::int32_t>(text.size()); }

inline void check(UErrorCode status, const char* what) {
    if (U_FAILURE(status))
        throw std::runtime_error(std::string(what) + ": " + u_errorName(status));
}

/// Appends the result of an ICU function that fills a buffer and answers the length it needs:
/// `fill(buffer, capacity, status)`.
template <typename Fill> void append(std::u16string& into, std::size_t guess, const char* what, Fill fill) {
    const std::size_t before = into.size();
    for (std::size_t capacity = guess;;) {
        into.resize(before + capacity);
        UErrorCode status = U_ZERO_ERROR;
        const auto needed = static_cast<std::size_t>(
            fill(into.data() + before, static_cast<std::int32_t>(capacity), &status));
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            check(status, what);
            into.resize(before + needed);
            return;
        }
        capacity = needed;
    }
}

} // namespace tavrin::text::icu
