#include "platform/NameExchange.h"

#include "platform/NoReplaceRename.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace tavrin {

int exchangeNames(const std::string& first, const std::string& second) {
    if (::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP)
        return errno;
    const auto rename = [](const std::string& from, const std::string& to) {
        return renameNoReplaceAt(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str());
    };
    const std::string aside = first + ".old";
    if (const int error = rename(second, aside))
        return error;
    if (const int error = rename(first, second)) {
        static_cast<void>(rename(aside, second));
        return error;
    }
    return rename(aside, first);
}

} // namespace tavrin
