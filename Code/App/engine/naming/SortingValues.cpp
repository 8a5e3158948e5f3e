#include "engine/naming/SortingValues.h"

#include "platform/metadata/FileManager.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/core.h>

#include <random>

namespace tavrin {

PropertyValue SortingValues::getSortingValueForPath(const std::string& path, int andSetting) const {
    const FileManager& files = FileManager::instance();
    const std::u16string name = text::fromBytes(PathParts(path).name);
    switch (andSetting) {
    case 0:
    case 1:
        return name;
    case 2:
    case 3:
        return files.fileModificationDate(path).value_or(0.0);
    case 4:
    case 5:
        return files.fileCreationDate(path).value_or(0.0);
    case 6:
    case 7:
        return text::fromUtf8(fmt::format("{:016}", files.sizeForPath(path, sums)));
    case 8:
    case 9:
        return readsDates ? files.fileEXIFDate(path) : 0.0;
    case 10:
    case 11:
        return KQStringUtilities::expandNumberBlocks(name);
    case 12:
        return text::fromUtf8(createUUID());
    default:
        return u"cheers";
    }
}

std::string SortingValues::createUUID() {
    std::random_device random;
    const auto part = [&random](unsigned bits) { return random() & ((std::uint64_t{1} << bits) - 1); };
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:08X}{:04X}", part(32), part(16), part(12),
                       part(14) | 0x8000, part(32), part(16));
}

std::string SortingValues::formatDate(double date) { return fmt::format("{:020.4f}", date); }

} // namespace tavrin
