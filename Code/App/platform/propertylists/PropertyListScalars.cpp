#include "platform/propertylists/PropertyListScalars.h"

#include "platform/files/FileStatus.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace tavrin::plist {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

template <typename Number> std::optional<Number> numberFrom(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// `text` holds digits alone, as the pattern of dateFrom has made sure.
int fieldOf(std::string_view text, std::size_t start, std::size_t count) {
    int value = 0;
    for (const char digit : text.substr(start, count))
        value = value * 10 + (digit - '0');
    return value;
}

bool matches(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (pattern[i] == '0' ? !isDigit : text[i] != pattern[i])
            return false;
    }
    return true;
}

constexpr std::array<std::int8_t, 256> base64Values() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t i = 0; i < base64Digits.size(); ++i)
        values[static_cast<unsigned char>(base64Digits[i])] = static_cast<std::int8_t>(i);
    return values;
}

constexpr std::uint8_t markHigh = 0xFE;
constexpr std::uint8_t markLow = 0xFF;

bool hasMark(const std::vector<std::uint8_t>& bytes) {
    return bytes.size() >= 2 && bytes.size() % 2 == 0 && bytes[0] == markHigh && bytes[1] == markLow;
}

} // namespace

std::optional<std::int64_t> integerFrom(std::string_view text) { return numberFrom<std::int64_t>(text); }

std::optional<double> realFrom(std::string_view text) { return numberFrom<double>(text); }

std::optional<PropertyDate> dateFrom(std::string_view text) {
    text = trimmed(text);
    if (!matches(text, "0000-00-00T00:00:00Z"))
        return std::nullopt;
    const std::chrono::year_month_day day(std::chrono::year(fieldOf(text, 0, 4)),
                                          std::chrono::month(static_cast<unsigned>(fieldOf(text, 5, 2))),
                                          std::chrono::day(static_cast<unsigned>(fieldOf(text, 8, 2))));
    const int hour = fieldOf(text, 11, 2);
    const int minute = fieldOf(text, 14, 2);
    const int second = fieldOf(text, 17, 2);
    if (!day.ok() || day.year() < std::chrono::year(1) || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const std::chrono::seconds time = std::chrono::sys_days(day).time_since_epoch();
    const std::int64_t since1970 = time.count() + hour * 3600 + minute * 60 + second;
    return PropertyDate{static_cast<double>(since1970 - referenceDateSince1970)};
}

std::optional<std::vector<std::uint8_t>> dataFrom(std::string_view text) {
    static constexpr auto values = base64Values();
    std::vector<std::uint8_t> bytes;
    std::uint32_t group = 0;
    int digits = 0;
    int padding = 0;
    for (const char c : text) {
        if (whiteSpace.find(c) != std::string_view::npos)
            continue;
        const int value = values[static_cast<unsigned char>(c)];
        const bool isPadding = c == '=';
        if (isPadding ? digits < 2 || padding == 2 : value < 0 || padding > 0)
            return std::nullopt;
        padding += isPadding ? 1 : 0;
        group = group << 6 | static_cast<std::uint32_t>(isPadding ? 0 : value);
        if (++digits < 4)
            continue;
        for (int i = 0; i < 3 - padding; ++i)
            bytes.push_back(static_cast<std::uint8_t>(group >> (16 - 8 * i)));
        group = 0;
        digits = 0;
    }
    return digits == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

std::string realText(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

std::string dateText(PropertyDate date) {
    constexpr double firstMoment = -63113904000.0; // 0001-01-01T00:00:00Z
    constexpr double lastMoment = 252423993599.0;  // 9999-12-31T23:59:59Z
    const double number = std::isnan(date.secondsSince2001) ? 0 : date.secondsSince2001;
    const auto whole =
        static_cast<std::int64_t>(std::floor(std::fmax(firstMoment, std::fmin(lastMoment, number))));
    const std::chrono::sys_seconds moment{std::chrono::seconds(whole + referenceDateSince1970)};
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day fields(day);
    const std::chrono::hh_mm_ss time(moment - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(fields.year()),
                       static_cast<unsigned>(fields.month()), static_cast<unsigned>(fields.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::string dataText(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? bytes[at + i] : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? base64Digits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

bool isXmlText(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if ((c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') || c == 0xFFFE || c == 0xFFFF)
            return false;
        if (c < 0xD800 || c > 0xDFFF)
            continue;
        const bool isPair =
            c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        if (!isPair)
            return false;
        ++i;
    }
    return true;
}

std::vector<std::uint8_t> dataFromText(std::u16string_view text) {
    if (const auto name = text::toBytes(text)) {
        std::vector<std::uint8_t> bytes(name->begin(), name->end());
        if (!hasMark(bytes))
            return bytes;
    }
    std::vector<std::uint8_t> bytes{markHigh, markLow};
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    }
    return bytes;
}

std::u16string textFromData(const std::vector<std::uint8_t>& bytes) {
    if (!hasMark(bytes))
        return text::fromBytes({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    std::u16string text;
    for (std::size_t i = 2; i < bytes.size(); i += 2)
        text += static_cast<char16_t>(bytes[i] << 8 | bytes[i + 1]);
    return text;
}

} // namespace tavrin::plist
