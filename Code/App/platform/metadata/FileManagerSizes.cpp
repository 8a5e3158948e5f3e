#include "platform/files/FolderEntries.h"
#include "platform/metadata/FileManager.h"

#include <algorithm>
#include <limits>

namespace tavrin {

namespace {

using Reading = std::uint64_t FileStatus::*;

/// Everything directly in the folder; the folders in it are added to `waiting`.
std::uint64_t sumOf(const std::string& folder, Reading reading, std::vector<std::string>& waiting) {
    std::unique_ptr<OpenFolder> opened;
    FolderEntries entries;
    if (FileSystem::sharedInstance().openFolder(folder, opened) != 0 || opened->entries(entries) != 0)
        return 0;
    std::uint64_t sum = 0;
    for (const FolderEntry entry : entries) {
        FileStatus status;
        if (entry.kind == FileStatus::Kind::folder)
            waiting.push_back(folder + "/" + std::string(entry.name));
        else if (opened->status(std::string(entry.name), status) == 0)
            sum += status.*reading;
    }
    return sum;
}

std::uint64_t sizeOf(const std::string& path, bool recurse, Reading reading) {
    FileStatus status;
    if (FileSystem::sharedInstance().followedStatus(path, status) != 0)
        return 0;
    if (status.kind != FileStatus::Kind::folder || !recurse)
        return status.*reading;
    std::uint64_t sum = 0;
    std::vector<std::string> waiting{path};
    while (!waiting.empty()) {
        const std::string folder = std::move(waiting.back());
        waiting.pop_back();
        sum += sumOf(folder, reading, waiting);
    }
    return sum;
}

} // namespace

std::int32_t FileManager::fileLength(const std::string& path) const {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    const auto attributes = attributesFor(path);
    return attributes ? static_cast<std::int32_t>(std::min(attributes->size, most)) : 0;
}

std::uint64_t FileManager::sizeForPath(const std::string& path, bool recurse) const {
    return sizeOf(path, recurse, &FileStatus::size);
}

std::uint64_t FileManager::physicalSizeForPath(const std::string& path, bool recurse) const {
    return sizeOf(path, recurse, &FileStatus::allocated);
}

} // namespace tavrin
