#include "presentation/preview/NameProblems.h"

#include "support/text/Text.h"

namespace tavrin {

namespace {

constexpr std::size_t longestName = 255; // bytes, what the file systems of this platform take

} // namespace

const char* problemOfName(const std::u16string& name) {
    if (name.empty())
        return "the name would be empty";
    if (name == u"." || name == u"..")
        return "“.” and “..” cannot be names";
    if (name.find(u'\0') != name.npos)
        return "names cannot hold a NUL character";
    // A unit is three bytes at most.
    if (name.size() * 3 <= longestName)
        return nullptr;
    const auto bytes = text::toBytes(name);
    if (!bytes)
        return "the name cannot be written";
    return bytes->size() > longestName ? "longer than 255 bytes" : nullptr;
}

} // namespace tavrin
