#include "platform/desktop/FileManagerMenus.h"
#include "platform/files/Descriptor.h"
#include "platform/metadata/FileManager.h"
#include "support/application/DebugLog.h"

#include <cerrno>
#include <fcntl.h>
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

} // namespace tavrin
