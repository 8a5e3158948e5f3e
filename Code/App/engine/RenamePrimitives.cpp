#include "engine/RenamePrimitives.h"

#include "engine/NameOnDisk.h"
#include "engine/PathParts.h"
#include "platform/FileManager.h"
#include "support/DebugLog.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::string_view defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, "
    "an incompatible external drive or unsupported remote file system or it may be locked.";
constexpr std::string_view nameTakenReason = "Another file with this name already exists in this folder.";
constexpr std::string_view linkReason =
    "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic links.";

} // namespace

RenamePrimitives::RenamePrimitives(FileSystem& disk, StageProgress progress, SourceItemChanges& sourceItems)
    : routes(disk), report(progress), changes(sourceItems) {}

void RenamePrimitives::takeSettings(int renameMode, bool shouldCopyFileComments) {
    mode = renameMode;
    copiesComments = shouldCopyFileComments && !FileManager::commentsTravelWithFiles();
}

bool RenamePrimitives::renameCurrentName(std::string_view currentName, const std::string& atPath,
                                         std::string_view toNewName, bool treatAsRoot,
                                         const std::optional<FileIdentity>& expected) {
    failureReason = defaultReason;
    lastIdentity.reset();
    if (debugLogIsOn())
        debugLog("renameCurrentName: {} atPath: {} toNewName: {}", NameOnDisk::shown(currentName),
                 joinedPath(atPath, currentName), NameOnDisk::shown(toNewName));
    if (!NameOnDisk::isPossible(currentName) || !NameOnDisk::isPossible(toNewName))
        return refuse();

    const int status = routes.begin(atPath, currentName, toNewName);
    if (status == 0) {
        lastIdentity = routes.source().identity;
        if (routes.source().kind == FileStatus::Kind::link) {
            failureReason = linkReason;
            return false;
        }
        if (expected && expected != lastIdentity)
            return refuse();
    }
    std::optional<std::string> comment;
    if (copiesComments)
        comment = FileManager::instance().finderCommentForFileURL(joinedPath(atPath, currentName));

    const bool worked = tryRoutes(atPath, toNewName);
    if (worked) {
        ++actuallyRenamedCounter;
        if (comment && !comment->empty())
            static_cast<void>(
                FileManager::instance().changeFinderComment(*comment, joinedPath(atPath, toNewName)));
        if (treatAsRoot)
            changes.change(joinedPath(atPath, currentName), joinedPath(atPath, toNewName));
    } else if (routes.foundNameTaken()) {
        failureReason = nameTakenReason;
    }
    report.item(actuallyRenamedCounter);
    return worked;
}

bool RenamePrimitives::refuse() {
    failureReason = defaultReason;
    report.item(actuallyRenamedCounter);
    return false;
}

bool RenamePrimitives::tryRoutes(const std::string& folder, std::string_view newName) {
    using enum Route;
    constexpr std::array<std::array<Route, 4>, 3> orders{{{lion, fileManager, finder, leopard},
                                                          {fileManager, lion, finder, leopard},
                                                          {leopard, lion, finder, fileManager}}};
    const bool isKnownMode = mode >= 0 && mode < static_cast<int>(orders.size());
    if (isKnownMode && tryRoute(orders[static_cast<std::size_t>(mode)][0]))
        return true;
    if (debugLogIsOn())
        debugLog("failed to rename file using default mode: {}", joinedPath(folder, newName));
    bool worked = false;
    for (std::size_t i = 1; isKnownMode && !worked && i < orders[0].size() && routes.sourceIsInPlace(); ++i)
        worked = tryRoute(orders[static_cast<std::size_t>(mode)][i]);
    debugLog("success after trying alternative methods: {:d}", worked);
    return worked;
}

bool RenamePrimitives::tryRoute(Route route) {
    switch (route) {
    case Route::lion:
        return routes.renameUsingLionMode();
    case Route::fileManager:
        return routes.renameUsingFileManagerMode();
    case Route::finder:
        return routes.renameUsingFinderMode();
    case Route::leopard:
        return routes.renameUsingLeopardMode();
    }
    return false;
}

} // namespace tavrin
