#include "platform/NoReplaceRename.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace tavrin {

int kernelRenameNoReplace(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE) == 0 ? 0 : errno;
}

int renameNoReplaceAt(int fromFolder, const char* from, int toFolder, const char* to, FlaggedRename flagged) {
    const int result = flagged(fromFolder, from, toFolder, to);
    if (result != EINVAL && result != ENOSYS && result != EOPNOTSUPP)
        return result;
    struct stat taken {};
    if (::fstatat(toFolder, to, &taken, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    // A name that could not be tested may be taken.
    if (errno != ENOENT)
        return errno;
    return ::renameat(fromFolder, from, toFolder, to) == 0 ? 0 : errno;
}

} // namespace tavrin
