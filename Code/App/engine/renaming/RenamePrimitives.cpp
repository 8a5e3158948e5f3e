#include "engine/renaming/RenamePrimitives.h"

#include "engine/naming/NameProblems.h"
#include "engine/renaming/NameOnDisk.h"
#include "platform/desktop/SystemLog.h"
#include "platform/metadata/FileManager.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::string_view defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, "
    "an incompatible external drive or unsupported remote file system or it may be locked.";
constexpr int modeCount = 3;

/// Whose rights are missing, where that can be seen.
NameProblem problemOfRights(std::string_view item, const RunFolders::Place& place) {
    if (FileSystem::sharedInstance().mayChangeNamesIn(place.path) != 0)
        return NameProblem::lockedFolder;
    FileStatus folder;
    FileStatus own;
    if (!place.folder || place.folder->status(".", folder) != 0 ||
        place.folder->status(std::string(item), own) != 0)
        return NameProblem::none;
    if (folder.isLocked())
        return NameProblem::lockedFolder;
    if (folder.isSticky && folder.isForeign && own.isForeign)
        return NameProblem::lockedItem;
    return own.isLocked() ? NameProblem::lockedByFlag : NameProblem::none;
}

} // namespace

void RenamePrimitives::takeSettings(int renameMode, bool shouldCopyFileComments) {
    mode = renameMode;
    copiesComments = shouldCopyFileComments && !FileManager::commentsTravelWithFiles();
}

bool RenamePrimitives::hasRoutes() const { return mode >= 0 && mode < modeCount; }

RunFolders::Place& RenamePrimitives::place(const RenameItem& item) {
    return parts.folders.at(item.parentRow(), item.folder(), item.folderAsRead());
}

bool RenamePrimitives::check(RenameItem& item) {
    lastLook = {};
    const RunFolders::Place& found = place(item);
    const int error = found.folder ? found.folder->status(item.component(), lastLook) : found.error;
    if (error != 0)
        return refuse(error == ENOENT ? std::string(messageOf(NameProblem::gone))
                                      : systemReason(error, item.component(), {}, found));
    const SeenItem& seen = item.seen();
    const bool isLink = !takesLinks && lastLook.kind == FileStatus::Kind::link;
    const bool hasChangedKind = seen.identity.isKnown() && lastLook.kind != seen.kind;
    if (isLink || hasChangedKind) {
        sentence = isLink ? messageOf(NameProblem::link) : defaultReason;
        detail = hasChangedKind ? replacedMessage(seen.kind, lastLook.kind) : std::string();
        return false;
    }
    if (seen.identity.isKnown() && lastLook.identity.inode != seen.identity.inode) {
        if (strict)
            return refuse("Another file has its name now");
        parts.report.item(actuallyRenamedCounter);
        onReplaced(item.id(), lastLook.identity);
    }
    return true;
}

bool RenamePrimitives::renameItem(RenameItem& item) {
    const std::string& from = item.component();
    const std::string& to = item.newComponent();
    if (debugLogIsOn())
        debugLog("renameCurrentName: {} atPath: {} toNewName: {}", nameOnDisk::shown(from), item.fullPath(),
                 nameOnDisk::shown(to));
    if (!nameOnDisk::isPossible(to))
        return refuse(messageOf(item.problemOfNewName()));
    if (const std::size_t length = item.folder().size() + 1 + to.size(); length > longestPath)
        return refuse(tooLongMessage(NameProblem::pathTooLong, length, longestPath));
    if (!check(item))
        return false;
    std::optional<std::string> comment;
    if (copiesComments)
        comment = FileManager::instance().finderCommentForFileURL(item.fullPath());

    const NameMover::StandInName standIn = [this, &item]() -> const std::string& {
        return parts.standIns.nameFor(item);
    };
    parts.mover.begin();
    Attempt attempt{place(item), item.folder(), from, to, standIn};
    const bool worked = tryRoutes(attempt);
    if (worked) {
        ++actuallyRenamedCounter;
        if (comment && !comment->empty())
            static_cast<void>(
                FileManager::instance().changeFinderComment(*comment, joinedPath(item.folder(), to)));
    } else {
        if (!parts.mover.leftUnder().empty())
            ++actuallyRenamedCounter; // its name is another one, though not the planned
        explain(attempt);
    }
    parts.report.item(actuallyRenamedCounter);
    return worked;
}

void RenamePrimitives::explain(const Attempt& attempt) {
    const std::string place = whereItLies();
    if (attempt.error == EEXIST) {
        sentence = messageOf(NameProblem::taken);
        detail = place.substr(std::min(place.size(), std::string_view(". ").size()));
        return;
    }
    const bool isGone = attempt.error == ENOENT && !isStillThere(attempt);
    refuse((isGone ? std::string(messageOf(NameProblem::gone))
                   : systemReason(attempt.error, attempt.from, attempt.to, attempt.place)) +
           place);
}

bool RenamePrimitives::refuse(std::string_view reason) {
    sentence = defaultReason;
    detail = reason;
    parts.report.item(actuallyRenamedCounter);
    return false;
}

std::string RenamePrimitives::failureReasonString() const {
    return detail.empty() ? std::string(sentence) : fmt::format("{} ({})", sentence, detail);
}

std::string RenamePrimitives::systemReason(int error, std::string_view from, std::string_view to,
                                           const RunFolders::Place& place) {
    switch (error) {
    case 0:
        return "No rename was made";
    case ESTALE:
        return std::string(messageOf(NameProblem::folderReplaced));
    case EBUSY:
        return "It was replaced by another file at this moment";
    case ENAMETOOLONG: {
        const VolumeFacts volume = place.volume();
        const auto problem = volume.countsUnits ? NameProblem::tooManyUnits : NameProblem::tooManyBytes;
        const std::size_t bytes = std::max(from.size(), to.size());
        const std::size_t length = volume.countsUnits ? text::fromBytes(to).size() : bytes;
        return length > volume.nameLimit ? tooLongMessage(problem, length, volume.nameLimit)
                                         : fmt::format("{}: {} bytes", messageOf(problem), bytes);
    }
    case EACCES:
    case EPERM:
        if (const NameProblem problem = problemOfRights(from, place); problem != NameProblem::none)
            return std::string(messageOf(problem));
        break;
    default:
        break;
    }
    return std::generic_category().message(error);
}

bool RenamePrimitives::tryRoutes(Attempt& attempt) {
    using enum Route;
    constexpr std::array<std::array<Route, 4>, modeCount> orders{{{lion, fileManager, finder, leopard},
                                                                  {fileManager, lion, finder, leopard},
                                                                  {leopard, lion, finder, fileManager}}};
    if (hasRoutes() && tryRoute(orders[static_cast<std::size_t>(mode)][0], attempt))
        return true;
    if (debugLogIsOn())
        debugLog("failed to rename file using default mode: {}", joinedPath(attempt.folder, attempt.to));
    bool worked = false;
    // What is taken for one route is taken for all.
    for (std::size_t i = 1; hasRoutes() && !worked && i < orders[0].size() && attempt.error != EEXIST; ++i) {
        if (!parts.mover.leftovers().empty() || !isStillThere(attempt))
            break;
        worked = tryRoute(orders[static_cast<std::size_t>(mode)][i], attempt);
    }
    debugLog("success after trying alternative methods: {:d}", worked);
    return worked || hasMovedAllTheSame(attempt);
}

bool RenamePrimitives::tryRoute(Route route, Attempt& attempt) {
    attempt.error = parts.mover.move(attempt.place, attempt.from, attempt.to, attempt.standIn);
    const bool worked = attempt.error == 0;
    if (route == Route::lion && attempt.error != EEXIST && SystemLog::sharedInstance().isActive())
        SystemLog::sharedInstance().write(fmt::format("moveItemAtPath: {} to {}",
                                                      joinedPath(attempt.folder, attempt.from),
                                                      joinedPath(attempt.folder, attempt.to)));
    if (route != Route::finder || !worked)
        return worked;
    // By the file browser's route only a move after which nothing is found counts. A move that does not count
    // is taken back, unless that fails: then the item has its new name, whoever counts it.
    FileStatus found;
    if (attempt.place.folder->status(attempt.to, found) != 0)
        return true;
    return parts.mover.move(attempt.place, attempt.to, attempt.from, attempt.standIn) != 0;
}

bool RenamePrimitives::isStillThere(const Attempt& attempt) const {
    FileStatus found;
    return attempt.place.folder->status(attempt.from, found) == 0 && found.identity == lastLook.identity;
}

/// A call can fail and have worked: its answer was lost on the way.
bool RenamePrimitives::hasMovedAllTheSame(const Attempt& attempt) const {
    FileStatus found;
    return attempt.error != EEXIST && attempt.place.folder->status(attempt.from, found) == ENOENT &&
           attempt.place.folder->status(attempt.to, found) == 0 && found.identity == lastLook.identity;
}

std::string RenamePrimitives::whereItLies() const {
    const std::string& left = parts.mover.leftUnder();
    return left.empty() ? parts.mover.leftovers()
                        : fmt::format(". It lies under the name \"{}\" now{}", nameOnDisk::shown(left),
                                      parts.mover.leftovers());
}

} // namespace tavrin
