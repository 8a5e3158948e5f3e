#include "platform/desktop/FileManagerMenus.h"
#include "platform/files/Descriptor.h"
#include "platform/files/FileStatus.h"
#include "platform/files/FolderEntries.h"
#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/FileManager.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"
#include "support/values/CalendarFormat.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

namespace tavrin {

namespace {

constexpr const char* commentAttribute = "user.xdg.comment";

/// Only a privileged user can change this flag.
bool setImmutable(const std::string& path, bool immutable) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    int flags = 0;
    if (!file || ::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0)
        return false;
    flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    return ::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

} // namespace

std::string FileManager::lockedFor(const std::string& path) const {
    const auto attributes = attributesFor(path);
    return attributes && attributes->immutable ? "Locked" : "Not Locked";
}

// No file system here knows of hidden extensions.
std::string FileManager::extensionVisibleFor(const std::string&) const { return "Shown"; }

bool FileManager::lockFile(const std::string& path) const { return setImmutable(path, true); }

bool FileManager::unlockFile(const std::string& path) const { return setImmutable(path, false); }

// No file system here knows of creator and type codes.
std::optional<std::string> FileManager::getCreatorCode(const std::string&) const { return std::nullopt; }

std::optional<std::string> FileManager::getTypeCode(const std::string&) const { return std::nullopt; }

std::optional<std::string> FileManager::extractCodeString(std::string_view quoted) {
    constexpr std::size_t quotedLength = 6;
    if (quoted.size() != quotedLength)
        return std::nullopt;
    return std::string(quoted.substr(1, 4));
}

// File managers find changed entries by themselves.
void FileManager::updateServicesMenu() const {
    debugLog("updating services menu..");
    if (const FileManagerMenus* menus = FileManagerMenus::sharedInstance())
        menus->renew();
}

std::optional<std::string> FileManager::finderCommentForFileURL(const std::string& path) const {
    const ssize_t length = ::lgetxattr(path.c_str(), commentAttribute, nullptr, 0);
    if (length < 0)
        return std::nullopt;
    std::string comment(static_cast<std::size_t>(length), '\0');
    const ssize_t got = ::lgetxattr(path.c_str(), commentAttribute, comment.data(), comment.size());
    if (got < 0)
        return std::nullopt;
    comment.resize(static_cast<std::size_t>(got));
    return comment;
}

bool FileManager::changeFinderComment(const std::string& comment, const std::string& path) const {
    if (!comment.empty())
        return ::lsetxattr(path.c_str(), commentAttribute, comment.data(), comment.size(), 0) == 0;
    return ::lremovexattr(path.c_str(), commentAttribute) == 0 || errno == ENODATA;
}

bool FileManager::commentsTravelWithFiles() { return true; }

namespace {

/// Empty for no date.
std::string dateText(std::optional<double> date) {
    static const CalendarFormat format(u"%e %b %Y %H:%M:%S");
    if (!date)
        return {};
    std::u16string result;
    if (const auto moment = LocalMoment::at(*date + static_cast<double>(referenceDateSince1970)))
        format.append(*moment, result);
    return text::toUtf8(result);
}

} // namespace

std::string FileManager::creationDateFor(const std::string& path) const {
    return dateText(fileCreationDate(path));
}

std::string FileManager::modificationDateFor(const std::string& path) const {
    return dateText(fileModificationDate(path));
}

std::string FileManager::exifDateFor(const std::string& path) const { return dateText(fileEXIFDate(path)); }

std::optional<double> FileManager::fileCreationDate(const std::string& path) const {
    const auto attributes = attributesFor(path);
    return attributes ? std::optional(attributes->creationDate) : std::nullopt;
}

std::optional<double> FileManager::fileModificationDate(const std::string& path) const {
    const auto attributes = attributesFor(path);
    return attributes ? std::optional(attributes->modificationDate) : std::nullopt;
}

double FileManager::fileEXIFDate(const std::string& path) const {
    const double date = ExifHelper::exifDateFor(path);
    return date == 0.0 ? distantPast : date;
}

std::pair<float, float> FileManager::fileEXIFDimensions(const std::string& path) const {
    return ExifHelper::dimensionsOf(path).value_or(std::pair(-1.0F, -1.0F));
}

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
