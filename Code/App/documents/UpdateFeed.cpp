#include "documents/UpdateFeed.h"

#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tavrin {

namespace {

constexpr std::string_view fileScheme = "file://";

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// `scheme` is in small letters.
bool hasScheme(std::string_view address, std::string_view scheme) {
    return address.size() > scheme.size() &&
           std::ranges::equal(address.substr(0, scheme.size()), scheme, {}, lowered);
}

bool isWebAddress(std::string_view address) {
    const bool isPrintable =
        std::ranges::none_of(address, [](unsigned char c) { return c <= ' ' || c == 0x7F; });
    return isPrintable && (hasScheme(address, "https://") || hasScheme(address, "http://"));
}

std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char small = lowered(c);
    return small >= 'a' && small <= 'f' ? std::optional(small - 'a' + 10) : std::nullopt;
}

/// The bytes that an address of a file stands for; a "%" that escapes nothing stands for itself.
std::string unescaped(std::string_view address) {
    std::string bytes;
    for (std::size_t i = 0; i < address.size(); ++i) {
        const auto high = i + 2 < address.size() ? hexDigit(address[i + 1]) : std::nullopt;
        const auto low = high ? hexDigit(address[i + 2]) : std::nullopt;
        if (address[i] == '%' && low) {
            bytes += static_cast<char>(*high * 16 + *low);
            i += 2;
        } else {
            bytes += address[i];
        }
    }
    return bytes;
}

std::string_view trimmed(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const std::size_t start = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

} // namespace

UpdateFeed UpdateFeed::at(std::string_view given) {
    const std::string_view text = trimmed(given);
    if (text.empty())
        return {};
    if (isWebAddress(text))
        return {Place::web, std::string(text)};
    if (text.front() == '/')
        return {Place::file, std::string(text)};
    if (hasScheme(text, fileScheme)) {
        std::string_view rest = text.substr(fileScheme.size());
        if (hasScheme(rest, "localhost"))
            rest.remove_prefix(std::string_view("localhost").size());
        if (rest.front() == '/')
            return {Place::file, unescaped(rest)};
    }
    return {Place::unknown, std::string(text)};
}

UpdateFeed UpdateFeed::ofDefaults(const UserDefaults& defaults) {
    const auto stored = defaults.objectForKey(locationKey);
    const auto text = stored ? textOrData(*stored) : std::nullopt;
    const auto bytes = text ? text::toBytes(*text) : std::nullopt;
    return bytes ? at(*bytes) : UpdateFeed();
}

std::variant<std::string, UpdateFeedError> UpdateFeed::readFile(const std::string& path) {
    std::string bytes;
    const int error = FileSystem::sharedInstance().readFile(path, bytes, UpdateFeedReader::sizeLimit);
    if (error == EFBIG)
        return UpdateFeedError{"larger than 4 MiB"};
    if (error != 0)
        return UpdateFeedError{std::strerror(error)};
    return bytes;
}

std::optional<std::string> UpdateFeed::pageOf(const UpdateFeedItem& item) {
    for (const std::string& page : {item.releaseNotesLink, item.link})
        if (isWebAddress(page))
            return page;
    return std::nullopt;
}

} // namespace tavrin
