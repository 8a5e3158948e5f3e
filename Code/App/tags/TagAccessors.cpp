#include "tags/TagAccessors.h"

#include "platform/files/FileStatus.h"
#include "support/text/Text.h"
#include "tags/TaggedFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <stdexcept>

namespace tavrin {

namespace {

/// An accessor that gives a value of the dictionary as it stands.
struct PlainAccessor {
    std::string_view name;
    std::string_view key;
};

constexpr PlainAccessor plainAccessors[]{
    {"imageWidth", "ImageWidth"},
    {"imageHeight", "ImageHeight"},
    {"bitDepth", "BitDepth"},
    {"colorMode", "ColorMode"},
    {"videoFrameRate", "VideoFrameRate"},
    {"compressorID", "CompressorID"},
    {"compressorName", "CompressorName"},
    {"gpsImgDirection", "GPSImgDirection"},
    {"gpsImgDirectionRef", "GPSImgDirectionRef"},
    {"gpsAltitude", "GPSAltitude"},
    {"gpsAltitudeRef", "GPSAltitudeRef"},
    {"gpsLongitude", "GPSLongitude"},
    {"gpsLongitudeRef", "GPSLongitudeRef"},
    {"gpsLatitude", "GPSLatitude"},
    {"gpsLatitudeRef", "GPSLatitudeRef"},
    {"gpsPosition", "GPSPosition"},
    {"aperture", "Aperture"},
    {"shutterSpeed", "ShutterSpeed"},
    {"exposureTime", "ExposureTime"},
    {"iso", "ISO"},
    {"cameraMake", "Make"},
    {"cameraModel", "Model"},
    {"lens", "Lens"},
    {"lensModel", "LensModel"},
    {"colorComponents", "ColorComponents"},
    {"colorSpace", "ColorSpace"},
    {"exifImageWidth", "ExifImageWidth"},
    {"exifImageHeight", "ExifImageHeight"},
    {"focusMode", "FocusMode"},
    {"autoFocus", "AutoFocus"},
    {"shutterCount", "ShutterCount"},
    {"artistName", "Artist"},
    {"albumName", "Album"},
    {"songName", "Title"},
    {"recordYear", "Year"},
    {"trackNum", "track"},
    {"numTracks", "numTrack"},
    {"cdNum", "cd"},
    {"numCds", "numCds"},
};

TagText plainValue(TaggedFile& file, std::string_view key) {
    const PropertyValue* value = find(file.tagDictionary(), key);
    return value ? TagText(textValue(*value)) : std::nullopt;
}

TagText durationInSeconds(TaggedFile& file) {
    TagText duration = plainValue(file, "Duration#");
    if (duration)
        duration->resize(std::min(duration->find(u'.'), duration->size()));
    return duration;
}

/// A value that is read as a whole number and written anew.
TagText rewritten(const TagText& value, std::string (*format)(std::int32_t)) {
    return value ? TagText(text::fromUtf8(format(text::intValue(*value)))) : std::nullopt;
}

TagText subSecond(TaggedFile& file, std::string (*format)(std::int32_t)) {
    return rewritten(plainValue(file, "SubSecTimeOriginal"), format);
}

struct ComputedAccessor {
    std::string_view name;
    TagText (*value)(TaggedFile&);
};

constexpr ComputedAccessor computedAccessors[]{
    {"durationInSeconds", durationInSeconds},
    {"duration_MM_SS",
     [](TaggedFile& file) {
         return rewritten(durationInSeconds(file),
                          [](std::int32_t s) { return fmt::format("{:02}_{:02}", s / 60, s % 60); });
     }},
    {"duration_HH_MM_SS",
     [](TaggedFile& file) {
         return rewritten(durationInSeconds(file), [](std::int32_t s) {
             return fmt::format("{:02}_{:02}_{:02}", s / 3600, s / 60 % 60, s % 60);
         });
     }},
    {"exifDateSubSecond",
     [](TaggedFile& file) { return subSecond(file, [](std::int32_t n) { return fmt::format("{}", n); }); }},
    {"exifDate0SubSecond",
     [](TaggedFile& file) {
         return subSecond(file, [](std::int32_t n) { return fmt::format("{:03}", n); });
     }},
};

// --- Dates ---

struct DateFamily {
    std::string_view prefix;
    TaggedFile::Date date;
};

constexpr DateFamily dateFamilies[]{
    {"exifDate", TaggedFile::Date::shooting},
    {"crDate", TaggedFile::Date::creation},
    {"modDate", TaggedFile::Date::modification},
};

int hour12(const std::tm& time) { return time.tm_hour % 12 == 0 ? 12 : time.tm_hour % 12; }

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

struct DateAccessor {
    std::string_view suffix;
    std::string (*format)(const std::tm& local);
};

constexpr DateAccessor dateAccessors[]{
    {"DayOfTheMonth", [](const std::tm& t) { return plain(t.tm_mday); }},
    {"0DayOfTheMonth", [](const std::tm& t) { return twoDigits(t.tm_mday); }},
    {"Month", [](const std::tm& t) { return plain(t.tm_mon + 1); }},
    {"0Month", [](const std::tm& t) { return twoDigits(t.tm_mon + 1); }},
    {"2DigitYear", [](const std::tm& t) { return twoDigits(year(t) % 100); }},
    {"4DigitYear", [](const std::tm& t) { return fmt::format("{:04}", year(t)); }},
    {"Hour24", [](const std::tm& t) { return plain(t.tm_hour); }},
    {"0Hour24", [](const std::tm& t) { return twoDigits(t.tm_hour); }},
    {"Hour12", [](const std::tm& t) { return plain(hour12(t)); }},
    {"0Hour12", [](const std::tm& t) { return twoDigits(hour12(t)); }},
    {"Minute", [](const std::tm& t) { return plain(t.tm_min); }},
    {"0Minute", [](const std::tm& t) { return twoDigits(t.tm_min); }},
    {"Second", [](const std::tm& t) { return plain(t.tm_sec); }},
    {"0Second", [](const std::tm& t) { return twoDigits(t.tm_sec); }},
    {"_am_pm", [](const std::tm& t) { return dayHalf(t, "am", "am", "pm", "pm"); }},
    {"_AM_PM", [](const std::tm& t) { return dayHalf(t, "AM", "AM", "PM", "PM"); }},
    {"_am_pm_noon_midnight", [](const std::tm& t) { return dayHalf(t, "midnight", "am", "noon", "pm"); }},
    {"_AM_PM_NOON_MIDNIGHT", [](const std::tm& t) { return dayHalf(t, "MIDNIGHT", "AM", "NOON", "PM"); }},
};

/// The local calendar fields; the zone is the one that the process had at its first use of local time.
std::optional<std::tm> localFields(double secondsSince2001) {
    constexpr double farAway = 1e15;
    if (!(std::abs(secondsSince2001) < farAway))
        return std::nullopt;
    const auto time = static_cast<std::time_t>(std::floor(secondsSince2001)) + referenceDateSince1970;
    std::tm fields{};
    return ::localtime_r(&time, &fields) ? std::optional(fields) : std::nullopt;
}

TagText dateValue(TaggedFile& file, TaggedFile::Date which, std::string (*format)(const std::tm&)) {
    const std::optional<double> date = file.date(which);
    const std::optional<std::tm> fields = date ? localFields(*date) : std::nullopt;
    return fields ? TagText(text::fromUtf8(format(*fields))) : std::nullopt;
}

TagAccessor dateAccessor(std::string_view name) {
    for (const DateFamily& family : dateFamilies) {
        if (!name.starts_with(family.prefix))
            continue;
        const auto accessor =
            std::ranges::find(dateAccessors, name.substr(family.prefix.size()), &DateAccessor::suffix);
        if (accessor != std::end(dateAccessors))
            return [which = family.date, format = accessor->format](TaggedFile& file) {
                return dateValue(file, which, format);
            };
    }
    return nullptr;
}

// --- By name ---

TagAccessor plainAccessor(std::string_view name) {
    const auto accessor = std::ranges::find(plainAccessors, name, &PlainAccessor::name);
    if (accessor == std::end(plainAccessors))
        return nullptr;
    return [key = accessor->key](TaggedFile& file) { return plainValue(file, key); };
}

std::u16string zeroPadded(std::u16string_view value) {
    return (value.size() == 1 ? u"0" : u"") + std::u16string(value);
}

TagAccessor zeroPaddedAccessor(std::string_view name) {
    constexpr std::string_view suffix = "ZeroPadded";
    if (!name.ends_with(suffix))
        return nullptr;
    const TagAccessor accessor = plainAccessor(name.substr(0, name.size() - suffix.size()));
    return accessor ? changed(accessor, zeroPadded) : nullptr;
}

} // namespace

TagAccessor tagAccessor(std::string_view name) {
    if (TagAccessor accessor = plainAccessor(name))
        return accessor;
    if (TagAccessor accessor = zeroPaddedAccessor(name))
        return accessor;
    const auto computed = std::ranges::find(computedAccessors, name, &ComputedAccessor::name);
    if (computed != std::end(computedAccessors))
        return computed->value;
    if (TagAccessor accessor = dateAccessor(name))
        return accessor;
    throw std::logic_error(fmt::format("there is no tag accessor \"{}\"", name));
}

TagAccessor changed(TagAccessor accessor, std::u16string (*change)(std::u16string_view text)) {
    return [accessor = std::move(accessor), change](TaggedFile& file) {
        const TagText text = accessor(file);
        return text ? TagText(change(*text)) : std::nullopt;
    };
}

} // namespace tavrin
