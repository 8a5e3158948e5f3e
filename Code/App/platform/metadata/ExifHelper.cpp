#include "platform/metadata/ExifHelper.h"

#include "platform/files/FileStatus.h"
#include "platform/files/FileSystem.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <exiv2/bmffimage.hpp>
#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/image.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
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

namespace {

/// Sorted.
constexpr std::array<std::string_view, 30> imageFileTypes = {
    "arw", "avif", "bmp", "cr2",  "cr3", "crw", "dng", "gif", "heic", "heif",
    "ico", "jp2",  "jpe", "jpeg", "jpg", "mrw", "nef", "nrw", "orf",  "pef",
    "png", "psd",  "raf", "rw2",  "sr2", "srw", "tga", "tif", "tiff", "webp"};
static_assert(std::is_sorted(imageFileTypes.begin(), imageFileTypes.end()));

/// Takes the digits of a field from the front of a text.
class FieldScanner {
  public:
    explicit FieldScanner(std::string_view text) : rest(text) {}

    bool hasFailed = false;

    int number(std::size_t least, std::size_t most) {
        std::size_t count = 0;
        int value = 0;
        for (; count < rest.size() && rest[count] >= '0' && rest[count] <= '9' && count <= most; ++count)
            value = value * 10 + (rest[count] - '0');
        hasFailed = hasFailed || count < least || count > most;
        rest.remove_prefix(count);
        return value;
    }
    int numberAfter(char separator) {
        if (!rest.starts_with(separator)) {
            hasFailed = true;
            return 0;
        }
        rest.remove_prefix(1);
        return number(2, 2);
    }

  private:
    std::string_view rest;
};

} // namespace

bool ExifHelper::isImageName(std::string_view name) {
    std::string extension(extensionOf(name));
    for (char& c : extension)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return std::binary_search(imageFileTypes.begin(), imageFileTypes.end(), extension);
}

std::optional<double> ExifHelper::dateFrom(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    FieldScanner scanner(text);
    std::tm fields{};
    const int year = scanner.number(2, 4);
    fields.tm_year = year - 1900;
    fields.tm_mon = scanner.numberAfter(':') - 1;
    fields.tm_mday = scanner.numberAfter(':');
    fields.tm_hour = scanner.numberAfter(' ');
    fields.tm_min = scanner.numberAfter(':');
    fields.tm_sec = scanner.numberAfter(':');
    fields.tm_isdst = -1;
    const std::chrono::year_month_day day(std::chrono::year(year),
                                          std::chrono::month(static_cast<unsigned>(fields.tm_mon + 1)),
                                          std::chrono::day(static_cast<unsigned>(fields.tm_mday)));
    if (scanner.hasFailed || year == 0 || !day.ok() || fields.tm_hour > 23 || fields.tm_min > 59 ||
        fields.tm_sec > 59)
        return std::nullopt;
    return static_cast<double>(std::mktime(&fields) - referenceDateSince1970);
}

} // namespace tavrin
