#include "Catalogue.h"

#include "ExitStatus.h"
#include "platform/desktop/ResourceFolder.h"
#include "support/text/PathParts.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

ActionList::Resources menus() {
    const std::string path = resourcePath("popUpIndexToNameMapping.plist");
    auto resources = ActionList::readResources(std::string(PathParts(path).folder));
    if (const auto* error = std::get_if<PropertyListError>(&resources))
        throw UsageError(fmt::format("the program's own files cannot be read: {}", error->message));
    return std::move(std::get<ActionList::Resources>(resources));
}

} // namespace

Catalogue::Catalogue() {
    UserDefaults::setSharedInstance(&userDefaults);
    list = std::make_unique<ActionList>(menus());
    ActionList::setSharedActionList(list.get());
}

Catalogue::~Catalogue() {
    ActionList::setSharedActionList(nullptr);
    UserDefaults::setSharedInstance(nullptr);
}

} // namespace tavrin
