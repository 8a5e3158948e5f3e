#include "OutputBuffer.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace tavrin {

void OutputBuffer::flush() {
    std::string_view rest = buffer;
    while (!rest.empty() && failure == 0) {
        const ssize_t written = ::write(file, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // The terminal was left in non-blocking mode by someone.
            pollfd writable{file, POLLOUT, 0};
            ::poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            failure = errno;
        }
    }
    buffer.clear();
}

} // namespace tavrin
