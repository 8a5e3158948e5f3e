#include "shell/commands/SourceCommands.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/PreviewControl.h"
#include "shell/start/StoreOwner.h"
#include "store/paging/StoreError.h"
#include "store/sources/SourceItemManager.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t pathsPerLook = 4096;

/// Paths of one folder, as places in the list given.
struct Group {
    std::string folder;
    std::vector<std::size_t> places;
};

/// Paths that are added one by one, folder by folder, in the order in which the folders come up.
struct Adding {
    explicit Adding(std::vector<std::string> given) : paths(std::move(given)) {}

    /// False when none is left. First of all they are grouped, many at once.
    bool addNext(SourceItemManager& items) {
        if (grouped < paths.size()) {
            groupSome();
            return true;
        }
        while (group < groups.size() && place == groups[group].places.size()) {
            ++group;
            place = 0;
        }
        if (group == groups.size())
            return false;
        const Group& current = groups[group];
        if (place == 0)
            isValid = items.checkPathValidity(current.folder);
        const std::string& path = paths[current.places[place]];
        if (looksAhead && nextLook == looks.size())
            lookAhead();
        const auto look = looksAhead ? looks[nextLook++] : SourceItemManager::lookAt(path, linksAreItems);
        if (!isValid || !items.addSourceItem(path, look))
            refused.push_back(current.places[place]);
        ++place;
        ++count;
        return true;
    }

    void lookAhead() {
        std::vector<const std::string*> next;
        std::size_t from = place;
        for (std::size_t at = group; at < groups.size() && next.size() < pathsPerLook; ++at, from = 0) {
            const std::vector<std::size_t>& places = groups[at].places;
            for (; from < places.size() && next.size() < pathsPerLook; ++from)
                next.push_back(&paths[places[from]]);
        }
        looks = SourceItemManager::lookAt(next, linksAreItems, isToStop);
        nextLook = 0;
    }

    void groupSome() {
        constexpr std::size_t many = 10000;
        for (const std::size_t end = std::min(grouped + many, paths.size()); grouped < end; ++grouped) {
            const std::string_view folder = PathParts(paths[grouped]).folder;
            if (groups.empty() || groups[lastGroup].folder != folder) {
                const auto [entry, isNew] = groupOf.try_emplace(folder, groups.size());
                if (isNew)
                    groups.push_back({std::string(folder), {}});
                lastGroup = entry->second;
            }
            groups[lastGroup].places.push_back(grouped);
        }
    }

    std::vector<std::string> paths;
    bool linksAreItems = false;
    bool looksAhead = false; ///< for who waits for all of them
    std::function<bool()> isToStop;
    std::vector<SourceItemManager::Look> looks;
    std::size_t nextLook = 0;
    std::vector<Group> groups;
    std::unordered_map<std::string_view, std::size_t> groupOf; // folders of `paths`
    std::size_t grouped = 0;
    std::size_t lastGroup = 0;
    std::size_t group = 0;
    std::size_t place = 0;
    std::size_t count = 0;
    bool isValid = false;
    std::vector<std::size_t> refused;
};

constexpr std::size_t itemsPerDelay = 5000;

const Alert someFilesNotAdded{
    .kind = AlertKind::filesNotAdded,
    .title = "Some files could not be added.",
    .text = "You cannot add files that are located in folders that are already in the list. This would "
            "compromise the \"Process subfolders and their contents\" feature.",
    .buttons = {"OK"}};

} // namespace

std::vector<std::string> SourceCommands::addPaths(std::vector<std::string> paths, const IsToStop& isToStop) {
    Adding adding(std::move(paths));
    adding.linksAreItems = !services.engine.selection().followsLinks;
    adding.looksAhead = true;
    adding.isToStop = isToStop;
    while (!isToStop() && adding.addNext(services.sourceItems))
        continue;
    if (isToStop())
        return {};
    std::vector<std::size_t>& refused = adding.refused;
    std::sort(refused.begin(), refused.end());
    std::vector<std::string> result;
    result.reserve(refused.size());
    for (const std::size_t place : refused)
        result.push_back(adding.paths[place]);
    return result;
}

std::optional<std::string> SourceCommands::addNestedPaths(const std::vector<std::string>& paths,
                                                          const IsToStop& isToStop) {
    const bool linksAreItems = !services.engine.selection().followsLinks;
    for (std::size_t next = 0; next < paths.size(); next += pathsPerLook) {
        std::vector<const std::string*> some;
        for (std::size_t at = next; at < std::min(paths.size(), next + pathsPerLook); ++at)
            some.push_back(&paths[at]);
        const auto looks = SourceItemManager::lookAt(some, linksAreItems, isToStop);
        if (isToStop())
            break;
        for (std::size_t at = 0; at < some.size(); ++at)
            if (!services.sourceItems.addNestedItem(*some[at], looks[at]))
                return *some[at];
    }
    return std::nullopt;
}

bool SourceCommands::addFilePaths(const std::vector<std::string>& paths, bool interactive) {
    preview.initiateDelayedPreviewUpdate();
    services.frontEnd.addingPaths();
    work.begin([this, interactive, adding = std::make_shared<Adding>(paths)] {
        if (adding->addNext(services.sourceItems)) {
            // The preview waits for the last.
            if (adding->count % itemsPerDelay == 0)
                preview.initiateDelayedPreviewUpdate();
            return true;
        }
        if (adding->refused.empty())
            services.frontEnd.pathsAdded(adding->paths);
        else if (interactive)
            services.frontEnd.showAlert(someFilesNotAdded, [](AlertAnswer) {});
        preview.initiateDelayedPreviewUpdate();
        if (adding->count >= itemsPerDelay)
            preview.firePendingPreview(); // so many are no part of a series
        return false;
    });
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
    preview.initiateDelayedPreviewUpdate();
    work.begin([this, selection, next = std::size_t{0}]() mutable {
        if (next < selection.size() && removeRow(selection[next])) {
            if (++next % itemsPerDelay == 0)
                preview.initiateDelayedPreviewUpdate();
            return true;
        }
        preview.initiateDelayedPreviewUpdate();
        return false;
    });
}

/// False when the store fails: the preview that follows meets the same failure and moves it into memory.
bool SourceCommands::removeRow(RowId id) {
    try {
        if (const std::optional<std::string> path = preview.nodeController().pathOf(id))
            services.sourceItems.removeItem(*path);
        return true;
    } catch (const StoreError& error) {
        services.frontEnd.presentError(error.what());
        return false;
    }
}

bool SourceCommands::canRemove(const std::vector<RowId>& selection) {
    return preview.nodeController().isAnyRoot(selection);
}

void SourceCommands::clearList() {
    work.drop();
    services.frontEnd.selectPreviewTab(PreviewTab::status);
    store.drop();
    if (!services.engine.isBusy())
        store.releaseRetired();
    services.frontEnd.previewListChanged();
    preview.initiateDelayedPreviewUpdate();
}

void SourceCommands::reloadPreview() { preview.initiateDelayedPreviewUpdate(); }

} // namespace tavrin
