#include "platform/files/PrivateFolder.h"

#include <cerrno>
#include <sys/stat.h>

namespace tavrin {

int makePrivateFolder(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (::mkdir(part.c_str(), 0700) != 0) {
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

} // namespace tavrin
