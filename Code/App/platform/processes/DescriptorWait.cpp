#include "platform/processes/DescriptorWait.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <poll.h>

namespace tavrin {

bool waitFor(int descriptor, short events, std::chrono::steady_clock::time_point end) {
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const auto pause = std::clamp<std::int64_t>(left.count(), 0, std::numeric_limits<int>::max());
        pollfd waiting{descriptor, events, 0};
        const int news = ::poll(&waiting, 1, static_cast<int>(pause));
        if (news >= 0 || errno != EINTR)
            return news > 0;
    }
}

} // namespace tavrin
