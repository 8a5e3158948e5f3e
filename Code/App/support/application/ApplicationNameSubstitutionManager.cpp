#include "support/application/ApplicationNameSubstitutionManager.h"

#include "support/application/ApplicationNameSubstitutionStringFormatter.h"

namespace tavrin {

std::u16string ApplicationNameSubstitutionManager::substituteApplicationNameInMenuItem(std::u16string title) {
    using Formatter = ApplicationNameSubstitutionStringFormatter;
    // The longer names first, which hold the shortest one.
    Formatter::replaceName(title, u"Tavrin 8", u"Morvane 9");
    Formatter::replaceName(title, u"Tavrin 9", u"Morvane 9");
    Formatter::replaceName(title, u"Tavrin", u"Morvane");
    return title;
}

} // namespace tavrin
