#include "presentation/start/DropletArguments.h"

#include "presentation/start/FileAddress.h"
#include "presentation/start/WindowArguments.h"

#include <algorithm>
#include <string_view>

namespace tavrin {

namespace {

constexpr std::string_view bundleOption = "--droplet";
constexpr std::string_view launcherOption = "--launcher=";

/// Absolute; some desktops tell the launcher as an address. Empty stays empty.
std::string absolute(std::string path) {
    if (path.starts_with("file:"))
        path = FileAddress::path(QByteArray::fromStdString(path)).value_or("");
    const std::vector<std::string> paths = WindowArguments::absolute({std::move(path)});
    return paths.empty() ? "" : paths.front();
}

} // namespace

std::optional<DropletRequest> DropletArguments::of(int count, char** arguments) {
    const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
    DropletRequest request;
    auto word = words.begin();
    bool isDroplet = false;
    if (word != words.end() && *word == bundleOption && word + 1 != words.end()) {
        request.bundlePath = absolute(*(word + 1));
        word += 2;
        isDroplet = true;
    }
    // Some file managers take the quotes of a launcher in their own way and tear the path of the bundle
    // apart. Its pieces come before the launcher; the files, all of them absolute, behind it.
    const auto launcher = std::find_if(word, std::find(word, words.end(), "--"), [](const std::string& each) {
        return each.starts_with(launcherOption);
    });
    if (launcher != words.end() && *launcher != "--" && (isDroplet || launcher == words.begin())) {
        request.launcherPath = absolute(launcher->substr(launcherOption.size()));
        word = launcher + 1;
        isDroplet = true;
    }
    if (!isDroplet)
        return std::nullopt;
    if (word != words.end() && *word == "--")
        ++word;
    request.files = WindowArguments::absolute({word, words.end()});
    return request;
}

} // namespace tavrin
