#include "platform/propertylists/PropertyList.h"

#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyListFormats.h"
#include "platform/propertylists/PropertyListScalars.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace tavrin {

namespace {

constexpr std::string_view tooLarge = "the file is larger than 64 MiB";

std::string reasonFor(int error) { return std::generic_category().message(error); }

template <typename Write> PropertyList::Written writeBy(const PropertyValue& value, Write write) {
    if (std::string obstacle = plist::obstacleToWriting(value); !obstacle.empty())
        return PropertyListError{std::move(obstacle)};
    const std::string content = PropertyList::toXml(value);
    if (content.size() > plist::sizeLimit)
        return PropertyListError{"the property list would be larger than 64 MiB"};
    if (const int error = write(content))
        return PropertyListError{fmt::format("the file cannot be written: {}", reasonFor(error))};
    return std::monostate();
}

} // namespace

PropertyList::Result PropertyList::fromBytes(std::string_view bytes) {
    if (bytes.empty())
        return PropertyListError{"the property list is empty"};
    if (bytes.size() > plist::sizeLimit)
        return PropertyListError{std::string(tooLarge)};
    return bytes.starts_with(plist::binaryMark) ? plist::readBinary(bytes) : plist::readXml(bytes);
}

std::string PropertyList::readBytes(const std::string& path, std::string& bytes) {
    const int error = FileSystem::sharedInstance().readFile(path, bytes, plist::sizeLimit);
    if (error == EFBIG)
        return std::string(tooLarge);
    return error == 0 ? std::string() : fmt::format("the file cannot be read: {}", reasonFor(error));
}

PropertyList::Result PropertyList::read(const std::string& path) {
    std::string bytes;
    if (std::string problem = readBytes(path, bytes); !problem.empty())
        return PropertyListError{std::move(problem)};
    return fromBytes(bytes);
}

std::string PropertyList::toXml(const PropertyValue& value) { return plist::writeXml(value); }

PropertyList::Written PropertyList::writeAtomically(const PropertyValue& value, const std::string& path) {
    return writeBy(value, [&](const std::string& content) {
        return FileSystem::sharedInstance().writeFileAtomically(path, content);
    });
}

PropertyList::Written PropertyList::writeNew(const PropertyValue& value, const std::string& path) {
    return writeBy(value, [&](const std::string& content) {
        return FileSystem::sharedInstance().writeNewFile(path, content);
    });
}

std::optional<std::u16string> textOrData(const PropertyValue& value) {
    if (const auto* text = value.asText())
        return *text;
    if (const auto* data = value.asData())
        return plist::textFromData(data->bytes);
    return std::nullopt;
}

} // namespace tavrin
