#include "tags/TagTable.h"

#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"
#include "tags/CapitalizedWords.h"

#include <span>

namespace tavrin {

namespace {

std::u16string sentenceCase(std::u16string_view text) {
    return *KQStringUtilities::sentenceCase(std::u16string(text));
}

struct Row {
    std::u16string_view name;
    std::string_view description;
    std::string_view accessor;
    std::u16string (*change)(std::u16string_view) = nullptr; ///< what becomes of the accessor's text
};

/// A row of each family of date tags; all three texts have the family's prefix.
struct DateRow {
    std::u16string_view tag;
    std::string_view description;
    std::string_view accessor;
};

constexpr Row imageRows[]{
    {u"<ImageWidth>", "image width", "imageWidth"},
    {u"<ImageHeight>", "image height", "imageHeight"},
    {u"<BitDepth>", "image bit depth", "bitDepth"},
    {u"<ColorMode>", "image color mode", "colorMode"},
    {u"<VideoFrameRate>", "video frame rate", "videoFrameRate"},
    {u"<DurationInSeconds>", "duration in seconds", "durationInSeconds"},
    {u"<Duration_MM_SS>", "duration in MM_SS format", "duration_MM_SS"},
    {u"<Duration_HH_MM_SS>", "duration in HH_MM_SS format", "duration_HH_MM_SS"},
    {u"<CompressorID>", "compressor ID", "compressorID"},
    {u"<CompressorName>", "compressor name", "compressorName"},
    {u"<GPSImgDirection>", "GPS image direction", "gpsImgDirection"},
    {u"<GPSImgDirectionRef>", "GPS image direction reference", "gpsImgDirectionRef"},
    {u"<GPSAltitude>", "GPS altitude", "gpsAltitude"},
    {u"<GPSAltitudeRef>", "GPS altitude reference", "gpsAltitudeRef"},
    {u"<GPSLongitude>", "GPS longitude", "gpsLongitude"},
    {u"<GPSLongitudeRef>", "GPS longitude reference", "gpsLongitudeRef"},
    {u"<GPSLatitude>", "GPS latitude", "gpsLatitude"},
    {u"<GPSLatitudeRef>", "GPS latitude reference", "gpsLatitudeRef"},
    {u"<GPSPosition>", "GPS position (latitude & longitude)", "gpsPosition"},
};

constexpr Row cameraRows[]{
    {u"<Aperture>", "camera - aperture", "aperture"},
    {u"<ShutterSpeed>", "camera - shutter speed", "shutterSpeed"},
    {u"<ExposureTime>", "camera - exposure time", "exposureTime"},
    {u"<ISO>", "camera - iso", "iso"},
    {u"<CameraMake>", "camera - make", "cameraMake"},
    {u"<CameraModel>", "camera - model", "cameraModel"},
    {u"<Lens>", "camera - lens", "lens"},
    {u"<LensModel>", "camera - lens model", "lensModel"},
    {u"<ColorComponents>", "camera - color components (number)", "colorComponents"},
    {u"<ColorSpace>", "camera - color space", "colorSpace"},
    {u"<ExifImageWidth>", "exif - image width", "exifImageWidth"},
    {u"<ExifImageHeight>", "exif - image height", "exifImageHeight"},
    {u"<FocusMode>", "camera - focus mode", "focusMode"},
    {u"<ShutterCount>", "camera - shutter count", "shutterCount"},
};

constexpr Row subSecondRows[]{
    {u"<ShootingDateSubSecond>", "shooting date - milliseconds of the second", "exifDateSubSecond"},
    {u"<ShootingDate0SubSecond>", "shooting date - millisecond of the second (zero padded)",
     "exifDate0SubSecond"},
};

constexpr Row musicRows[]{
    {u"<Artist>", "music - artist name", "artistName"},
    {u"<artist>", "music - artist name (lowercase)", "artistName", text::lowercased},
    {u"<ARTIST>", "music - artist name (uppercase)", "artistName", text::uppercased},
    {u"<Artist_sentence_case>", "music - artist name (sentence case)", "artistName", sentenceCase},
    {u"<Artist_Capitalized>", "music - artist name (capitalized)", "artistName", capitalized},
    {u"<Album>", "music - album name", "albumName"},
    {u"<album>", "music - album name (lowercase)", "albumName", text::lowercased},
    {u"<ALBUM>", "music - album name (uppercase)", "albumName", text::uppercased},
    {u"<Album_sentence_case>", "music - album name (sentence case)", "albumName", sentenceCase},
    {u"<Album_Capitalized>", "music - album name (capitalized)", "albumName", capitalized},
    {u"<Song>", "music - song name", "songName"},
    {u"<song>", "music - song name (lowercase)", "songName", text::lowercased},
    {u"<SONG>", "music - song name (uppercase)", "songName", text::uppercased},
    {u"<Song_sentence_case>", "music - song name (sentence case)", "songName", sentenceCase},
    {u"<Song_Capitalized>", "music - song name (capitalized)", "songName", capitalized},
    {u"<TrackNum>", "music - track number", "trackNum"},
    {u"<0TrackNum>", "music - track number (zero padded)", "trackNumZeroPadded"},
    {u"<NumTracks>", "music - number of tracks", "numTracks"},
    {u"<0NumTracks>", "music - number of tracks (zero padded)", "numTracksZeroPadded"},
    {u"<CDNum>", "music - CD number", "cdNum"},
    {u"<0CDNum>", "music - CD number (zero padded)", "cdNumZeroPadded"},
    {u"<numCds>", "music - number of CDs", "numCds"},
    {u"<0numCds>", "music - number of CDs (zero padded)", "numCdsZeroPadded"},
    {u"<Year>", "music - record year", "recordYear"},
    {u"<DurationInSeconds>", "duration in seconds", "durationInSeconds"},
    {u"<Duration_MM_SS>", "duration in MM_SS format", "duration_MM_SS"},
    {u"<Duration_HH_MM_SS>", "duration in HH_MM_SS format", "duration_HH_MM_SS"},
};

constexpr DateRow dateRows[]{
    {u"Day", "day of the month", "DayOfTheMonth"},
    {u"0Day", "day of the month (zero padded)", "0DayOfTheMonth"},
    {u"Month", "month of the year", "Month"},
    {u"0Month", "month of the year (zero padded)", "0Month"},
    {u"2DigitYear", "2 digit year", "2DigitYear"},
    {u"4DigitYear", "4 digit year", "4DigitYear"},
    {u"Hour24", "hour of the day (24 hour clock)", "Hour24"},
    {u"0Hour24", "hour of the day (24 hour clock, zero padded)", "0Hour24"},
    {u"Hour12", "hour of the day (12 hour clock)", "Hour12"},
    {u"0Hour12", "hour of the day (12 hour clock, zero padded)", "0Hour12"},
    {u"Minute", "minute of the hour", "Minute"},
    {u"0Minute", "minute of the hour (zero padded)", "0Minute"},
    {u"Second", "second of the minute", "Second"},
    {u"0Second", "second of the minute (zero padded)", "0Second"},
    {u"_am_pm", "am/pm", "_am_pm"},
    {u"_AM_PM", "AM/PM", "_AM_PM"},
    {u"_am_pm_noon_midnight", "am/pm/noon/midnight", "_am_pm_noon_midnight"},
    {u"_AM_PM_NOON_MIDNIGHT", "AM/PM/NOON/MIDNIGHT", "_AM_PM_NOON_MIDNIGHT"},
};

struct DateFamily {
    std::u16string_view tag;
    std::string_view description;
    std::string_view accessor;
    std::string_view category;
};

constexpr DateFamily shootingDates{u"ShootingDate", "shooting date", "exifDate", "exif_date"};
constexpr DateFamily creationDates{u"CreationDate", "creation date", "crDate", "file_date"};
constexpr DateFamily modificationDates{u"ModDate", "modification date", "modDate", "file_date"};

class Table {
  public:
    void add(std::span<const Row> rows, std::string_view category) {
        for (const Row& row : rows) {
            TagAccessor accessor = tagAccessor(row.accessor);
            items.push_back({std::u16string(row.name), std::string(row.description),
                             row.change ? changed(std::move(accessor), row.change) : std::move(accessor),
                             category});
        }
    }

    void add(const DateFamily& family) {
        for (const DateRow& row : dateRows)
            items.push_back({u"<" + std::u16string(family.tag).append(row.tag) + u">",
                             std::string(family.description).append(" - ").append(row.description),
                             tagAccessor(std::string(family.accessor).append(row.accessor)),
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
