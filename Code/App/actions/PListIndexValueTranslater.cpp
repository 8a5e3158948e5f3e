#include "actions/PListIndexValueTranslater.h"

#include "platform/desktop/ResourceFolder.h"
#include "platform/propertylists/PropertyList.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

PropertyArray readList(const std::string& name) {
    PropertyList::Result list = PropertyList::read(resourcePath(name + ".plist"));
    auto* value = std::get_if<PropertyValue>(&list);
    PropertyArray* array = value != nullptr ? value->asArray() : nullptr;
    return array != nullptr ? std::move(*array) : PropertyArray{};
}

} // namespace

std::int32_t PListIndexValueTranslater::translateIndex(std::int32_t index, const std::string& fromPList,
                                                       const std::string& toPList) {
    const PropertyArray from = readList(fromPList);
    if (index < 0 || static_cast<std::size_t>(index) >= from.size())
        return -1;
    const PropertyArray to = readList(toPList);
    const auto found = std::find(to.begin(), to.end(), from[static_cast<std::size_t>(index)]);
    return found == to.end() ? -1 : static_cast<std::int32_t>(found - to.begin());
}

} // namespace tavrin
