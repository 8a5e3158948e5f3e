#include "support/text/Text.h"
#include "support/text/TextIcu.h"
#include "support/text/TextUnits.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace tavrin::text {
namespace {

const UNormalizer2& formC() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* form = unorm2_getNFCInstance(&status);
    icu::check(status, "normalization form C");
    return *form;
}

const UNormalizer2& formD() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* form = unorm2_getNFDInstance(&status);
    icu::check(status, "normalization form D");
    return *form;
}

/// Whether the quick check alone says that the text is in the form.
bool isSurelyIn(const UNormalizer2& form, std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = icu::length(text);
    const std::int32_t checked = unorm2_spanQuickCheckYes(&form, text.data(), length, &status);
    icu::check(status, "normalization quick check");
    return checked == length;
}

std::u16string normalized(const UNormalizer2& form, std::u16string_view text) {
    if (isSurelyIn(form, text))
        return std::u16string(text);
    return icu::filled(
        text, "normalization", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
            return unorm2_normalize(&form, text.data(), icu::length(text), buffer, capacity, status);
        });
}

} // namespace

std::u16string precomposed(std::u16string_view text) {
    if (units::allBelowFirstCombining(text))
        return std::u16string(text);
    return normalized(formC(), text);
}

std::u16string decomposed(std::u16string_view text) {
    if (units::allBelowFirstDecomposing(text))
        return std::u16string(text);
    return normalized(formD(), text);
}

bool isPrecomposed(std::u16string_view text) {
    if (units::allBelowFirstCombining(text))
        return true;
    UErrorCode status = U_ZERO_ERROR;
    const bool result = unorm2_isNormalized(&formC(), text.data(), icu::length(text), &status);
    icu::check(status, "normalization test");
    return result;
}

bool canonicallyEqual(std::u16string_view a, std::u16string_view b) {
    if (units::same(a, b))
        return true;
    const bool aIsSimple = units::allBelowFirstCombining(a);
    const bool bIsSimple = units::allBelowFirstCombining(b);
    if (aIsSimple && bIsSimple)
        return false;
    // Different texts of one form differ.
    if ((aIsSimple || isSurelyIn(formC(), a)) && (bIsSimple || isSurelyIn(formC(), b)))
        return false;
    if (!aIsSimple && !bIsSimple && isSurelyIn(formD(), a) && isSurelyIn(formD(), b))
        return false;
    return precomposed(a) == precomposed(b);
}

std::u16string withoutDiacritics(std::u16string_view text) {
    std::u16string result = decomposed(text);
    if (units::allBelowFirstCombining(result))
        return result;
    std::size_t kept = 0;
    for (std::size_t at = 0; at < result.size();) {
        const char32_t c = units::codePointAt(result, at);
        const std::size_t next = at + units::unitCount(c);
        const bool isMark =
            c >= units::firstCombining && u_charType(static_cast<UChar32>(c)) == U_NON_SPACING_MARK;
        for (; at < next; ++at)
            if (!isMark)
                result[kept++] = result[at];
    }
    result.resize(kept);
    return result;
}

} // namespace tavrin::text
