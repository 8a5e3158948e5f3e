#include "engine/FolderWalk.h"

#include "engine/PathParts.h"
#include "engine/ReadItemsIntoDatabaseStage.h"
#include "platform/FileManager.h"
#include "store/StoreContext.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tavrin {

void FolderWalk::run(const std::string& sourcePath) {
    enter(sourcePath, noRow);
    while (!levels.empty()) {
        if (levels.back().next < levels.back().entries.size())
            readNextEntry();
        else
            levels.pop_back();
    }
}

void FolderWalk::enter(std::string path, RowId row) {
    Level level;
    level.path = std::move(path);
    level.row = row;
    if (const int error = read(level))
        report(std::generic_category().message(error), level.path);
    else if (isInsideItself(level))
        report("The folder lies inside itself.", level.path);
    else {
        if (row == noRow)
            level.row = stage.rowForFolder(level.path, level.identity);
        // A listing gives the inode of the folder below a mounted one, and a link's own.
        if (stage.context->row(level.row).identity() != level.identity)
            stage.context->change(level.row).setIdentity(level.identity);
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
    level.identity = status.identity;
    if (const int error = folder->entries(level.entries))
        return error;
    if (level.entries.contains(".hidden"))
        level.hidden = HiddenNames(level.path);
    return 0;
}

bool FolderWalk::isInsideItself(const Level& level) const {
    return std::any_of(levels.begin(), levels.end(),
                       [&](const Level& above) { return above.identity == level.identity; });
}

void FolderWalk::readNextEntry() {
    Level& level = levels.back();
    const FolderEntry entry = level.entries[level.next++];
    if (entry.name.front() == '.' || level.hidden.contains(entry.name))
        return;
    switch (entry.kind) {
    case FileStatus::Kind::folder:
        return readFolderEntry(entry);
    case FileStatus::Kind::link: {
        FileStatus target;
        const std::string path = joinedPath(level.path, entry.name);
        if (FileSystem::sharedInstance().followedStatus(path, target) == 0 &&
            target.kind == FileStatus::Kind::folder)
            return readFolderEntry(entry);
        break;
    }
    case FileStatus::Kind::file:
    case FileStatus::Kind::other:
        break;
    }
    stage.createOneFile(level.row, level.path, entry.name, false, false, seen(entry));
}

void FolderWalk::readFolderEntry(const FolderEntry& entry) {
    const Level& level = levels.back();
    std::string path = joinedPath(level.path, entry.name);
    if (FileManager::instance().isBundleFolder(path)) {
        // The source item decides, not the bundle.
        if (!isSourceInvisible)
            stage.createOneFile(level.row, level.path, entry.name, false, false, seen(entry));
        return;
    }
    const RowId row = stage.createOneFile(level.row, level.path, entry.name, false, true, seen(entry));
    if (entry.kind == FileStatus::Kind::folder)
        enter(std::move(path), row);
}

SeenItem FolderWalk::seen(const FolderEntry& entry) const {
    return {{entry.inode, levels.back().identity.device}, entry.kind};
}

void FolderWalk::report(const std::string& message, const std::string& path) {
    stage.addError("Could not read a folder", message, path);
}

} // namespace tavrin
