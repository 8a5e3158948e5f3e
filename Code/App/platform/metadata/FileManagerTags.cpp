#include "platform/metadata/FileManager.h"
#include "platform/metadata/MetadataTool.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

bool endsWithIgnoringCase(std::string_view text, std::string_view lowercaseEnd) {
    if (text.size() < lowercaseEnd.size())
        return false;
    return std::equal(lowercaseEnd.begin(), lowercaseEnd.end(), text.end() - std::ssize(lowercaseEnd),
                      [](char wanted, char c) { return wanted == (c >= 'A' && c <= 'Z' ? c + 32 : c); });
}

bool isMusic(std::string_view path) {
    constexpr std::array<std::string_view, 10> ends = {".mp3", ".m4a", ".m4p", ".m4b",  ".aif",
                                                       ".ogg", ".ape", ".m4v", ".aiff", ".flac"};
    return std::any_of(ends.begin(), ends.end(),
                       [path](std::string_view end) { return endsWithIgnoringCase(path, end); });
}

/// Exactly these, so that "XML" is asked about.
bool isNeverAskedAbout(std::string_view path) {
    const std::string_view extension = extensionOf(path);
    return extension == "xml" || extension == "jar";
}

/// What stands before and behind the first of a separator, up to the second.
std::optional<std::pair<std::u16string_view, std::u16string_view>> splitAt(std::u16string_view text,
                                                                           std::u16string_view separator) {
    const std::size_t at = text.find(separator);
    if (at == std::u16string_view::npos)
        return std::nullopt;
    const std::u16string_view rest = text.substr(at + separator.size());
    return std::pair(text.substr(0, at), rest.substr(0, rest.find(separator)));
}

} // namespace

FileMetadata FileManager::allTagsFor(const std::string& path) const {
    if (isNeverAskedAbout(path))
        return {};
    return metadataTool->tagsFor(path, MetadataTool::Client::allTags);
}

std::optional<FileMetadata> FileManager::mp3TagsFor(const std::string& path) const {
    if (!isMusic(path))
        return std::nullopt;
    return metadataTool->tagsFor(path, MetadataTool::Client::mp3Tags);
}

void FileManager::extractNOfMValuesFrom(std::u16string_view value, std::string_view firstTag,
                                        std::string_view secondTag, PropertyDictionary& addTo) {
    const auto normalized = [](std::u16string_view text) {
        return convertNumberToString(convertStringToNumber(text));
    };
    auto parts = splitAt(value, u" of ");
    if (!parts)
        parts = splitAt(value, u"/");
    addTo.insert_or_assign(std::string(firstTag), normalized(parts ? parts->first : value));
    if (parts)
        addTo.insert_or_assign(std::string(secondTag), normalized(parts->second));
}

} // namespace tavrin
