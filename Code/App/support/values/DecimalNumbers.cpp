#include "support/values/DecimalNumbers.h"

#include "support/text/TextIcu.h"

#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <array>
#include <cstdlib>
#include <mutex>

namespace tavrin {

namespace icu = text::icu;

struct DecimalNumbers::Impl {
    mutable std::mutex mutex; ///< guards the format, which is no constant to ICU
    std::unique_ptr<void, void (*)(void*)> format{
        nullptr, [](void* opened) { unum_close(static_cast<UNumberFormat*>(opened)); }};

    UNumberFormat* get() const { return static_cast<UNumberFormat*>(format.get()); }
};

DecimalNumbers::DecimalNumbers(const std::string& locale) : impl(std::make_unique<Impl>()) {
    const bool isPlain = locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.");
    std::array<char, ULOC_FULLNAME_CAPACITY> name{};
    UErrorCode status = U_ZERO_ERROR;
    uloc_canonicalize(isPlain ? "en_US_POSIX" : locale.c_str(), name.data(), ULOC_FULLNAME_CAPACITY, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) {
        name[0] = '\0'; // the root
        status = U_ZERO_ERROR;
    }
    impl->format.reset(
        static_cast<void*>(unum_open(UNUM_DECIMAL, nullptr, 0, name.data(), nullptr, &status)));
    icu::check(status, "unum_open");
}

DecimalNumbers::~DecimalNumbers() = default;

std::string DecimalNumbers::userLocale() {
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return "C";
}

std::optional<double> DecimalNumbers::numberFrom(std::u16string_view text) const {
    const std::lock_guard lock(impl->mutex);
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t end = 0;
    const double number = unum_parseDouble(impl->get(), text.data(), icu::length(text), &end, &status);
    if (U_FAILURE(status) || end != icu::length(text))
        return std::nullopt;
    return number;
}

std::u16string DecimalNumbers::textOf(double number) const {
    const std::lock_guard lock(impl->mutex);
    return icu::filled({}, "unum_formatDouble",
                       [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
                           return unum_formatDouble(impl->get(), number, buffer, capacity, nullptr, status);
                       });
}

} // namespace tavrin
