#include "actions/list/ListFile.h"

#include "platform/files/FileSystem.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::size_t mostBytesPerUnit = 3;

bool isLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

std::string problemOf(int error) {
    if (error == ENOENT || error == ENOTDIR || error == EINVAL) // the last for a name that no file can have
        return "File does not exist.";
    if (error == EFBIG)
        return "File is too large.";
    return fmt::format("File cannot be read ({}).", std::generic_category().message(error));
}

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

ListFile::Content ListFile::read(const std::string& path) {
    auto& files = FileSystem::sharedInstance();
    FileStatus status;
    Content content;
    if (const int error = files.followedStatus(path, status)) {
        content.problem = problemOf(error);
    } else if (status.kind != FileStatus::Kind::file) {
        content.problem = "This is no file.";
    } else if (status.size > sizeLimit) {
        content.problem = problemOf(EFBIG);
    } else if (const int failure = files.readFile(path, content.bytes, sizeLimit)) {
        content.problem = problemOf(failure);
    } else if (!text::isUtf8(content.bytes)) {
        content.problem = "File is not text in UTF-8.";
    } else if (content.bytes.starts_with("\xEF\xBB\xBF")) {
        content.bytes.erase(0, 3);
    }
    return content;
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

std::u16string_view ListField::decoded(std::string_view bytes) {
    text::fromBytes(bytes, text);
    return text;
}

std::u16string_view ListField::normalized(std::string_view bytes, bool inLowerCase) {
    if (inLowerCase) {
        text::lowercaseBytes(bytes, lowered);
        bytes = lowered;
    }
    if (!text::isPrecomposed(decoded(bytes)))
        text = text::precomposed(text);
    return text;
}

bool ListField::isLonger(std::string_view bytes, std::size_t units) {
    if (bytes.size() <= units)
        return false;
    return bytes.size() > units * mostBytesPerUnit || decoded(bytes).size() > units;
}

std::string_view ListField::unquoted(std::string_view field) {
    const bool isQuoted = field.size() >= 2 && field.front() == '"' && field.back() == '"' &&
                          std::count(field.begin(), field.end(), '"') == 2;
    return isQuoted ? field.substr(1, field.size() - 2) : field;
}

bool ListField::hasForbiddenCharacter(std::string_view newName) {
    return newName.find_first_of("\t/") != std::string_view::npos;
}

} // namespace tavrin
