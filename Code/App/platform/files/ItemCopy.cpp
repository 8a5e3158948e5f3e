#include "platform/files/ItemCopy.h"

#include "platform/files/Descriptor.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "support/text/PathParts.h"

#include <climits>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr int depthLimit = 64;
constexpr std::uint64_t byteLimit = std::uint64_t{1} << 30;

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// A name within an open folder.
struct Place {
    int folder;
    const char* name;
};

/// Removes what a copy has made there, links not followed.
void discard(Place place) {
    if (::unlinkat(place.folder, place.name, 0) == 0 || (errno != EISDIR && errno != EPERM))
        return;
    {
        const Descriptor folder(::openat(place.folder, place.name, folderFlags));
        FolderEntries entries;
        // A copy of a folder that must not be written in has its permissions already.
        if (!folder || ::fchmod(folder.get(), 0700) != 0 || readFolder(folder.get(), entries) != 0)
            return;
        for (const FolderEntry entry : entries)
            discard({folder.get(), std::string(entry.name).c_str()});
    }
    ::unlinkat(place.folder, place.name, AT_REMOVEDIR);
}

/// One copy with what is left of its limits.
class Copier {
  public:
    /// `targetFolder` is where the copy comes to lie.
    Copier(int targetFolder, int mostEntries) : entriesLeft(mostEntries) { ::fstat(targetFolder, &target); }

    /// `to` must be free. A failure may leave a part.
    int copy(Place from, Place to, int depth = 0) {
        if (--entriesLeft < 0)
            return EFBIG;
        struct stat status {};
        if (::fstatat(from.folder, from.name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return errno;
        if (S_ISLNK(status.st_mode))
            return copyLink(from, to);
        if (S_ISREG(status.st_mode))
            return copyFile(from, to);
        if (!S_ISDIR(status.st_mode))
            return EINVAL;
        return depth < depthLimit ? copyFolder(from, to, depth) : ELOOP;
    }

  private:
    static int copyLink(Place from, Place to) {
        std::array<char, PATH_MAX> path{};
        const ssize_t length = ::readlinkat(from.folder, from.name, path.data(), path.size() - 1);
        if (length < 0)
            return errno;
        return ::symlinkat(path.data(), to.folder, to.name) == 0 ? 0 : errno;
    }

    int copyFile(Place from, Place to) {
        // What was a file a moment ago may be a pipe by now, whose opening would wait.
        const Descriptor source(
            ::openat(from.folder, from.name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat status {};
        if (!source || ::fstat(source.get(), &status) != 0)
            return errno;
        if (!S_ISREG(status.st_mode))
            return EINVAL;
        if (static_cast<std::uint64_t>(status.st_size) > byteLimit)
            return EFBIG;
        Descriptor copy(
            ::openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!copy)
            return errno;
        if (const int error = copyBytes(source.get(), copy.get()))
            return error;
        if (const int error = keepAttributes(copy.get(), status))
            return error;
        return ::close(copy.release()) == 0 ? 0 : errno;
    }

    int copyBytes(int from, int to) {
        std::array<char, 64 * 1024> buffer;
        for (;;) {
            const ssize_t got = ::read(from, buffer.data(), buffer.size());
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                return got == 0 ? 0 : errno;
            bytes += static_cast<std::uint64_t>(got);
            if (bytes > byteLimit)
                return EFBIG;
            for (ssize_t done = 0; done < got;) {
                const ssize_t written =
                    ::write(to, buffer.data() + done, static_cast<std::size_t>(got - done));
                if (written < 0 && errno != EINTR)
                    return errno;
                done += written > 0 ? written : 0;
            }
        }
    }

    int copyFolder(Place from, Place to, int depth) {
        const Descriptor source(::openat(from.folder, from.name, folderFlags));
        struct stat status {};
        if (!source || ::fstat(source.get(), &status) != 0)
            return errno;
        if (status.st_dev == target.st_dev && status.st_ino == target.st_ino)
            return EINVAL;
        if (::mkdirat(to.folder, to.name, 0700) != 0)
            return errno;
        const Descriptor copied(::openat(to.folder, to.name, folderFlags));
        if (!copied)
            return errno;
        FolderEntries list;
        if (const int error = readFolder(source.get(), list))
            return error;
        for (const FolderEntry entry : list) {
            const std::string name(entry.name);
            const int error = copy({source.get(), name.c_str()}, {copied.get(), name.c_str()}, depth + 1);
            if (error != 0)
                return error;
        }
        return keepAttributes(copied.get(), status);
    }

    static int keepAttributes(int copy, const struct stat& of) {
        if (::fchmod(copy, of.st_mode & 0777) != 0)
            return errno;
        const std::array<timespec, 2> times{of.st_atim, of.st_mtim};
        return ::futimens(copy, times.data()) == 0 ? 0 : errno;
    }

    struct stat target {};
    int entriesLeft;
    std::uint64_t bytes = 0;
};

/// A name that no other copy of this system uses.
std::string temporaryName() {
    static std::atomic<unsigned> counter = 0;
    return ".tavrin-copy-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
}

} // namespace

int copyItem(const std::string& from, const std::string& to, int mostEntries) {
    const std::string place(folderPrefix(to));
    const std::string name(lastComponent(to));
    if (place.empty() || name.empty() || (from + to).find('\0') != std::string::npos)
        return EINVAL;
    const Descriptor folder(::open(place.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return errno;
    struct stat taken {};
    if (::fstatat(folder.get(), name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    const std::string temporary = temporaryName();
    int error =
        Copier(folder.get(), mostEntries).copy({AT_FDCWD, from.c_str()}, {folder.get(), temporary.c_str()});
    if (error == 0)
        error = FileSystem::sharedInstance().renameNoReplace(place + temporary, to);
    if (error != 0)
        discard({folder.get(), temporary.c_str()});
    return error;
}

} // namespace tavrin
