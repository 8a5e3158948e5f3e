#include "platform/files/Descriptor.h"
#include "platform/files/FileStatus.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/files/UnflaggedRename.h"
#include "support/text/PathParts.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

constexpr unsigned statusMask = STATX_TYPE | STATX_MODE | STATX_UID | STATX_SIZE | STATX_BLOCKS |
                                STATX_MTIME | STATX_CTIME | STATX_BTIME | STATX_INO;
constexpr std::uint64_t lockMask = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
constexpr decltype(statfs::f_type) ntfsMagic = 0x7366746E; // of the driver in the kernel
constexpr std::uint64_t blockSize = 512; // the unit of stx_blocks, whatever the file system's own

bool hasNul(std::string_view name) { return name.find('\0') != std::string_view::npos; }

double secondsOf(const struct statx_timestamp& time) {
    return static_cast<double>(time.tv_sec - referenceDateSince1970) + time.tv_nsec * 1e-9;
}

FileStatus::Kind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return FileStatus::Kind::file;
    if (S_ISDIR(mode))
        return FileStatus::Kind::folder;
    return S_ISLNK(mode) ? FileStatus::Kind::link : FileStatus::Kind::other;
}

int statusAt(int folder, const std::string& name, int flags, FileStatus& into) {
    if (hasNul(name))
        return EINVAL;
    struct statx found {};
    if (::statx(folder, name.c_str(), flags | AT_NO_AUTOMOUNT, statusMask, &found) != 0)
        return errno;
    into.kind = kindOf(found.stx_mode);
    into.immutable = (found.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    into.appendOnly = (found.stx_attributes & STATX_ATTR_APPEND) != 0;
    into.tellsLocks = (found.stx_attributes_mask & lockMask) == lockMask;
    const bool isFolder = into.kind == FileStatus::Kind::folder;
    into.size = isFolder ? 0 : found.stx_size;
    into.allocated = isFolder ? 0 : found.stx_blocks * blockSize;
    into.isSticky = isFolder && (found.stx_mode & S_ISVTX) != 0;
    static const uid_t user = ::geteuid(); // not asked for once more with each of many items
    into.isForeign = found.stx_uid != user && user != 0;
    into.modificationDate = secondsOf(found.stx_mtime);
    into.changeDate = secondsOf(found.stx_ctime);
    into.hasBirthTime = (found.stx_mask & STATX_BTIME) != 0;
    into.creationDate = into.hasBirthTime ? secondsOf(found.stx_btime) : into.modificationDate;
    into.identity = {found.stx_ino, found.stx_dev_major << 20 | found.stx_dev_minor};
    return 0;
}

/// A name that stays in its folder.
bool isPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           !hasNul(name);
}

/// Known by a path-only descriptor, so that a folder without the right to read it still serves.
class PosixOpenFolder : public OpenFolder {
  public:
    explicit PosixOpenFolder(Descriptor opened) : folder(std::move(opened)) {}

    int status(const std::string& name, FileStatus& into) override {
        return statusAt(folder.get(), name, AT_SYMLINK_NOFOLLOW, into);
    }
    int renameNoReplace(const std::string& from, const std::string& to) override {
        return renameFlagged(from, to, RENAME_NOREPLACE);
    }
    int exchange(const std::string& a, const std::string& b) override {
        return renameFlagged(a, b, RENAME_EXCHANGE);
    }
    int renameReplacing(const std::string& from, const std::string& to) override {
        return renameFlagged(from, to, 0);
    }
    int link(const std::string& from, const std::string& to) override {
        if (!isPlainName(from) || !isPlainName(to))
            return EINVAL;
        return result(::linkat(folder.get(), from.c_str(), folder.get(), to.c_str(), 0));
    }
    int reserve(const std::string& name, FileStatus::Kind kind) override {
        if (!isPlainName(name))
            return EINVAL;
        if (kind == FileStatus::Kind::folder)
            return result(::mkdirat(folder.get(), name.c_str(), 0700));
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        return Descriptor(::openat(folder.get(), name.c_str(), flags, 0600)) ? 0 : errno;
    }
    int remove(const std::string& name, FileStatus::Kind kind) override {
        if (!isPlainName(name))
            return EINVAL;
        const int flags = kind == FileStatus::Kind::folder ? AT_REMOVEDIR : 0;
        return result(::unlinkat(folder.get(), name.c_str(), flags));
    }
    int entries(FolderEntries& into) override {
        const Descriptor readable(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return readable ? readFolder(readable.get(), into) : errno;
    }
    int volume(VolumeFacts& into) override {
        struct statfs found {};
        if (::fstatfs(folder.get(), &found) != 0)
            return errno;
        static_assert(sizeof found.f_fsid == sizeof into.id);
        std::memcpy(&into.id, &found.f_fsid, sizeof into.id);
        into.nameLimit = static_cast<std::size_t>(found.f_namelen);
        into.inodesMayChange = found.f_type == FUSE_SUPER_MAGIC;
        const bool isFat = found.f_type == MSDOS_SUPER_MAGIC || found.f_type == EXFAT_SUPER_MAGIC;
        const bool isShare = found.f_type == SMB_SUPER_MAGIC || found.f_type == CIFS_SUPER_MAGIC ||
                             found.f_type == SMB2_SUPER_MAGIC;
        into.isRemote = isShare || into.inodesMayChange || found.f_type == NFS_SUPER_MAGIC ||
                        found.f_type == AFS_FS_MAGIC || found.f_type == V9FS_MAGIC ||
                        found.f_type == CEPH_SUPER_MAGIC;
        into.countsUnits = isFat || isShare || into.inodesMayChange || found.f_type == ntfsMagic;
        if (isFat)
            into.nameLimit = 255; // it tells the bytes that these may come to
        into.ignoresCase = isFat || isShare;
        into.forbidsSigns = isFat;
        return 0;
    }
    bool liesAt(const std::string& path) override {
        const std::string own = "/proc/self/fd/" + std::to_string(folder.get());
        std::string target(path.size() + 1, '\0');
        const ssize_t length = ::readlink(own.c_str(), target.data(), target.size());
        return length >= 0 && target.compare(0, static_cast<std::size_t>(length), path) == 0;
    }

  private:
    static int result(int returned) { return returned == 0 ? 0 : errno; }

    int renameFlagged(const std::string& from, const std::string& to, unsigned flags) {
        if (!isPlainName(from) || !isPlainName(to))
            return EINVAL;
        if (::renameat2(folder.get(), from.c_str(), folder.get(), to.c_str(), flags) == 0)
            return 0;
        // A flag that is not known gives any of these, and a name that the file system forbids the first.
        const bool isFlagRefused = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
        return flags != 0 && isFlagRefused ? EOPNOTSUPP : errno;
    }

    Descriptor folder;
};

int writeAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(file, content.data(), content.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            content.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

class PosixAppendFile : public AppendFile {
  public:
    PosixAppendFile(Descriptor opened, std::string path) : file(std::move(opened)), place(std::move(path)) {}

    int append(std::string_view bytes) override { return writeAll(file.get(), bytes); }
    int sync() override {
        if (::fdatasync(file.get()) != 0)
            return errno;
        if (std::exchange(nameIsSafe, true))
            return 0;
        const Descriptor folder(
            ::open(std::string(folderPrefix(place)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return folder && ::fsync(folder.get()) == 0 ? 0 : errno;
    }

  private:
    Descriptor file;
    std::string place;
    bool nameIsSafe = false;
};

int writeAndSync(Descriptor file, std::string_view content) {
    if (const int error = writeAll(file.get(), content))
        return error;
    if (::fsync(file.get()) != 0)
        return errno;
    return ::close(file.release()) == 0 ? 0 : errno;
}

/// A name in the target's folder that no one else of this system uses.
std::string temporaryNameFor(const std::string& path) {
    static std::atomic<unsigned> counter = 0;
    return std::string(folderPrefix(path)) + ".tavrin-" + std::to_string(::getpid()) + "-" +
           std::to_string(counter++) + ".tmp";
}

/// Without O_NONBLOCK the opening of a pipe would wait for a writer.
constexpr int readingFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

/// Of a regular file.
int readAll(int file, std::string& into, std::size_t limit) {
    constexpr std::size_t step = 64 * 1024;
    struct stat status {};
    if (::fstat(file, &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    if (static_cast<std::uint64_t>(status.st_size) > limit)
        return EFBIG;
    into.clear();
    std::size_t filled = 0;
    for (;;) {
        // One byte more than announced, to see the end without another round.
        into.resize(std::max(filled + step, static_cast<std::size_t>(status.st_size) + 1));
        const ssize_t got = ::read(file, into.data() + filled, into.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        filled += got > 0 ? static_cast<std::size_t>(got) : 0;
        into.resize(filled);
        if (got <= 0)
            return got == 0 ? 0 : errno;
        if (filled > limit)
            return EFBIG;
    }
}

int makeFoldersOfMode(const std::string& path, mode_t mode) {
    if (hasNul(path))
        return EINVAL;
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (::mkdir(part.c_str(), mode) != 0) {
            const int error = errno;
            struct stat found {};
            if (::stat(part.c_str(), &found) != 0)
                return error;
            if (!S_ISDIR(found.st_mode))
                return ENOTDIR;
        }
        if (slash == std::string::npos)
            return 0;
    }
}

/// The file system of the running system. Stateless. A path or name that holds a NUL is refused with EINVAL.
class PosixFileSystem : public FileSystem {
  public:
    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override;
    int status(const std::string& path, FileStatus& into) override;
    int followedStatus(const std::string& path, FileStatus& into) override;
    int mayChangeNamesIn(const std::string& folder) override;
    int removeFile(const std::string& path) override;
    int makeFolders(const std::string& path) override;
    int writeFileAtomically(const std::string& path, std::string_view content) override;
    int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) override;
    /// Regular files only: EISDIR for a folder, EINVAL for anything else, EFBIG beyond the limit.
    int readFile(const std::string& path, std::string& into, std::size_t limit) override;
};

std::atomic<FileSystem*> replacement = nullptr;

} // namespace

FileSystem& FileSystem::sharedInstance() {
    static PosixFileSystem real;
    FileSystem* const replaced = replacement.load(std::memory_order_acquire);
    return replaced != nullptr ? *replaced : real;
}

void FileSystem::setSharedInstance(FileSystem* instance) {
    replacement.store(instance, std::memory_order_release);
}

bool FileSystem::exists(const std::string& path) {
    FileStatus status;
    return followedStatus(path, status) == 0;
}

bool FileSystem::isAbsent(const std::string& path) {
    FileStatus found;
    const int error = status(path, found);
    return error == ENOENT || error == ENOTDIR;
}

int FileSystem::writeNewFile(const std::string& path, std::string_view content) {
    const std::string beside = temporaryNameFor(path);
    if (const int error = writeFileAtomically(beside, content))
        return error;
    const int error = renameNoReplace(beside, path);
    if (error != 0)
        static_cast<void>(removeFile(beside));
    return error;
}

namespace {

/// Opens the folder that holds both items, and gives their names in it; EXDEV when it is not the same.
int openCommonFolder(FileSystem& system, std::string& first, std::string& second,
                     std::unique_ptr<OpenFolder>& into) {
    const std::string folder(folderPrefix(first));
    if (folder != folderPrefix(second))
        return EXDEV;
    first.erase(0, folder.size());
    second.erase(0, folder.size());
    return system.openFolder(folder.empty() ? "." : folder, into);
}

int renameWithin(OpenFolder& folder, const std::string& from, const std::string& to) {
    const int error = folder.renameNoReplace(from, to);
    return error == EOPNOTSUPP ? UnflaggedRename(folder).rename(from, to) : error;
}

} // namespace

int FileSystem::renameNoReplace(std::string from, std::string to) {
    std::unique_ptr<OpenFolder> folder;
    const int error = openCommonFolder(*this, from, to, folder);
    return error != 0 ? error : renameWithin(*folder, from, to);
}

int FileSystem::exchangeNames(std::string first, std::string second) {
    std::unique_ptr<OpenFolder> folder;
    if (const int error = openCommonFolder(*this, first, second, folder))
        return error;
    const int error = folder->exchange(first, second);
    if (error != EOPNOTSUPP)
        return error;
    const std::string aside = first + ".old";
    if (const int failure = renameWithin(*folder, second, aside))
        return failure;
    if (const int failure = renameWithin(*folder, first, second)) {
        static_cast<void>(renameWithin(*folder, aside, second));
        return failure;
    }
    return renameWithin(*folder, aside, first);
}

int PosixFileSystem::mayChangeNamesIn(const std::string& folder) {
    if (hasNul(folder))
        return EINVAL;
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

int PosixFileSystem::openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) {
    if (hasNul(path))
        return EINVAL;
    Descriptor folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return errno;
    into = std::make_unique<PosixOpenFolder>(std::move(folder));
    return 0;
}

int PosixFileSystem::status(const std::string& path, FileStatus& into) {
    return statusAt(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, into);
}

int PosixFileSystem::followedStatus(const std::string& path, FileStatus& into) {
    return statusAt(AT_FDCWD, path, 0, into);
}

int PosixFileSystem::removeFile(const std::string& path) {
    if (hasNul(path))
        return EINVAL;
    return ::unlink(path.c_str()) == 0 ? 0 : errno;
}

int PosixFileSystem::makeFolders(const std::string& path) { return makeFoldersOfMode(path, 0755); }

int PosixFileSystem::writeFileAtomically(const std::string& path, std::string_view content) {
    if (hasNul(path))
        return EINVAL;
    const std::string temporary = temporaryNameFor(path);
    Descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
    if (!file)
        return errno;
    int error = writeAndSync(std::move(file), content);
    if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(temporary.c_str());
    return error;
}

int PosixFileSystem::makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) {
    if (hasNul(path))
        return EINVAL;
    Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file)
        return errno;
    // Without locks on this file system nobody can tell that the file is held, which loses nothing.
    static_cast<void>(::flock(file.get(), LOCK_EX | LOCK_NB));
    into = std::make_unique<PosixAppendFile>(std::move(file), path);
    return 0;
}

int PosixFileSystem::readFile(const std::string& path, std::string& into, std::size_t limit) {
    if (hasNul(path))
        return EINVAL;
    const Descriptor file(::open(path.c_str(), readingFlags));
    return file ? readAll(file.get(), into, limit) : errno;
}

int readContainedFile(const std::string& folder, std::string_view relativePath, std::string& into,
                      std::size_t limit) {
    constexpr int folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    Descriptor place(::open(folder.c_str(), folderFlags));
    if (!place)
        return errno;
    for (std::size_t slash; (slash = relativePath.find('/')) != std::string_view::npos;
         relativePath.remove_prefix(slash + 1)) {
        const std::string component(relativePath.substr(0, slash));
        Descriptor next(::openat(place.get(), component.c_str(), folderFlags | O_NOFOLLOW));
        if (!next)
            return errno;
        place = std::move(next);
    }
    const Descriptor file(
        ::openat(place.get(), std::string(relativePath).c_str(), readingFlags | O_NOFOLLOW));
    return file ? readAll(file.get(), into, limit) : errno;
}

int makePrivateFolder(const std::string& path) { return makeFoldersOfMode(path, 0700); }

} // namespace tavrin
