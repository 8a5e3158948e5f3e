#include "platform/metadata/FileManager.h"
#include "platform/metadata/ReferenceDate.h"
#include "support/text/Text.h"
#include "support/values/CalendarFormat.h"

namespace tavrin {

namespace {

/// Empty for no date.
std::string dateText(std::optional<double> date) {
    static const CalendarFormat format(u"%e %b %Y %H:%M:%S");
    if (!date)
        return {};
    std::u16string result;
    if (const auto moment = LocalMoment::at(*date + static_cast<double>(referenceDateSince1970)))
        format.append(*moment, result);
    return text::toUtf8(result);
}

} // namespace

std::string FileManager::creationDateFor(const std::string& path) const {
    return dateText(fileCreationDate(path));
}

std::string FileManager::modificationDateFor(const std::string& path) const {
    return dateText(fileModificationDate(path));
}

std::string FileManager::exifDateFor(const std::string& path) const { return dateText(fileEXIFDate(path)); }

std::optional<double> FileManager::fileCreationDate(const std::string& path) const {
    const auto attributes = attributesFor(path);
    return attributes ? std::optional(attributes->creationDate) : std::nullopt;
}

std::optional<double> FileManager::fileModificationDate(const std::string& path) const {
    const auto attributes = attributesFor(path);
    return attributes ? std::optional(attributes->modificationDate) : std::nullopt;
}

double FileManager::fileEXIFDate(const std::string& path) const {
    const double date = ExifHelper::exifDateFor(path);
    return date == 0.0 ? distantPast : date;
}

std::pair<float, float> FileManager::fileEXIFDimensions(const std::string& path) const {
    return ExifHelper::dimensionsOf(path).value_or(std::pair(-1.0F, -1.0F));
}

} // namespace tavrin
