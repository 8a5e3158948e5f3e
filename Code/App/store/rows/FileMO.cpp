#include "store/rows/FileMO.h"

#include "platform/metadata/FileManager.h"
#include "platform/propertylists/PropertyList.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"

namespace tavrin {

namespace {

constexpr const char* archiveKey = "Some Key Value";

PropertyData encode(const PropertyDictionary& tags) {
    const std::string xml = PropertyList::toXml(PropertyDictionary{{archiveKey, tags}});
    return {{xml.begin(), xml.end()}};
}

PropertyDictionary decode(const PropertyData& data) {
    const auto list =
        PropertyList::fromBytes({reinterpret_cast<const char*>(data.bytes.data()), data.bytes.size()});
    const auto* value = std::get_if<PropertyValue>(&list);
    const PropertyDictionary* archive = value ? value->asDictionary() : nullptr;
    const PropertyValue* entry = archive ? find(*archive, archiveKey) : nullptr;
    const PropertyDictionary* tags = entry ? entry->asDictionary() : nullptr;
    return tags ? *tags : PropertyDictionary{};
}

} // namespace

FileMO::FileMO(StoreContext& owner, RowId id) : context(&owner), row(id) {}

void FileMO::moveTo(RowId id) {
    row = id;
    tags.reset();
    failure.clear();
}

std::string FileMO::fullPath() const { return context->fullPath(row); }

double FileMO::modDate() const { return context->row(row).modDate; }

double FileMO::crDate() const { return context->row(row).crDate; }

double FileMO::exif() const { return context->row(row).exif; }

std::optional<double> FileMO::modificationDate() const { return modDate(); }

std::optional<double> FileMO::creationDate() const { return crDate(); }

std::optional<double> FileMO::exifDate() const {
    const double date = exif();
    return date == FileManager::distantPast ? std::nullopt : std::optional(date);
}

void FileMO::loadTagDictionary(const TagReader& reader) {
    if (tags)
        return;
    if (const auto stored = context->tagData(row)) {
        tags = decode(*stored);
        return;
    }
    tags.emplace();
    obtainTagsFromFileSystem(reader);
}

const PropertyDictionary& FileMO::tagDictionary() const {
    static const PropertyDictionary none;
    return tags ? *tags : none;
}

void FileMO::obtainTagsFromFileSystem(const TagReader& reader) {
    FileMetadata read = reader(fullPath());
    debugLog("tagDictionary: {}", description(PropertyValue(read.tags)));
    tags = std::move(read.tags);
    failure = std::move(read.failure);
    if (failure.empty())
        context->setTagData(row, encode(*tags));
}

} // namespace tavrin
