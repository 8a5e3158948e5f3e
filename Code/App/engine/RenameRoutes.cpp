#include "engine/RenameRoutes.h"

#include "engine/NameOnDisk.h"
#include "engine/PathParts.h"
#include "platform/SystemLog.h"
#include "support/Text.h"

#include <fmt/core.h>

#include <cerrno>

namespace tavrin {

namespace {

const std::string dummyName =
    "this dummy file is used to temporarily stand in for the real file that will be renamed during a Cocoa "
    "case sensitive rename";

bool isSameItem(const FileStatus& a, const FileStatus& b) { return a.identity == b.identity; }

std::u16string lowerCasedForm(std::string_view name) {
    return text::lowercased(text::precomposed(text::fromBytes(name)));
}

std::u16string upperCasedForm(std::string_view name) { return text::uppercased(text::fromBytes(name)); }

} // namespace

int RenameRoutes::begin(const std::string& newFolder, std::string_view newFrom, std::string_view newTo) {
    // Items of several folders can come in turn, and to open a folder costs more than a path to one item.
    if (folder == newFolder) {
        holdFolder();
    } else {
        folder = newFolder;
        openFolder.reset();
    }
    from = newFrom;
    to = newTo;
    isCaseOnly = NameOnDisk::differsOnlyInCase(from, to);
    nameTaken = displaced = false;
    const int result = status(Way::folder, from, sourceStatus);
    sourceIsKnown = result == 0;
    return result;
}

void RenameRoutes::holdFolder() {
    if (!openFolder)
        static_cast<void>(fileSystem.openFolder(folder, openFolder));
}

int RenameRoutes::status(Way way, const std::string& name, FileStatus& into) {
    if (way == Way::folder && openFolder)
        return openFolder->status(name, into);
    return fileSystem.status(joinedPath(folder, name), into);
}

int RenameRoutes::rename(Way way, const std::string& oldName, const std::string& newName) {
    if (way == Way::folder && openFolder)
        return openFolder->renameNoReplace(oldName, newName);
    return fileSystem.renameNoReplace(joinedPath(folder, oldName), joinedPath(folder, newName));
}

bool RenameRoutes::renameUsingLionMode() {
    if (isCaseOnly)
        return move(Way::folder) == 0;
    const bool worked = moveUsingTest(Way::folder);
    if (!nameTaken && SystemLog::sharedInstance().isActive())
        SystemLog::sharedInstance().write(
            fmt::format("moveItemAtPath: {} to {}", joinedPath(folder, from), joinedPath(folder, to)));
    return worked;
}

bool RenameRoutes::renameUsingFileManagerMode() {
    holdFolder();
    return openFolder && move(Way::folder) == 0;
}

bool RenameRoutes::renameUsingLeopardMode() {
    const bool isSameName = lowerCasedForm(from) == lowerCasedForm(to);
    return isSameName ? move(Way::path) == 0 : moveUsingTest(Way::path);
}

bool RenameRoutes::renameUsingFinderMode() {
    // The file browsers' own renames look first and then replace whatever has come in between. So this call
    // is the kernel's as well.
    const bool isSameName = upperCasedForm(from) == upperCasedForm(to);
    const bool worked = isSameName ? move(Way::path) == 0 : moveUsingTest(Way::path);
    FileStatus found;
    return worked && status(Way::path, to, found) != 0;
}

bool RenameRoutes::moveUsingTest(Way way) {
    // The call refuses a taken name by itself, so the name is only looked at when it has failed.
    const int result = move(way);
    if (result != 0)
        lookForTakenName(way);
    return result == 0;
}

void RenameRoutes::lookForTakenName(Way way) {
    FileStatus found;
    if (status(way, to, found) == 0 && !(isCaseOnly && sourceIsKnown && isSameItem(found, sourceStatus)))
        nameTaken = true;
}

int RenameRoutes::move(Way way) { return isCaseOnly ? moveByDummy(way) : rename(way, from, to); }

int RenameRoutes::moveByDummy(Way way) {
    // Where case counts, the new name can be another item's.
    FileStatus found;
    const int test = status(way, to, found);
    if (test != 0 && test != ENOENT)
        return test;
    if (test == 0 && !(sourceIsKnown && isSameItem(found, sourceStatus))) {
        nameTaken = true;
        return EEXIST;
    }
    if (const int result = rename(way, from, dummyName))
        return result;
    const int result = rename(way, dummyName, to);
    if (result != 0)
        displaced = rename(way, dummyName, from) != 0;
    return result;
}

bool RenameRoutes::sourceIsInPlace() {
    if (!sourceIsKnown)
        return !displaced;
    FileStatus found;
    return status(Way::folder, from, found) == 0 && isSameItem(found, sourceStatus);
}

} // namespace tavrin
