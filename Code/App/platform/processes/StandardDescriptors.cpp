#include "platform/processes/StandardDescriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavrin {

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
