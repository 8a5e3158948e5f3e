#include "support/application/ApplicationNameSubstitutionStringFormatter.h"

namespace tavrin {

void ApplicationNameSubstitutionStringFormatter::replaceName(std::u16string& text, std::u16string_view name,
                                                             std::u16string_view by) {
    std::string::size_type at = 0;
    while ((at = text.find(name, at)) != std::u16string::npos) {
        text.replace(at, name.size(), by);
        at += by.size();
    }
}

std::optional<std::u16string>
ApplicationNameSubstitutionStringFormatter::stringForObjectValue(const std::optional<std::u16string>& given) {
    if (!given)
        return std::nullopt;
    std::u16string text = *given;
    // The longer name first, which holds the shorter one.
    replaceName(text, u"Tavrin 8", u"Morvane 9");
    replaceName(text, u"Tavrin", u"Morvane");
    return text;
}

} // namespace tavrin
