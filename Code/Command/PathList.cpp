#include "PathList.h"

#include "ExitStatus.h"

#include <climits>
#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::size_t bytesPerRead = 256 * 1024;
constexpr std::size_t longestPath = PATH_MAX - 1;

} // namespace

PathList::PathList(const std::string& source, bool endsWithNull, int interruptedBy)
    : name(source == "-" ? "standard input" : source), separator(endsWithNull ? '\0' : '\n'),
      interruption(interruptedBy), descriptor(STDIN_FILENO) {
    if (source == "-")
        return;
    opened = Descriptor(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened)
        fail(std::generic_category().message(errno));
    descriptor = opened.get();
}

std::vector<std::string> PathList::next() {
    std::vector<std::string> paths;
    while (paths.empty() && !isAtEnd) {
        const std::size_t known = rest.size();
        isAtEnd = !readMore();
        std::size_t start = 0;
        for (std::size_t end = rest.find(separator, known); end != std::string::npos;
             end = rest.find(separator, start)) {
            take(std::string_view(rest).substr(start, end - start), paths);
            start = end + 1;
        }
        rest.erase(0, start);
        if (rest.size() > longestPath)
            fail(fmt::format("a line is longer than any path, which has {} bytes at most", longestPath));
    }
    if (isAtEnd) {
        take(rest, paths);
        rest.clear();
    }
    return paths;
}

bool PathList::readMore() {
    std::array<pollfd, 2> sources{{{descriptor, POLLIN, 0}, {interruption, POLLIN, 0}}};
    while (::poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
    }
    if (sources[1].revents != 0) {
        rest.clear(); // what was cut off is no path
        return false;
    }
    const std::size_t known = rest.size();
    rest.resize(known + bytesPerRead);
    ssize_t length = 0;
    do
        length = ::read(descriptor, rest.data() + known, bytesPerRead);
    while (length < 0 && errno == EINTR);
    const int error = errno;
    rest.resize(known + static_cast<std::size_t>(length < 0 ? 0 : length));
    if (length < 0)
        fail(std::generic_category().message(error));
    return length > 0;
}

void PathList::take(std::string_view line, std::vector<std::string>& into) const {
    if (line.empty())
        return;
    if (line.find('\0') != std::string_view::npos)
        fail("a line holds a NUL; where these end the paths, -0 says so");
    if (line.size() > longestPath)
        fail(fmt::format("a line is longer than any path, which has {} bytes at most", longestPath));
    into.emplace_back(line);
}

void PathList::fail(std::string_view reason) const {
    throw UsageError(fmt::format("the list of paths cannot be read from {}: {}", name, reason));
}

} // namespace tavrin
