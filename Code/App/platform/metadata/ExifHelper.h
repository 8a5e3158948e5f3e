#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tavrin {

/// What an image file says of itself, read without decoding it. Regular files only; absolute paths in bytes.
/// Any thread.
struct ExifHelper {
    /// The shooting date, seconds since 2001-01-01 00:00:00 UTC, or 0.0 when there is none.
    static double exifDateFor(const std::string& path);
    /// Whether the name has the extension of a readable image type: the cheap test before a file is opened.
    static bool isImageName(std::string_view name);
    /// Width and height in pixels, whatever the name; absent when the file cannot be opened as an image.
    static std::optional<std::pair<float, float>> dimensionsOf(const std::string& path);
    /// The moment of a local date text "yyyy:MM:dd HH:mm:ss", seconds since 2001; absent when it is none.
    /// Leading blanks, years of two and three digits and any text behind it are taken.
    static std::optional<double> dateFrom(std::string_view text);
};

} // namespace tavrin
