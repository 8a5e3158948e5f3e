#include "platform/metadata/FileManager.h"

#include "platform/desktop/ResourceFolder.h"
#include "platform/metadata/HiddenNames.h"
#include "platform/metadata/MetadataTool.h"
#include "platform/metadata/ReferenceDate.h"

#include <atomic>
#include <chrono>
#include <mutex>

namespace tavrin {

namespace {

std::atomic<FileManager*> registered = nullptr;

} // namespace

/// The list of the folder that was asked for last.
struct FileManager::HiddenCache {
    std::mutex mutex; ///< guards what follows
    std::string folder;
    HiddenNames names;
    std::chrono::steady_clock::time_point readAt;

    bool contains(const std::string& inFolder, std::string_view name) {
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
};

FileManager::FileManager(std::string metadataScript)
    : nowDate(secondsSince2001()),
      metadataTool(std::make_unique<MetadataTool>(metadataScript.empty() ? resourcePath("extract.pl")
                                                                         : std::move(metadataScript))),
      hiddenCache(std::make_unique<HiddenCache>()) {}

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
    if (!name.starts_with('.') && !hiddenCache->contains(path.substr(0, start), name))
        return false;
    return attributesFor(path).has_value();
}

std::optional<FileStatus> FileManager::attributesFor(const std::string& path) const {
    FileStatus status;
    if (FileSystem::sharedInstance().status(path, status) != 0)
        return std::nullopt;
    return status;
}

} // namespace tavrin
