#include "engine/naming/SiblingNames.h"

#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

namespace tavrin {

void SiblingNames::build(StoreContext& from, const std::vector<RowId>& children) {
    context = &from;
    lowerCased.reset(children.size());
    veryNames.clear();
    bool namesDifferInCaseAlone = false;
    for (const RowId child : children) {
        text::lowercaseBytes(context->component(child), key);
        const std::uint32_t hash = lowerCased.hashOf(std::string_view(key));
        if (RowId* const present = findLowerCased(hash)) {
            *present = child;
            namesDifferInCaseAlone = true;
        } else {
            lowerCased.add(hash, child);
        }
    }
    if (!namesDifferInCaseAlone)
        return;
    veryNames.reset(children.size());
    for (const RowId child : children)
        veryNames.add(veryNames.hashOf(context->component(child)), child);
}

RowId* SiblingNames::findLowerCased(std::uint32_t hash) {
    return lowerCased.find(hash, [this](RowId row) {
        text::lowercaseBytes(context->component(row), other);
        return other == key;
    });
}

RowId SiblingNames::find(std::string_view name) {
    const RowId* found =
        veryNames.find(veryNames.hashOf(name), [&](RowId row) { return context->component(row) == name; });
    if (found == nullptr) {
        text::lowercaseBytes(name, key);
        found = findLowerCased(lowerCased.hashOf(std::string_view(key)));
    }
    return found == nullptr ? noRow : *found;
}

void SiblingNames::clear() {
    lowerCased.clear();
    veryNames.clear();
}

} // namespace tavrin
