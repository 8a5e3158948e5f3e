#include "actions/folders/PathChain.h"

#include "actions/folders/PathComponents.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 2> exceptions{{{0, "Use those there are"}, {1, "Leave the name"}}};

} // namespace

std::span<const ParameterChoice> PathChain::exceptionChoices() { return exceptions; }

std::optional<std::string_view> PathChain::foldersOf(std::string_view path) const {
    const std::int64_t asked = std::int64_t{levels} + 1;
    if (asked == 0)
        return std::nullopt;
    // A negative number is never more than there are, and the parent folder is always taken.
    const std::int64_t wanted = std::max<std::int64_t>(asked, 1);
    PathComponents components(path);
    static_cast<void>(components.previous()); // the item
    std::int64_t taken = 0;
    std::string_view outermost;
    std::string_view parent;
    while (taken < wanted) {
        const auto component = components.previous();
        if (!component || components.isAtFirst())
            break; // the root is no folder of the chain
        outermost = *component;
        if (taken++ == 0)
            parent = *component;
    }
    if (taken == 0 || (taken < asked && exceptionMode == 1))
        return std::nullopt;
    return std::string_view(outermost.data(),
                            static_cast<std::size_t>(parent.data() + parent.size() - outermost.data()));
}

void PathChain::appendFolder(std::string_view name, bool isParent) {
    text::fromBytes(name, folder);
    if (isParent && parentName == ParentName::formatted)
        for (auto at = folder.find(u"%%"); at != folder.npos; at = folder.find(u"%%", at + 1))
            folder.erase(at, 1);
    text += folder;
}

std::optional<std::u16string_view> PathChain::textFor(std::string_view path) {
    auto folders = foldersOf(path);
    if (!folders)
        return std::nullopt;
    text = prefix;
    for (;;) {
        const std::size_t end = std::min(folders->find('/'), folders->size());
        const std::size_t next = std::min(folders->find_first_not_of('/', end), folders->size());
        const bool isParent = next == folders->size();
        appendFolder(folders->substr(0, end), isParent);
        if (isParent)
            break;
        text += pathSeparator;
        folders->remove_prefix(next);
    }
    text += suffix;
    text::replaceUnit(text, u':', u'/');
    return text;
}

} // namespace tavrin
