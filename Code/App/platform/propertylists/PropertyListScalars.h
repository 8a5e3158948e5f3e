#pragma once

#include "support/values/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin::plist {

/// The limits of every list that is read or written.
inline constexpr int depthLimit = 64;
inline constexpr std::size_t sizeLimit = std::size_t{64} * 1024 * 1024;
/// Bounds what a small hostile list can grow to in memory.
inline constexpr std::size_t valueLimit = 2'000'000;

/// The text forms of scalars in XML lists, strict and free of the locale. Absent: not such a text. White
/// space around the text is allowed.
std::optional<std::int64_t> integerFrom(std::string_view text);
std::optional<double> realFrom(std::string_view text);
/// "2005-07-01T12:30:00Z", a real day and time.
std::optional<PropertyDate> dateFrom(std::string_view text);
/// Base64, white space allowed anywhere, padding required.
std::optional<std::vector<std::uint8_t>> dataFrom(std::string_view text);

std::string realText(double value);
/// Whole seconds; a moment outside the years 1 to 9999 is moved to the nearest end, no number to 2001.
std::string dateText(PropertyDate date);
std::string dataText(const std::vector<std::uint8_t>& bytes);

/// Whether a text can stand in XML 1.0 as text.
bool isXmlText(std::u16string_view text);
/// The bytes that stand for a text XML cannot hold: those of a file name where the text is one, else UTF-16
/// with a byte order mark. textFromData is the exact inverse.
std::vector<std::uint8_t> dataFromText(std::u16string_view text);
std::u16string textFromData(const std::vector<std::uint8_t>& bytes);

} // namespace tavrin::plist
