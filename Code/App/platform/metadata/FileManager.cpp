#include "platform/metadata/FileManager.h"

#include "platform/desktop/ResourceFolder.h"
#include "platform/files/FileStatus.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/metadata/MetadataTool.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

namespace tavrin {

namespace {

std::atomic<FileManager*> registered = nullptr;

} // namespace

bool FileManager::HiddenCache::contains(const std::string& inFolder, std::string_view name) {
    constexpr std::chrono::seconds freshness(1);
    const std::lock_guard lock(mutex);
    const auto now = std::chrono::steady_clock::now();
    if (inFolder != folder || readAt == decltype(readAt)() || now - readAt >= freshness) {
        names = HiddenNames(inFolder);
        folder = inFolder;
        readAt = now;
    }
    return names.contains(name);
}

FileManager::FileManager(std::string metadataScript)
    : nowDate(secondsSince2001()),
      metadataTool(metadataScript.empty() ? resourcePath("extract.pl") : std::move(metadataScript)) {}

FileManager::~FileManager() {
    FileManager* self = this;
    registered.compare_exchange_strong(self, nullptr);
}

FileManager& FileManager::instance() {
    static FileManager unregistered;
    FileManager* const manager = registered.load(std::memory_order_acquire);
    return manager != nullptr ? *manager : unregistered;
}

void FileManager::setInstance(FileManager* manager) { registered.store(manager, std::memory_order_release); }

bool FileManager::isInvisible(const std::string& path) const {
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos)
        return false;
    const std::size_t slash = path.rfind('/', end);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string name = path.substr(start, end + 1 - start);
    if (!name.starts_with('.') && !hiddenCache.contains(path.substr(0, start), name))
        return false;
    return attributesFor(path).has_value();
}

std::optional<FileStatus> FileManager::attributesFor(const std::string& path) const {
    FileStatus status;
    if (FileSystem::sharedInstance().status(path, status) != 0)
        return std::nullopt;
    return status;
}

namespace {

constexpr std::size_t sizeLimit = 1024 * 1024;

} // namespace

HiddenNames::HiddenNames(const std::string& folder) {
    std::string content;
    if (FileSystem::sharedInstance().readFile(folder + "/.hidden", content, sizeLimit) != 0)
        return;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        if (end > start)
            names.emplace_back(content, start, end - start);
        start = end + 1;
    }
    std::sort(names.begin(), names.end());
}

bool HiddenNames::contains(std::string_view name) const {
    return std::binary_search(names.begin(), names.end(), name, std::less<>());
}

namespace {

constexpr std::array<std::string_view, 6> bundleSuffixes = {".app",  ".bundle", ".plugin",
                                                            ".kext", ".rtfd",   ".band"};

bool hasBundleSuffix(std::string_view path) {
    std::string lowered;
    text::lowercaseBytes(lastComponent(path), lowered);
    return std::any_of(bundleSuffixes.begin(), bundleSuffixes.end(),
                       [&lowered](std::string_view suffix) { return lowered.ends_with(suffix); });
}

bool exists(const std::string& path) { return FileSystem::sharedInstance().exists(path); }

bool isFolderOnDisk(const std::string& path) {
    FileStatus status;
    return FileSystem::sharedInstance().followedStatus(path, status) == 0 &&
           status.kind == FileStatus::Kind::folder;
}

std::string withoutSlash(const std::string& path) { return path.substr(0, path.find_last_not_of('/') + 1); }

/// The same letters, capital or small.
bool isAsciiForm(std::string_view name, std::string_view lowercase) {
    return std::equal(name.begin(), name.end(), lowercase.begin(), lowercase.end(), [](char c, char wanted) {
        return (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) == wanted;
    });
}

/// Whether the folder is an application folder: a program AppRun beside its description.
bool holdsLauncher(const std::string& folder) {
    if (!exists(folder + "/AppRun"))
        return false;
    std::unique_ptr<OpenFolder> opened;
    FolderEntries entries;
    if (FileSystem::sharedInstance().openFolder(folder, opened) != 0 || opened->entries(entries) != 0)
        return false;
    for (const FolderEntry entry : entries) {
        if (entry.name.ends_with(".desktop"))
            return true;
    }
    return false;
}

} // namespace

bool FileManager::isFile(const std::string& path) const { return !isFolderOnDisk(path); }

bool FileManager::isFolder(const std::string& path) const { return !isFile(path) && !isBundle(path); }

bool FileManager::isBundle(const std::string& path) const {
    FileStatus status;
    if (FileSystem::sharedInstance().followedStatus(path, status) != 0)
        return true;
    return status.kind == FileStatus::Kind::folder && isBundleFolder(path);
}

bool FileManager::isBundleFolder(const std::string& path) const {
    const std::string folder = withoutSlash(path);
    return hasBundleSuffix(folder) || exists(folder + "/Contents/Info.plist") || holdsLauncher(folder);
}

bool FileManager::isBundleFolder(const std::string& path, const FolderEntries& entries) const {
    // Where names that differ in case are one, each form of these is found.
    for (const FolderEntry entry : entries)
        if (isAsciiForm(entry.name, "contents") || isAsciiForm(entry.name, "apprun"))
            return isBundleFolder(path);
    return hasBundleSuffix(withoutSlash(path));
}

bool FileManager::folderIsLikelyToBeABundle(const std::string& path) const {
    if (hasBundleSuffix(path))
        return true;
    if (!isFolderOnDisk(path) || !isBundleFolder(path))
        return false;
    return exists(path + "/Contents") || exists(path + "/Info.plist") || exists(path + "/PkgInfo");
}

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

} // namespace

FileMetadata FileManager::allTagsFor(const std::string& path) const {
    if (isNeverAskedAbout(path))
        return {};
    return metadataTool.tagsFor(path, MetadataTool::Client::allTags);
}

std::optional<FileMetadata> FileManager::mp3TagsFor(const std::string& path) const {
    if (!isMusic(path))
        return std::nullopt;
    return metadataTool.tagsFor(path, MetadataTool::Client::mp3Tags);
}

} // namespace tavrin
