#include "platform/metadata/ExifHelper.h"

#include "platform/files/FileSystem.h"
#include "support/application/DebugLog.h"

#include <exiv2/bmffimage.hpp>
#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <exception>
#include <mutex>

namespace tavrin {

namespace {

void prepareLibrary() {
    static std::once_flag prepared;
    std::call_once(prepared, [] {
        Exiv2::XmpParser::initialize();
        Exiv2::enableBMFF(true);
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    });
}

/// Opens the image and gives it to `read`; what the library throws ends it. A path that is not absolute could
/// be taken for an address.
template <typename Read> void withImage(const std::string& path, Read read) {
    FileStatus status;
    if (!path.starts_with('/') || FileSystem::sharedInstance().followedStatus(path, status) != 0 ||
        status.kind != FileStatus::Kind::file)
        return;
    prepareLibrary();
    try {
        const auto image = Exiv2::ImageFactory::open(path, false);
        image->readMetadata();
        read(*image);
    } catch (const std::exception& fault) {
        debugLog("no image: {}: {}", path, fault.what());
    }
}

double firstDateIn(const Exiv2::ExifData& data) {
    for (const char* key :
         {"Exif.Photo.DateTimeOriginal", "Exif.Image.DateTime", "Exif.Photo.DateTimeDigitized"}) {
        const auto entry = data.findKey(Exiv2::ExifKey(key));
        if (entry == data.end())
            continue;
        if (const auto date = ExifHelper::dateFrom(entry->toString()); date && *date != 0.0)
            return *date;
    }
    return 0.0;
}

} // namespace

double ExifHelper::exifDateFor(const std::string& path) {
    double date = 0.0;
    if (isImageName(path))
        withImage(path, [&date](const Exiv2::Image& image) { date = firstDateIn(image.exifData()); });
    return date;
}

std::optional<std::pair<float, float>> ExifHelper::dimensionsOf(const std::string& path) {
    std::optional<std::pair<float, float>> dimensions;
    withImage(path, [&dimensions](const Exiv2::Image& image) {
        if (image.pixelWidth() > 0 && image.pixelHeight() > 0)
            dimensions = {static_cast<float>(image.pixelWidth()), static_cast<float>(image.pixelHeight())};
    });
    return dimensions;
}

} // namespace tavrin
