#include "engine/reading/FolderWalk.h"

#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace tavrin {

bool FolderWalk::run(const std::string& sourcePath) {
    enter(sourcePath, noRow);
    if (levels.empty())
        return false;
    while (!levels.empty()) {
        if (levels.back().next < levels.back().entries.size())
            readNextEntry();
        else
            levels.pop_back();
    }
    return true;
}

void FolderWalk::enter(std::string path, RowId row) {
    Level level;
    level.path = std::move(path);
    level.place.row = row;
    if (const int error = read(level))
        report(std::generic_category().message(error), level.path);
    else if (isInsideItself(level))
        report("The folder lies inside itself.", level.path);
    else {
        const FileIdentity identity = level.place.identity;
        if (row == noRow)
            row = stage.rowForFolder(level.path, identity);
        // A listing gives the inode of the folder below a mounted one, and a link's own.
        if (stage.context->row(row).identity() != identity)
            stage.context->change(row).setIdentity(identity);
        level.place = stage.placeIn(row, identity);
        levels.push_back(std::move(level));
    }
}

int FolderWalk::read(Level& level) {
    std::unique_ptr<OpenFolder> folder;
    if (const int error = FileSystem::sharedInstance().openFolder(level.path, folder))
        return error;
    FileStatus status;
    if (const int error = folder->status(".", status))
        return error;
    level.place.identity = status.identity;
    if (const int error = folder->entries(level.entries))
        return error;
    if (level.entries.contains(".hidden"))
        level.hidden = HiddenNames(level.path);
    return 0;
}

bool FolderWalk::isInsideItself(const Level& level) const {
    return std::any_of(levels.begin(), levels.end(),
                       [&](const Level& above) { return above.place.identity == level.place.identity; });
}

void FolderWalk::readNextEntry() {
    Level& level = levels.back();
    const FolderEntry entry = level.entries[level.next++];
    if (entry.name.front() == '.' || level.hidden.contains(entry.name))
        return;
    const std::optional<FileStatus::Kind> kind = kindOf(entry);
    if (kind == FileStatus::Kind::folder)
        return readFolderEntry({entry.name, *kind, entry.inode});
    if (kind == FileStatus::Kind::link) {
        FileStatus target;
        const std::string path = joinedPath(level.path, entry.name);
        if (FileSystem::sharedInstance().followedStatus(path, target) == 0 &&
            target.kind == FileStatus::Kind::folder)
            return readFolderEntry({entry.name, *kind, entry.inode});
    }
    if (kind)
        createRow({entry.name, *kind, entry.inode}, false);
}

std::optional<FileStatus::Kind> FolderWalk::kindOf(const FolderEntry& entry) {
    if (entry.kind != FileStatus::Kind::other)
        return entry.kind;
    FileStatus status;
    const std::string path = joinedPath(levels.back().path, entry.name);
    const int error = FileSystem::sharedInstance().status(path, status);
    if (error == 0)
        return status.kind;
    if (error != ENOENT)
        stage.addReadingError(false, error, path);
    return std::nullopt;
}

void FolderWalk::readFolderEntry(const FolderEntry& entry) {
    std::string path = joinedPath(levels.back().path, entry.name);
    if (FileManager::instance().isBundleFolder(path)) {
        // The source item decides, not the bundle.
        if (!isSourceInvisible)
            createRow(entry, false);
        return;
    }
    const RowId row = createRow(entry, true);
    if (entry.kind == FileStatus::Kind::folder && row != noRow)
        enter(std::move(path), row);
}

RowId FolderWalk::createRow(const FolderEntry& entry, bool isFolder) {
    const Level& level = levels.back();
    const SeenItem seen{{entry.inode, level.place.identity.device}, entry.kind};
    return stage.createOneFile(level.place, level.path, entry.name, false, isFolder, seen);
}

void FolderWalk::report(const std::string& message, const std::string& path) {
    stage.addError("Could not read a folder", message, path);
}

} // namespace tavrin
