#include "support/text/Text.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <memory>

namespace tavrin::text {
namespace {

std::optional<std::u16string> decodedUtf8(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strFromUTF8(text.data(), static_cast<std::int32_t>(text.size()), &length, bytes.data(),
                  static_cast<std::int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::u16string decodedMacRoman(std::string_view bytes) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open("macintosh", &status),
                                                                       &ucnv_close);
    std::u16string text(bytes.size(), u'\0');
    const std::int32_t length =
        ucnv_toUChars(converter.get(), text.data(), static_cast<std::int32_t>(text.size()), bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &status);
    text.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return text;
}

} // namespace

std::u16string fromUtf8OrMacRoman(std::string_view bytes) {
    std::optional<std::u16string> text = decodedUtf8(bytes);
    return text ? std::move(*text) : decodedMacRoman(bytes);
}

} // namespace tavrin::text
