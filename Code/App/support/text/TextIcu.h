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

/// What a function of ICU, `fill(buffer, capacity, status)`, makes of the text; it answers the length it
/// needs.
template <typename Fill> std::u16string filled(std::u16string_view text, const char* what, Fill fill) {
    std::u16string result;
    for (std::size_t capacity = text.size() + text.size() / 2 + 8;;) {
        result.resize(capacity);
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t needed = fill(result.data(), length(result), &status);
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            check(status, what);
            result.resize(static_cast<std::size_t>(needed));
            return result;
        }
        capacity = static_cast<std::size_t>(needed);
    }
}

} // namespace tavrin::text::icu
