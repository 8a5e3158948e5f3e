#include "platform/FileManager.h"
#include "platform/ReferenceDate.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <ctime>

namespace tavrin {

namespace {

/// "%e %b %Y %H:%M:%S", the day without a leading blank; empty for no date.
std::string dateText(std::optional<double> date) {
    if (!date)
        return {};
    const std::time_t time = static_cast<std::time_t>(std::floor(*date)) + referenceDateSince1970;
    std::tm local{};
    if (::localtime_r(&time, &local) == nullptr)
        return {};
    std::array<char, 64> month{};
    std::strftime(month.data(), month.size(), "%b", &local);
    return fmt::format("{} {} {:04} {:02}:{:02}:{:02}", local.tm_mday, month.data(), local.tm_year + 1900,
                       local.tm_hour, local.tm_min, local.tm_sec);
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
