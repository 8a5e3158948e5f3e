#include "actions/list/ListFile.h"

#include "platform/FileSystem.h"
#include "support/Text.h"
#include "support/Utf8.h"

#include <algorithm>

namespace tavrin {

namespace {

bool isLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

/// The length in bytes of the white space character that a text begins with, 0 if it does not.
std::size_t blankLength(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (lead < 0x80)
        return text::isWhitespaceOrNewline(lead) ? 1 : 0;
    if (lead > 0xE3) // white space lies below U+4000
        return 0;
    const std::string_view character = bytes.substr(0, lead < 0xE0 ? 2 : 3);
    return text::isWhitespaceOrNewline(text::fromBytes(character).front()) ? character.size() : 0;
}

} // namespace

bool ListFile::exists(const std::string& path) {
    FileStatus status;
    return FileSystem::sharedInstance().followedStatus(path, status) == 0;
}

bool ListFile::isTooLarge(const std::string& path) {
    FileStatus status;
    return FileSystem::sharedInstance().followedStatus(path, status) == 0 &&
           status.kind == FileStatus::Kind::file && status.size > sizeLimit;
}

std::optional<std::string> ListFile::content(const std::string& path) {
    auto& files = FileSystem::sharedInstance();
    FileStatus status;
    std::string bytes;
    if (files.followedStatus(path, status) != 0 || status.kind != FileStatus::Kind::file ||
        files.readFile(path, bytes, sizeLimit) != 0 || !text::isUtf8(bytes))
        return std::nullopt;
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.erase(0, 3);
    return bytes;
}

bool ListScanner::isAtEnd() {
    while (!rest.empty()) {
        const std::size_t length = blankLength(rest);
        if (length == 0)
            return false;
        rest.remove_prefix(length);
    }
    return true;
}

std::optional<std::string_view> ListScanner::fieldBeforeTab() {
    const auto stop =
        std::find_if(rest.begin(), rest.end(), [](char byte) { return byte == '\t' || isLineEnd(byte); });
    if (stop == rest.end() || *stop != '\t')
        return std::nullopt;
    const std::string_view field = rest.substr(0, static_cast<std::size_t>(stop - rest.begin()));
    rest.remove_prefix(field.size() + 1);
    return field;
}

std::string_view ListScanner::fieldBeforeLineEnd() {
    const auto stop = std::find_if(rest.begin(), rest.end(), isLineEnd);
    const std::string_view field = rest.substr(0, static_cast<std::size_t>(stop - rest.begin()));
    rest.remove_prefix(field.size());
    return field;
}

} // namespace tavrin
