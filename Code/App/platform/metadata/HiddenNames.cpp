#include "platform/metadata/HiddenNames.h"

#include "platform/files/FileSystem.h"

#include <algorithm>
#include <functional>

namespace tavrin {

namespace {

constexpr std::size_t sizeLimit = 1024 * 1024;

} // namespace

HiddenNames::HiddenNames(const std::string& folder) {
    std::string content;
    if (FileSystem::sharedInstance().readFile(folder + "/.hidden", content, sizeLimit) != 0)
        return;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        if (end > start)
            names.emplace_back(content, start, end - start);
        start = end + 1;
    }
    std::sort(names.begin(), names.end());
}

bool HiddenNames::contains(std::string_view name) const {
    return std::binary_search(names.begin(), names.end(), name, std::less<>());
}

} // namespace tavrin
