#include "platform/files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tavrin {

std::size_t raiseDescriptorLimit(std::size_t wanted) {
    constexpr std::size_t least = 256;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return least;
    const rlimit raised{std::min<rlim_t>(limit.rlim_max, wanted), limit.rlim_max};
    if (limit.rlim_cur < raised.rlim_cur && ::setrlimit(RLIMIT_NOFILE, &raised) == 0)
        limit = raised;
    return static_cast<std::size_t>(std::min<rlim_t>(limit.rlim_cur, wanted));
}

void openStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF)
            continue;
        // The lowest free number is taken, and all below this one are open.
        if (::open("/dev/null", descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY) < 0)
            ::_exit(2); // not even this can be told
    }
}

} // namespace tavrin
