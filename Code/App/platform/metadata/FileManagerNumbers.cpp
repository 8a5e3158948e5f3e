#include "platform/metadata/FileManager.h"
#include "support/values/DecimalNumbers.h"

namespace tavrin {

namespace {

/// Made at first use: opening the locale's data takes time that most runs need not spend.
const DecimalNumbers& integerFormatter() {
    static const DecimalNumbers formatter(DecimalNumbers::userLocale());
    return formatter;
}

} // namespace

std::optional<double> FileManager::convertStringToNumber(std::u16string_view text) {
    return integerFormatter().numberFrom(text);
}

std::u16string FileManager::convertNumberToString(std::optional<double> number) {
    return number ? integerFormatter().textOf(*number) : std::u16string();
}

} // namespace tavrin
