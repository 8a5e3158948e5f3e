#include "documents/PresetsManager.h"

#include "actions/CompositeRenameAction.h"
#include "documents/RecipeFile.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <climits>
#include <fmt/format.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace tavrin {

namespace {

constexpr std::string_view suffix = ".tvrn8preset.plist";
constexpr std::array<std::string_view, 2> acceptedSuffixes{suffix, ".mv8preset.plist"};

PresetsManager* registered = nullptr;

std::u16string titleOf(std::string_view path) {
    return text::fromBytes(withoutExtension(withoutExtension(lastComponent(path))));
}

bool isPresetName(std::string_view name) {
    for (const std::string_view accepted : acceptedSuffixes) {
        if (name.ends_with(accepted))
            return true;
    }
    return false;
}

/// Folders still to be read lie on a stack of their own, so a deep tree needs no deep recursion.
std::vector<std::string> presetFilesBelow(const std::string& folder) {
    std::vector<std::string> found;
    std::vector<std::string> pending{folder};
    while (!pending.empty()) {
        const std::string path = std::move(pending.back());
        pending.pop_back();
        std::unique_ptr<OpenFolder> open;
        FolderEntries entries;
        if (FileSystem::sharedInstance().openFolder(path, open) != 0 || open->entries(entries) != 0)
            continue;
        for (const FolderEntry entry : entries) {
            std::string entryPath = path + "/" + std::string(entry.name);
            if (entry.kind == FileStatus::Kind::folder)
                pending.push_back(std::move(entryPath));
            else if (isPresetName(entry.name))
                found.push_back(std::move(entryPath));
        }
    }
    return found;
}

PresetOutcome failed(std::string message) { return {std::move(message)}; }

PresetOutcome removeFile(const std::string& path) {
    if (const int error = FileSystem::sharedInstance().removeFile(path))
        return failed(fmt::format("\"{}\" could not be removed: {}", path, std::strerror(error)));
    return {};
}

PresetOutcome outcomeOf(const PropertyList::Written& written, const std::string& path) {
    if (const auto* error = std::get_if<PropertyListError>(&written))
        return failed(fmt::format("The preset can't be saved as \"{}\". {}", path, error->message));
    return {};
}

} // namespace

PresetsManager::PresetsManager(std::string localFolder, std::string globalFolder,
                               std::function<CompositeRenameAction&()> composite)
    : folder(std::move(localFolder)), sharedFolder(std::move(globalFolder)),
      compositeAction(std::move(composite)) {
    registered = this;
}

PresetsManager::~PresetsManager() {
    if (registered == this)
        registered = nullptr;
}

PresetsManager& PresetsManager::sharedInstance() {
    if (!registered)
        throw std::logic_error("no presets manager has been made");
    return *registered;
}

void PresetsManager::startup() {
    createPresetsFolders();
    loadPresets();
}

void PresetsManager::createPresetsFolders() {
    (void)FileSystem::sharedInstance().makeFolders(folder);
    (void)FileSystem::sharedInstance().makeFolders(sharedFolder);
}

void PresetsManager::loadPresets() { presetFilePaths = presetFilesBelow(folder); }

std::vector<std::u16string> PresetsManager::getPresetTitles() const {
    std::vector<std::u16string> titles;
    titles.reserve(presetFilePaths.size());
    for (const std::string& path : presetFilePaths)
        titles.push_back(titleOf(path));
    return titles;
}

std::u16string PresetsManager::nameAtIndex(std::size_t index) const { return titleOf(pathAtIndex(index)); }

std::string PresetsManager::pathAtIndex(std::size_t index) const {
    return index < presetFilePaths.size() ? presetFilePaths[index] : std::string();
}

std::u16string PresetsManager::descriptionAtIndex(std::size_t index) const {
    const std::optional<PropertyDictionary> content = enclosureAtIndex(index);
    const PropertyValue* description = content ? find(*content, "description") : nullptr;
    return description ? textOrData(*description).value_or(u"") : u"";
}

std::optional<PropertyDictionary> PresetsManager::enclosureAtIndex(std::size_t index) const {
    return enclosureAtPath(pathAtIndex(index));
}

std::optional<PropertyDictionary> PresetsManager::enclosureAtPath(const std::string& path) {
    PropertyList::Result list = PropertyList::read(path);
    PropertyValue* root = std::get_if<PropertyValue>(&list);
    PropertyDictionary* content = root ? root->asDictionary() : nullptr;
    return content ? std::optional(std::move(*content)) : std::nullopt;
}

std::u16string PresetsManager::cleanedName(std::u16string_view name) {
    std::u16string cleaned(name);
    text::replaceUnit(cleaned, u'/', u':');
    text::replaceUnit(cleaned, u'.', u'_');
    return cleaned;
}

std::optional<std::string> PresetsManager::problemOfName(std::u16string_view name) {
    const std::optional<std::string> component = text::toBytes(cleanedName(name));
    if (!component || component->find('\0') != std::string::npos)
        return "A file can't have this name.";
    if (const std::size_t bytes = component->size() + suffix.size(); bytes > NAME_MAX)
        return fmt::format("This name is too long for a file: {} of {} bytes.", bytes, NAME_MAX);
    return std::nullopt;
}

std::optional<std::string> PresetsManager::computePathForName(std::u16string_view name) const {
    if (problemOfName(name))
        return std::nullopt;
    return fmt::format("{}/{}{}", folder, text::toBytes(cleanedName(name)).value_or(""), suffix);
}

bool PresetsManager::isNameIsStillAvailable(const std::optional<std::u16string>& name) const {
    const std::optional<std::string> path = name ? computePathForName(*name) : std::nullopt;
    return path && !FileSystem::sharedInstance().exists(*path);
}

PresetOutcome
PresetsManager::createPresetFromCurrentActionsWithName(std::u16string_view name,
                                                       const std::optional<std::u16string>& description) {
    const std::optional<std::string> path = computePathForName(name);
    if (!path)
        return {problemOfName(name)};
    const PropertyDictionary content{{"compositeAction", compositeAction().getFlatParameterList()},
                                     {"minimumVersion", u"8.0.0.0"},
                                     {"description", description.value_or(u"")}};
    return outcomeOf(PropertyList::writeAtomically(content, *path), *path);
}

PresetOutcome PresetsManager::applyPresetAtIndex(std::size_t index) {
    const PropertyList::Result list = PropertyList::read(pathAtIndex(index));
    if (const auto* error = std::get_if<PropertyListError>(&list))
        return failed(error->message);
    const PropertyDictionary* content = std::get<PropertyValue>(list).asDictionary();
    const PropertyValue* chain = content ? find(*content, "compositeAction") : nullptr;
    if (!chain)
        return failed("compositeAction: expected a dictionary");
    RecipeFile::CheckedList checked = RecipeFile::checkedFlatParameterList(*chain, "compositeAction");
    if (const auto* error = std::get_if<RecipeError>(&checked))
        return failed(error->message);
    compositeAction().setFlatParameterList(std::get<PropertyDictionary>(checked));
    return {};
}

PresetOutcome PresetsManager::deletePresetAtIndex(std::size_t index) {
    return removeFile(pathAtIndex(index));
}

PresetOutcome PresetsManager::deletePreset(std::u16string_view name) {
    const std::optional<std::string> path = computePathForName(name);
    return path ? removeFile(*path) : PresetOutcome{problemOfName(name)};
}

PresetOutcome PresetsManager::changeDescription(const std::optional<std::u16string>& description,
                                                const std::string& atPath) {
    const std::optional<PropertyDictionary> content = contentWith(description, atPath);
    if (!content)
        return failed(fmt::format("\"{}\" could not be read.", atPath));
    return outcomeOf(PropertyList::writeAtomically(*content, atPath), atPath);
}

PresetOutcome PresetsManager::changeNameAtPath(const std::string& path, std::u16string_view toNewNawe,
                                               const std::optional<std::u16string>& description) {
    const std::optional<std::string> newPath = computePathForName(toNewNawe);
    if (!newPath)
        return {problemOfName(toNewNawe)};
    if (*newPath == path) // another spelling of the same cleaned name
        return changeDescription(description, path);
    const std::optional<PropertyDictionary> content = contentWith(description, path);
    if (!content)
        return failed(fmt::format("\"{}\" could not be read.", path));
    if (PresetOutcome written = outcomeOf(PropertyList::writeNew(*content, *newPath), *newPath); !written)
        return written;
    if (const PresetOutcome removed = removeFile(path); !removed)
        return failed(
            fmt::format("The preset has its new name, but the old one is there as well. {}", *removed.error));
    return {};
}

std::optional<PropertyDictionary>
PresetsManager::contentWith(const std::optional<std::u16string>& description, const std::string& path) {
    std::optional<PropertyDictionary> content = enclosureAtPath(path);
    if (content)
        content->insert_or_assign("description", description.value_or(u""));
    return content;
}

} // namespace tavrin
