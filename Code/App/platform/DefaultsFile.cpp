#include "platform/DefaultsFile.h"

#include "platform/FileSystem.h"
#include "platform/PropertyList.h"
#include "platform/PropertyListScalars.h"
#include "support/DebugLog.h"

#include <cerrno>
#include <utility>

namespace tavrin {

DefaultsFile::DefaultsFile(std::string filePath) : path(std::move(filePath)) {}

std::optional<PropertyDictionary> DefaultsFile::load() {
    std::string bytes;
    const int error = FileSystem::sharedInstance().readFile(path, bytes, plist::sizeLimit);
    replaceable = error == 0 || error == ENOENT;
    if (error != 0 && error != EFBIG)
        return std::nullopt;
    auto result = error == 0 ? PropertyList::fromBytes(bytes)
                             : PropertyList::Result(PropertyListError{"the file is larger than 64 MiB"});
    if (auto* value = std::get_if<PropertyValue>(&result))
        if (auto* values = value->asDictionary())
            return std::move(*values);
    const auto* reason = std::get_if<PropertyListError>(&result);
    debugLog("damaged user defaults: {}", reason != nullptr ? reason->message : "no dictionary");
    replaceable = moveAside();
    return std::nullopt;
}

bool DefaultsFile::moveAside() {
    constexpr int attempts = 1000;
    for (int number = 1; number <= attempts; ++number) {
        const std::string suffix = number == 1 ? ".damaged" : ".damaged-" + std::to_string(number);
        const int error = FileSystem::sharedInstance().renameNoReplace(path, path + suffix);
        if (error != EEXIST)
            return error == 0 || error == ENOENT;
    }
    return false;
}

bool DefaultsFile::store(const PropertyDictionary& values) {
    const auto result = PropertyList::writeAtomically(values, path);
    if (const auto* error = std::get_if<PropertyListError>(&result)) {
        debugLog("user defaults not written: {}", error->message);
        return false;
    }
    return true;
}

bool DefaultsFile::makeFolder() {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ||
           FileSystem::sharedInstance().makeFolders(path.substr(0, slash)) == 0;
}

} // namespace tavrin
