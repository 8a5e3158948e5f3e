#include "tags/StringToInvisiblesValueTransformer.h"

#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

namespace tavrin {

namespace {

constexpr const char* showKey = "showInvisibles";
constexpr char16_t triangularBullet = u'\u2023';

} // namespace

char16_t StringToInvisiblesValueTransformer::signFor(char32_t c) {
    switch (c) {
    case U' ':
        return u'\u00B7';
    case U'\t':
        return u'\u2192';
    case U'\r':
        return u'\u240D';
    case U'\n':
        return u'\u2424';
    default:
        return text::isControl(c) ? triangularBullet : u'\0';
    }
}

StringToInvisiblesValueTransformer::StringToInvisiblesValueTransformer(UserDefaults& userDefaults)
    : defaults(userDefaults), showInvisibles(defaults.boolForKey(showKey)),
      observation(defaults.observe(showKey, [this] { showInvisibles = defaults.boolForKey(showKey); })) {}

std::optional<std::u16string>
StringToInvisiblesValueTransformer::transformedValue(const std::optional<std::u16string>& text) const {
    if (!text || !showInvisibles)
        return text;
    std::u16string visible;
    visible.reserve(text->size());
    for (std::size_t at = 0; at < text->size();) {
        const char32_t c = text::units::codePointAt(*text, at);
        if (const char16_t sign = signFor(c))
            visible += sign;
        else
            visible.append(*text, at, text::units::unitCount(c));
        at += text::units::unitCount(c);
    }
    return visible;
}

} // namespace tavrin
