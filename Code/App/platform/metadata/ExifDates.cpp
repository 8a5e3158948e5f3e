#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/ReferenceDate.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

namespace tavrin {

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
