#include "engine/renaming/NameMover.h"

#include "engine/renaming/NameOnDisk.h"
#include "platform/files/FolderEntries.h"
#include "platform/files/UnflaggedRename.h"

#include <fmt/format.h>

#include <cerrno>

namespace tavrin {

int NameMover::move(RunFolders::Place& place, const std::string& from, const std::string& to,
                    const StandInName& standIn) {
    left.clear();
    const int error = rename(place, from, to);
    if (error == EEXIST && nameOnDisk::differsOnlyInCase(from, to) && ignoresCase(place, to))
        return moveByStandIn(place, from, to, standIn());
    return error;
}

int NameMover::rename(RunFolders::Place& place, const std::string& from, const std::string& to) {
    const int error = place.folder->renameNoReplace(from, to);
    if (error != EOPNOTSUPP)
        return error;
    events.flagRefused(place.identity.device);
    UnflaggedRename unflagged(*place.folder);
    const int result = unflagged.rename(from, to);
    if (unflagged.wasUnguarded())
        events.unguarded(place);
    if (unflagged.leftover() == UnflaggedRename::Leftover::secondName)
        behind += fmt::format(". It bears the name \"{}\" as well now", nameOnDisk::shown(to));
    else if (unflagged.leftover() == UnflaggedRename::Leftover::reservation)
        behind += fmt::format(". An empty item \"{}\" was left behind", nameOnDisk::shown(to));
    return result;
}

bool NameMover::ignoresCase(RunFolders::Place& place, const std::string& to) {
    // Inode numbers don't tell: hard links have the same, and some file systems give each spelling its own.
    if (place.caseRule == RunFolders::CaseRule::unknown) {
        FolderEntries entries;
        if (place.folder->entries(entries) != 0)
            return false;
        place.caseRule = entries.contains(to) ? RunFolders::CaseRule::counts : RunFolders::CaseRule::ignored;
    }
    return place.caseRule == RunFolders::CaseRule::ignored;
}

int NameMover::moveByStandIn(RunFolders::Place& place, const std::string& from, const std::string& to,
                             const std::string& standIn) {
    if (const int error = rename(place, from, standIn))
        return error;
    const int error = rename(place, standIn, to);
    if (error != 0 && rename(place, standIn, from) != 0 && rename(place, standIn, from) != 0)
        left = standIn;
    return error;
}

} // namespace tavrin
