#include "tags/TaggedFile.h"

#include "platform/metadata/FileManager.h"
#include "support/application/DebugLog.h"

namespace tavrin {

namespace {

FileMetadata readTags(const std::string& path) { return FileManager::instance().allTagsFor(path); }

} // namespace

std::optional<double> TaggedRow::date(Date which) {
    switch (which) {
    case Date::shooting:
        return fileMo.exifDate();
    case Date::creation:
        return fileMo.creationDate();
    case Date::modification:
        return fileMo.modificationDate();
    }
    return std::nullopt;
}

const PropertyDictionary& TaggedRow::tagDictionary() {
    fileMo.loadTagDictionary(readTags);
    return fileMo.tagDictionary();
}

std::optional<double> TaggedPath::date(Date which) {
    const FileManager& files = FileManager::instance();
    switch (which) {
    case Date::shooting: {
        const double date = files.fileEXIFDate(path);
        return date == FileManager::distantPast ? std::nullopt : std::optional(date);
    }
    case Date::creation:
        return files.fileCreationDate(path);
    case Date::modification:
        return files.fileModificationDate(path);
    }
    return std::nullopt;
}

const PropertyDictionary& TaggedPath::tagDictionary() {
    if (!metadata) {
        metadata = readTags(path);
        debugLog("tagDictionary: {}", description(PropertyValue(metadata->tags)));
    }
    return metadata->tags;
}

} // namespace tavrin
