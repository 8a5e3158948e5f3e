#include "platform/files/DescriptorLimit.h"

#include <algorithm>
#include <sys/resource.h>

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

} // namespace tavrin
