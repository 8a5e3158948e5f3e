#include "presentation/EnglishPlurals.h"

#include <cstring>

namespace tavrin {

QString EnglishPlurals::translate(const char*, const char* source, const char*, int count) const {
    constexpr const char* mark = "||";
    const char* const bar = count < 0 ? nullptr : std::strstr(source, mark);
    if (!bar)
        return {};
    return count == 1 ? QString::fromUtf8(source, bar - source) : QString::fromUtf8(bar + std::strlen(mark));
}

} // namespace tavrin
