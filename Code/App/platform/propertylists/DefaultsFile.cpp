#include "platform/propertylists/DefaultsFile.h"

#include "platform/files/AbsolutePaths.h"
#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/PropertyListScalars.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <utility>

namespace tavrin {

namespace {

constexpr int mostNames = 1000; // that are tried for what is set aside

std::string numbered(std::string name, int number) {
    return number == 1 ? name : name + "-" + std::to_string(number);
}

} // namespace

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

bool DefaultsFile::moveAside() const {
    const std::string target = linkTarget(path);
    for (int number = 1; number <= mostNames; ++number) {
        const int error =
            FileSystem::sharedInstance().renameNoReplace(target, numbered(target + ".damaged", number));
        if (error != EEXIST)
            return error == 0 || error == ENOENT;
    }
    return false;
}

std::variant<std::string, int> DefaultsFile::copyAside(std::string_view label) const {
    FileSystem& files = FileSystem::sharedInstance();
    std::string bytes;
    if (const int error = files.readFile(path, bytes, plist::sizeLimit)) {
        if (error == ENOENT || error == ENOTDIR)
            return std::string();
        return error;
    }
    for (int number = 1; number <= mostNames; ++number) {
        std::string copy = numbered(path + ".saved-" + std::string(label), number);
        const int error = files.writeNewFile(copy, bytes);
        std::string found;
        if (error == 0 ||
            (error == EEXIST && files.readFile(copy, found, plist::sizeLimit) == 0 && found == bytes))
            return copy;
        if (error != EEXIST)
            return error;
    }
    return EEXIST;
}

bool DefaultsFile::store(const PropertyDictionary& values) {
    const auto result = PropertyList::writeAtomically(values, linkTarget(path));
    if (const auto* error = std::get_if<PropertyListError>(&result)) {
        debugLog("user defaults not written: {}", error->message);
        return false;
    }
    return true;
}

bool DefaultsFile::makeFolder() {
    const std::string folder(PathParts(path).folder);
    return folder.empty() || FileSystem::sharedInstance().makeFolders(folder) == 0;
}

std::optional<FileLock> FileLock::take(const std::string& path, std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds pause(5);
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file)
        return std::nullopt;
    const auto end = std::chrono::steady_clock::now() + patience;
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK)
            break;
        if (std::chrono::steady_clock::now() >= end)
            return std::nullopt;
        std::this_thread::sleep_for(pause);
    }
    return FileLock(std::move(file));
}

} // namespace tavrin
