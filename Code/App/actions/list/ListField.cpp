#include "actions/list/ListField.h"

#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t mostBytesPerUnit = 3;

} // namespace

std::u16string_view ListField::decoded(std::string_view bytes) {
    text::fromBytes(bytes, text);
    return text;
}

std::u16string_view ListField::normalized(std::string_view bytes, bool inLowerCase) {
    if (inLowerCase) {
        text::lowercaseBytes(bytes, lowered);
        bytes = lowered;
    }
    if (!text::isPrecomposed(decoded(bytes)))
        text = text::precomposed(text);
    return text;
}

bool ListField::isLonger(std::string_view bytes, std::size_t units) {
    if (bytes.size() <= units)
        return false;
    return bytes.size() > units * mostBytesPerUnit || decoded(bytes).size() > units;
}

std::string_view ListField::unquoted(std::string_view field) {
    const bool isQuoted = field.size() >= 2 && field.front() == '"' && field.back() == '"' &&
                          std::count(field.begin(), field.end(), '"') == 2;
    return isQuoted ? field.substr(1, field.size() - 2) : field;
}

bool ListField::hasForbiddenCharacter(std::string_view newName) {
    return newName.find_first_of("\t/") != std::string_view::npos;
}

} // namespace tavrin
