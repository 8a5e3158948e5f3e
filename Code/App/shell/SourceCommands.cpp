#include "shell/SourceCommands.h"

#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/RenameEngine.h"
#include "shell/FrontEnd.h"
#include "shell/PreviewControl.h"
#include "shell/StoreOwner.h"
#include "store/SourceItemManager.h"
#include "store/StoreError.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace tavrin {

namespace {

std::string_view parentOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

/// Paths of one folder, as places in the list given.
struct Group {
    std::string folder;
    std::vector<std::size_t> places;
};

/// By folder, in the order in which the folders come up.
std::vector<Group> groupedByFolder(const std::vector<std::string>& paths) {
    std::vector<Group> groups;
    std::unordered_map<std::string_view, std::size_t> groupOf;
    for (std::size_t place = 0; place < paths.size(); ++place) {
        const std::string_view folder = parentOf(paths[place]);
        const auto [entry, isNew] = groupOf.try_emplace(folder, groups.size());
        if (isNew)
            groups.push_back({std::string(folder), {}});
        groups[entry->second].places.push_back(place);
    }
    return groups;
}

const Alert someFilesNotAdded{
    .kind = AlertKind::filesNotAdded,
    .title = "Some files could not be added.",
    .text = "You cannot add files that are located in folders that are already in the list. This would "
            "compromise the \"Process subfolders and their contents\" feature.",
    .buttons = {"OK"}};

} // namespace

std::vector<std::string> SourceCommands::addPaths(const std::vector<std::string>& paths) {
    std::vector<std::size_t> refused;
    for (const Group& group : groupedByFolder(paths)) {
        const bool isValid = services.sourceItems.checkPathValidity(group.folder);
        for (const std::size_t place : group.places) {
            if (!isValid || !services.sourceItems.addSourceItem(paths[place]))
                refused.push_back(place);
        }
    }
    std::sort(refused.begin(), refused.end());
    std::vector<std::string> result;
    result.reserve(refused.size());
    for (const std::size_t place : refused)
        result.push_back(paths[place]);
    return result;
}

bool SourceCommands::addFilePaths(const std::vector<std::string>& paths, bool interactive) {
    const bool someWereRefused = !addPaths(paths).empty();
    if (someWereRefused && interactive)
        services.frontEnd.showAlert(someFilesNotAdded, [](AlertAnswer) {});
    preview.initiateDelayedPreviewUpdate();
    return true;
}

void SourceCommands::showFileDialog() {
    services.frontEnd.askForFilesToAdd(services.settings.lastAddDirectory(),
                                       [this](const std::optional<FilesToAdd>& files) {
                                           if (files) {
                                               addFilePaths(files->paths, true);
                                               services.settings.setLastAddDirectory(files->folder);
                                           }
                                           preview.initiateDelayedPreviewUpdate();
                                       });
}

void SourceCommands::removeFile(const std::vector<RowId>& selection) {
    std::vector<std::string> paths;
    paths.reserve(selection.size());
    for (const RowId id : selection) {
        if (std::optional<PreviewList::Row> row = preview.nodeController().rowWithId(id))
            paths.push_back(std::move(row->fullPath));
    }
    try {
        for (const std::string& path : paths)
            services.sourceItems.removeItem(path);
    } catch (const StoreError& error) {
        // The preview that follows meets the same failure and moves the store into memory.
        services.frontEnd.presentError(error.what());
    }
    preview.initiateDelayedPreviewUpdate();
}

bool SourceCommands::canRemove(const std::vector<RowId>& selection) {
    return std::any_of(selection.begin(), selection.end(), [this](RowId id) {
        const std::optional<PreviewList::Row> row = preview.nodeController().rowWithId(id);
        return row && row->root;
    });
}

void SourceCommands::clearList() {
    services.frontEnd.selectPreviewTab(PreviewTab::status);
    store.drop();
    if (!services.engine.isBusy())
        store.releaseRetired();
    services.frontEnd.previewListChanged();
    services.composite.getCurrentAction().validateNow();
    preview.initiateDelayedPreviewUpdate();
}

void SourceCommands::reloadPreview() {
    services.sourceItems.resetCache();
    preview.initiateDelayedPreviewUpdate();
}

} // namespace tavrin
