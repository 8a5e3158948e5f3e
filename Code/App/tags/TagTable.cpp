#include "tags/TagTable.h"

#include "platform/files/FileStatus.h"
#include "support/text/Text.h"
#include "support/values/CalendarFormat.h"
#include "tags/TagForms.h"
#include "tags/TaggedFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>

namespace tavrin {

namespace {

// ---- values of the metadata, and what becomes of their text

std::u16string wholeSeconds(std::u16string_view duration) {
    return std::u16string(duration.substr(0, duration.find(u'.')));
}

std::u16string minutesAndSeconds(std::u16string_view duration) {
    const std::int32_t all = text::intValue(duration);
    return text::fromUtf8(fmt::format("{:02}_{:02}", all / 60, all % 60));
}

std::u16string hoursToSeconds(std::u16string_view duration) {
    const std::int32_t all = text::intValue(duration);
    return text::fromUtf8(fmt::format("{:02}_{:02}_{:02}", all / 3600, all / 60 % 60, all % 60));
}

std::u16string asNumber(std::u16string_view digits) {
    return text::fromUtf8(fmt::format("{}", text::intValue(digits)));
}

std::u16string inThreeDigits(std::u16string_view digits) {
    return text::fromUtf8(fmt::format("{:03}", text::intValue(digits)));
}

struct Row {
    std::u16string_view name;
    std::string_view description;
    std::string_view key; ///< of the dictionary of metadata
    std::u16string (*change)(std::u16string_view) = nullptr;
};

TagText valueOf(const Row& row, TaggedFile& file) {
    const PropertyValue* value = find(file.tagDictionary(), row.key);
    if (!value)
        return std::nullopt;
    return row.change ? row.change(textValue(*value)) : textValue(*value);
}

constexpr Row imageRows[]{
    {u"<ImageWidth>", "image width", "ImageWidth"},
    {u"<ImageHeight>", "image height", "ImageHeight"},
    {u"<BitDepth>", "image bit depth", "BitDepth"},
    {u"<ColorMode>", "image color mode", "ColorMode"},
    {u"<VideoFrameRate>", "video frame rate", "VideoFrameRate"},
    {u"<DurationInSeconds>", "duration in seconds", "Duration#", wholeSeconds},
    {u"<Duration_MM_SS>", "duration in MM_SS format", "Duration#", minutesAndSeconds},
    {u"<Duration_HH_MM_SS>", "duration in HH_MM_SS format", "Duration#", hoursToSeconds},
    {u"<CompressorID>", "compressor ID", "CompressorID"},
    {u"<CompressorName>", "compressor name", "CompressorName"},
    {u"<GPSImgDirection>", "GPS image direction", "GPSImgDirection"},
    {u"<GPSImgDirectionRef>", "GPS image direction reference", "GPSImgDirectionRef"},
    {u"<GPSAltitude>", "GPS altitude", "GPSAltitude"},
    {u"<GPSAltitudeRef>", "GPS altitude reference", "GPSAltitudeRef"},
    {u"<GPSLongitude>", "GPS longitude", "GPSLongitude"},
    {u"<GPSLongitudeRef>", "GPS longitude reference", "GPSLongitudeRef"},
    {u"<GPSLatitude>", "GPS latitude", "GPSLatitude"},
    {u"<GPSLatitudeRef>", "GPS latitude reference", "GPSLatitudeRef"},
    {u"<GPSPosition>", "GPS position (latitude & longitude)", "GPSPosition"},
};

constexpr Row cameraRows[]{
    {u"<Aperture>", "camera - aperture", "Aperture"},
    {u"<ShutterSpeed>", "camera - shutter speed", "ShutterSpeed"},
    {u"<ExposureTime>", "camera - exposure time", "ExposureTime"},
    {u"<ISO>", "camera - iso", "ISO"},
    {u"<CameraMake>", "camera - make", "Make"},
    {u"<CameraModel>", "camera - model", "Model"},
    {u"<Lens>", "camera - lens", "Lens"},
    {u"<LensModel>", "camera - lens model", "LensModel"},
    {u"<ColorComponents>", "camera - color components (number)", "ColorComponents"},
    {u"<ColorSpace>", "camera - color space", "ColorSpace"},
    {u"<ExifImageWidth>", "exif - image width", "ExifImageWidth"},
    {u"<ExifImageHeight>", "exif - image height", "ExifImageHeight"},
    {u"<FocusMode>", "camera - focus mode", "FocusMode"},
    {u"<ShutterCount>", "camera - shutter count", "ShutterCount"},
};

constexpr Row subSecondRows[]{
    {u"<ShootingDateSubSecond>", "shooting date - milliseconds of the second", "SubSecTimeOriginal",
     asNumber},
    {u"<ShootingDate0SubSecond>", "shooting date - millisecond of the second (zero padded)",
     "SubSecTimeOriginal", inThreeDigits},
};

constexpr Row musicRows[]{
    {u"<Artist>", "music - artist name", "Artist"},
    {u"<artist>", "music - artist name (lowercase)", "Artist", text::lowercased},
    {u"<ARTIST>", "music - artist name (uppercase)", "Artist", text::uppercased},
    {u"<Artist_sentence_case>", "music - artist name (sentence case)", "Artist", sentenceCased},
    {u"<Artist_Capitalized>", "music - artist name (capitalized)", "Artist", capitalized},
    {u"<Album>", "music - album name", "Album"},
    {u"<album>", "music - album name (lowercase)", "Album", text::lowercased},
    {u"<ALBUM>", "music - album name (uppercase)", "Album", text::uppercased},
    {u"<Album_sentence_case>", "music - album name (sentence case)", "Album", sentenceCased},
    {u"<Album_Capitalized>", "music - album name (capitalized)", "Album", capitalized},
    {u"<Song>", "music - song name", "Title"},
    {u"<song>", "music - song name (lowercase)", "Title", text::lowercased},
    {u"<SONG>", "music - song name (uppercase)", "Title", text::uppercased},
    {u"<Song_sentence_case>", "music - song name (sentence case)", "Title", sentenceCased},
    {u"<Song_Capitalized>", "music - song name (capitalized)", "Title", capitalized},
    {u"<TrackNum>", "music - track number", "track"},
    {u"<0TrackNum>", "music - track number (zero padded)", "track", zeroPadded},
    {u"<NumTracks>", "music - number of tracks", "numTrack"},
    {u"<0NumTracks>", "music - number of tracks (zero padded)", "numTrack", zeroPadded},
    {u"<CDNum>", "music - CD number", "cd"},
    {u"<0CDNum>", "music - CD number (zero padded)", "cd", zeroPadded},
    {u"<numCds>", "music - number of CDs", "numCds"},
    {u"<0numCds>", "music - number of CDs (zero padded)", "numCds", zeroPadded},
    {u"<Year>", "music - record year", "Year"},
    {u"<DurationInSeconds>", "duration in seconds", "Duration#", wholeSeconds},
    {u"<Duration_MM_SS>", "duration in MM_SS format", "Duration#", minutesAndSeconds},
    {u"<Duration_HH_MM_SS>", "duration in HH_MM_SS format", "Duration#", hoursToSeconds},
};

// ---- dates

int hour12(const std::tm& time) { return (time.tm_hour + 11) % 12 + 1; }

/// The form that tells noon and midnight by the hour alone.
std::string dayHalf(const std::tm& time, std::string_view midnight, std::string_view am,
                    std::string_view noon, std::string_view pm) {
    if (time.tm_hour % 12 == 0)
        return std::string(time.tm_hour == 0 ? midnight : noon);
    return std::string(time.tm_hour < 12 ? am : pm);
}

std::string plain(int number) { return fmt::format("{}", number); }
std::string twoDigits(int number) { return fmt::format("{:02}", number); }
int year(const std::tm& time) { return 1900 + time.tm_year; }

/// A row of each family of date tags; tag and description have the family's in front.
struct DateRow {
    std::u16string_view tag;
    std::string_view description;
    std::string (*format)(const std::tm& local);
};

constexpr DateRow dateRows[]{
    {u"Day", "day of the month", [](const std::tm& t) { return plain(t.tm_mday); }},
    {u"0Day", "day of the month (zero padded)", [](const std::tm& t) { return twoDigits(t.tm_mday); }},
    {u"Month", "month of the year", [](const std::tm& t) { return plain(t.tm_mon + 1); }},
    {u"0Month", "month of the year (zero padded)", [](const std::tm& t) { return twoDigits(t.tm_mon + 1); }},
    {u"2DigitYear", "2 digit year", [](const std::tm& t) { return twoDigits(year(t) % 100); }},
    {u"4DigitYear", "4 digit year", [](const std::tm& t) { return fmt::format("{:04}", year(t)); }},
    {u"Hour24", "hour of the day (24 hour clock)", [](const std::tm& t) { return plain(t.tm_hour); }},
    {u"0Hour24", "hour of the day (24 hour clock, zero padded)",
     [](const std::tm& t) { return twoDigits(t.tm_hour); }},
    {u"Hour12", "hour of the day (12 hour clock)", [](const std::tm& t) { return plain(hour12(t)); }},
    {u"0Hour12", "hour of the day (12 hour clock, zero padded)",
     [](const std::tm& t) { return twoDigits(hour12(t)); }},
    {u"Minute", "minute of the hour", [](const std::tm& t) { return plain(t.tm_min); }},
    {u"0Minute", "minute of the hour (zero padded)", [](const std::tm& t) { return twoDigits(t.tm_min); }},
    {u"Second", "second of the minute", [](const std::tm& t) { return plain(t.tm_sec); }},
    {u"0Second", "second of the minute (zero padded)", [](const std::tm& t) { return twoDigits(t.tm_sec); }},
    {u"_am_pm", "am/pm", [](const std::tm& t) { return dayHalf(t, "am", "am", "pm", "pm"); }},
    {u"_AM_PM", "AM/PM", [](const std::tm& t) { return dayHalf(t, "AM", "AM", "PM", "PM"); }},
    {u"_am_pm_noon_midnight", "am/pm/noon/midnight",
     [](const std::tm& t) { return dayHalf(t, "midnight", "am", "noon", "pm"); }},
    {u"_AM_PM_NOON_MIDNIGHT", "AM/PM/NOON/MIDNIGHT",
     [](const std::tm& t) { return dayHalf(t, "MIDNIGHT", "AM", "NOON", "PM"); }},
};

struct DateFamily {
    std::u16string_view tag;
    std::string_view description;
    TaggedFile::Date date;
    std::string_view category;
};

constexpr DateFamily shootingDates{u"ShootingDate", "shooting date", TaggedFile::Date::shooting, "exif_date"};
constexpr DateFamily creationDates{u"CreationDate", "creation date", TaggedFile::Date::creation, "file_date"};
constexpr DateFamily modificationDates{u"ModDate", "modification date", TaggedFile::Date::modification,
                                       "file_date"};

/// In local time; the zone is the one that the process had at its first use of it.
TagText dateOf(TaggedFile& file, TaggedFile::Date which, std::string (*format)(const std::tm&)) {
    const auto date = file.date(which);
    const auto moment =
        date ? LocalMoment::at(*date + static_cast<double>(referenceDateSince1970)) : std::nullopt;
    return moment ? TagText(text::fromUtf8(format(moment->fields))) : std::nullopt;
}

// ---- all together

class Table {
  public:
    void add(std::span<const Row> rows, std::string_view category) {
        for (const Row& row : rows)
            items.push_back({std::u16string(row.name), std::string(row.description),
                             [&row](TaggedFile& file) { return valueOf(row, file); }, category});
    }

    void add(const DateFamily& family) {
        for (const DateRow& row : dateRows)
            items.push_back({u"<" + std::u16string(family.tag).append(row.tag) + u">",
                             std::string(family.description).append(" - ").append(row.description),
                             [which = family.date, format = row.format](TaggedFile& file) {
                                 return dateOf(file, which, format);
                             },
                             family.category});
    }

    std::vector<TagItem> items;
};

} // namespace

std::vector<TagItem> makeTagTable() {
    Table table;
    table.add(imageRows, "image");
    table.add(cameraRows, "camera");
    table.add(shootingDates);
    table.add(subSecondRows, shootingDates.category);
    table.add(creationDates);
    table.add(modificationDates);
    table.add(musicRows, "music");
    return std::move(table.items);
}

} // namespace tavrin
