#include "documents/DropletRequest.h"

#include "documents/DropletLauncher.h"
#include "platform/files/FileSystem.h"
#include "support/application/Version.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {

namespace {

bool isSilent(const Recipe& recipe) {
    const PropertyValue* value =
        recipe.globalSettings ? find(*recipe.globalSettings, "silentDroplet") : nullptr;
    return value && intValue(*value) != 0;
}

std::string nameFor(const DropletRequest& request) {
    if (!request.bundlePath.empty())
        return request.bundlePath;
    return request.launcherPath.empty() ? "" : DropletLauncher::bundleBeside(request.launcherPath).path();
}

} // namespace

std::optional<DropletBundle> DropletRequest::bundle() const {
    if (!bundlePath.empty() && DropletBundle(bundlePath).isFolder())
        return DropletBundle(bundlePath);
    if (launcherPath.empty())
        return std::nullopt;
    const DropletBundle beside = DropletLauncher::bundleBeside(launcherPath);
    return beside.isFolder() ? std::optional(beside) : std::nullopt;
}

std::string DropletRequest::missingText(const std::vector<std::string>& missing) {
    constexpr std::size_t mostNamed = 10;
    std::string result =
        "They may have been moved, or the file manager has passed on a name with characters that it "
        "can't read:\n";
    for (std::size_t i = 0; i < std::min(missing.size(), mostNamed); ++i)
        result += "\n" + text::toUtf8(text::fromBytes(missing[i]));
    if (missing.size() > mostNamed)
        result += fmt::format("\nand {} more", missing.size() - mostNamed);
    return result;
}

std::variant<DropletRequest::Start, DropletRequest::Failure> DropletRequest::start() const {
    const std::optional<DropletBundle> droplet = bundle();
    if (!droplet)
        return Failure{fmt::format("The droplet is gone. The folder \"{}\" with its settings is not there. "
                                   "Move it back, or create the droplet anew.",
                                   nameFor(*this))};
    RecipeFile::Result result = droplet->readRecipe();
    if (const auto* error = std::get_if<RecipeError>(&result))
        return Failure{fmt::format("The droplet \"{}\" can't be used. It may be damaged, or come from a "
                                   "newer version. Nothing has been renamed.\n\n{}",
                                   droplet->name(), error->message)};
    Recipe& recipe = std::get<Recipe>(result);
    Start start;
    start.isSilent = isSilent(recipe);
    PropertyArray list;
    for (const std::string& file : files) {
        if (FileStatus status; FileSystem::sharedInstance().status(file, status) == 0)
            list.emplace_back(text::fromBytes(file));
        else
            start.missingFiles.push_back(file);
    }
    if (list.empty() && !files.empty())
        return Failure{fmt::format("The dropped files are not there. {}", missingText(files)),
                       start.isSilent};
    start.record = {{"composite action", std::move(recipe.flatParameterList)},
                    {"settings plist path", text::fromBytes(droplet->settingsPath())},
                    {"Version", text::fromUtf8(programVersion)}};
    if (recipe.globalSettings)
        start.record.emplace("global settings", std::move(*recipe.globalSettings));
    if (!list.empty())
        start.record.emplace("file list", std::move(list));
    return start;
}

} // namespace tavrin
