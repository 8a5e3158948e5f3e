#include "documents/DropletHandOver.h"

#include "documents/DropletLauncher.h"
#include "documents/Settings.h"
#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/application/Version.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {

namespace {

constexpr const char* recordKey = DropletHandOver::recordKey;

/// The bytes of a path that stands as text; absent for every other kind of value.
std::optional<std::string> pathOf(const PropertyValue& value) {
    const std::optional<std::u16string> path = textOrData(value);
    return path ? text::toBytes(*path) : std::nullopt;
}

std::optional<RecipeError> readFileList(const PropertyDictionary& record, std::vector<std::string>& into) {
    const PropertyValue* list = find(record, dropletKey::fileList);
    if (!list)
        return std::nullopt;
    if (!list->asArray())
        return RecipeError{fmt::format("{}.file list: expected an array", recordKey)};
    for (const PropertyValue& entry : *list->asArray()) {
        std::optional<std::string> path = pathOf(entry);
        if (!path)
            return RecipeError{fmt::format("{}.file list[{}]: expected a path", recordKey, into.size())};
        into.push_back(std::move(*path));
    }
    return std::nullopt;
}

bool isSilent(const Recipe& recipe) {
    const PropertyValue* value =
        recipe.globalSettings ? find(*recipe.globalSettings, settingKey::silentDroplet) : nullptr;
    return value && intValue(*value) != 0;
}

std::string nameFor(const DropletRequest& request) {
    if (!request.bundlePath.empty())
        return request.bundlePath;
    return request.launcherPath.empty() ? "" : DropletLauncher::bundleBeside(request.launcherPath).path();
}

} // namespace

bool DropletHandOver::isPresent(const UserDefaults& defaults) {
    const std::optional<PropertyValue> record = defaults.objectForKey(recordKey);
    return record && record->asDictionary() && !record->asDictionary()->empty();
}

std::variant<DropletHandOver, RecipeError> DropletHandOver::read(const UserDefaults& defaults) {
    const std::optional<PropertyValue> value = defaults.objectForKey(recordKey);
    if (!value || !value->asDictionary())
        return RecipeError{fmt::format("{}: expected a dictionary", recordKey)};
    const PropertyDictionary& record = *value->asDictionary();
    DropletHandOver handOver;
    if (const PropertyValue* chain = find(record, dropletKey::chain)) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedFlatParameterList(*chain, fmt::format("{}.composite action", recordKey));
        if (const auto* error = std::get_if<RecipeError>(&checked))
            return *error;
        handOver.compositeAction = std::move(std::get<PropertyDictionary>(checked));
    }
    if (const PropertyValue* settings = find(record, dropletKey::globalSettings)) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedParameterList(*settings, fmt::format("{}.global settings", recordKey));
        if (const auto* error = std::get_if<RecipeError>(&checked))
            return *error;
        handOver.globalSettings = std::move(std::get<PropertyDictionary>(checked));
    }
    if (const PropertyValue* path = find(record, dropletKey::settingsPath))
        handOver.settingsPath = pathOf(*path).value_or("");
    handOver.hasVersion = find(record, dropletKey::version) != nullptr;
    if (std::optional<RecipeError> error = readFileList(record, handOver.fileList))
        return *error;
    return handOver;
}

void DropletHandOver::clear(UserDefaults& defaults) {
    defaults.removeObject(recordKey);
    // A record of this process lies over the stored one and can only be emptied.
    if (isPresent(defaults))
        defaults.setProcessObject(recordKey, PropertyDictionary());
    (void)defaults.synchronize();
}

// ---- the request of a launcher

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
    start.record = {{dropletKey::chain, std::move(recipe.flatParameterList)},
                    {dropletKey::settingsPath, text::fromBytes(droplet->settingsPath())},
                    {dropletKey::version, text::fromUtf8(programVersion)}};
    if (recipe.globalSettings)
        start.record.emplace(dropletKey::globalSettings, std::move(*recipe.globalSettings));
    if (!list.empty())
        start.record.emplace(dropletKey::fileList, std::move(list));
    return start;
}

} // namespace tavrin
