#include "engine/history/RunJournal.h"

#include "engine/history/RunHistory.h"
#include "engine/renaming/RenameItem.h"
#include "engine/renaming/RunFolders.h"
#include "platform/files/FileSystem.h"
#include "platform/processes/Parallel.h"
#include "store/contexts/StoreContext.h"
#include "support/values/Crc32.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t linesPerBlock = 65536;
/// Of a remote disk, where they wait side by side.
constexpr std::size_t foldersAtATime = 16;
constexpr std::size_t bytesPerWrite = 256 * 1024;

std::string bootId() {
    std::string id;
    std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), id);
    return id;
}

} // namespace

std::string RunJournal::begin(StoreContext& context, const Predicate& planned, StandIns& standIns,
                              const RunPurpose& purpose) {
    error = makeFile();
    if (error == 0) {
        try {
            writePlan(context, planned, standIns, purpose);
        } catch (...) {
            // Rows that can't be read: nothing has begun.
            file.reset();
            static_cast<void>(FileSystem::sharedInstance().removeFile(filePath));
            throw;
        }
        if (error == 0)
            error = file->sync();
        if (error != 0) {
            file.reset();
            static_cast<void>(FileSystem::sharedInstance().removeFile(filePath));
        }
    }
    folders.clear();
    ahead.clear();
    openFolder.reset();
    return error == 0 ? std::string() : std::generic_category().message(error);
}

int RunJournal::makeFile() {
    if (const int failure = makePrivateFolder(place.folder))
        return failure;
    RunHistory history(place.folder);
    for (int attempt = 0;; ++attempt) {
        name = history.nextName();
        filePath = place.folder + "/" + name + ".run";
        const int failure = FileSystem::sharedInstance().makeAppendFile(filePath, file);
        if (failure != EEXIST || attempt == 10)
            return failure;
    }
}

void RunJournal::writePlan(StoreContext& context, const Predicate& planned, StandIns& standIns,
                           const RunPurpose& purpose) {
    writeHeading(purpose);
    // In reading order a folder comes before what it holds. Taken back line by line from the top, each
    // folder's path is right again by the time that its items come.
    RenameItem row(context);
    RecordedItem item;
    const auto write = [&](RowId id) {
        row.moveTo(id);
        item.newName = row.newComponent();
        if (item.newName.empty())
            return;
        const Folder folder = folderAt(row.folder());
        const NodeRow& seen = context.row(id);
        item.folder = folder.number;
        item.inode = seen.inode;
        item.kind = seen.kind;
        item.oldName = row.component();
        item.standIn = standIns.nameFor(row);
        if (const auto former = purpose.formerNames.find(id); former != purpose.formerNames.end()) {
            item.standIn = item.oldName;
            item.oldName = former->second;
        }
        item.birthTime.reset();
        item.look.reset();
        if (item.inode == 0 || folder.inodesMayChange)
            lookCloser(folder, item);
        rows.add(id);
        runLine::print(item, text);
        endLine();
    };
    context.forEachPart({FetchEntity::file, planned, {}, 0}, [&](std::span<const RowId> part) {
        std::size_t next = 0; // whose folder has not been thought of ahead
        for (std::size_t at = 0; at < part.size(); ++at) {
            if (isRemote && at >= next) {
                ahead.clear();
                next = at + lookAhead(context, part.subspan(at));
            }
            write(part[at]);
        }
    });
    if (purpose.visitDone) {
        purpose.visitDone([this](const std::string& path, const RecordedItem& done) {
            RecordedItem copy = done;
            copy.folder = folderAt(path).number;
            runLine::print(copy, text);
            endLine();
        });
    }
    endBlock();
    flush();
}

void RunJournal::writeHeading(const RunPurpose& purpose) {
    text += runLine::firstLine;
    endLine();
    runLine::print(RunHeading{runLine::timeNow(), ::getpid(), bootId(), place.who, purpose.what, purpose.of},
                   text);
    endLine();
    runLine::print(runLine::Recipe{recipe}, text);
    endLine();
    if (purpose.linksAreItems) {
        text += runLine::linksLine;
        endLine();
    }
}

RunJournal::Folder RunJournal::folderAt(const std::string& path) {
    if (openPath != path || !openFolder) {
        openPath = path;
        openFolder.reset();
        if (const auto known = folders.find(path); known != folders.end() && !known->second.inodesMayChange)
            return known->second;
        if (!ahead.contains(path))
            static_cast<void>(FileSystem::sharedInstance().openFolder(path, openFolder));
    }
    const auto [entry, isNew] =
        folders.try_emplace(path, Folder{static_cast<std::uint32_t>(folders.size()), false});
    if (!isNew)
        return entry->second;
    FolderLook look;
    if (auto seen = ahead.extract(path); !seen.empty())
        look = std::move(seen.mapped());
    else if (openFolder && openFolder->status(".", look.status) != 0)
        look.status = {};
    if (look.folder)
        openFolder = std::move(look.folder);
    RecordedFolder line;
    line.number = entry->second.number;
    line.path = path;
    line.identity = look.status.identity;
    if (look.status.hasBirthTime)
        line.birthTime = look.status.creationDate;
    if (openFolder) {
        const VolumeFacts& volume = volumes.of(*openFolder, look.status.identity);
        line.volume = volume.id;
        entry->second.inodesMayChange = volume.inodesMayChange;
        isRemote = volume.isRemote;
    }
    runLine::print(line, text);
    endLine();
    return entry->second;
}

std::size_t RunJournal::lookAhead(StoreContext& context, std::span<const RowId> items) {
    std::vector<std::string> paths;
    RowId last = noRow;
    std::size_t count = 0;
    for (; count < items.size() && paths.size() < foldersAtATime; ++count) {
        const RowId parent = context.row(items[count]).parent;
        if (parent == std::exchange(last, parent))
            continue;
        std::string path = context.fullPath(parent);
        if (!folders.contains(path) && std::ranges::find(paths, path) == paths.end())
            paths.push_back(std::move(path));
    }
    std::vector<FolderLook> looks(paths.size());
    inParallel(paths.size(), foldersAtATime, [&](std::size_t at) {
        FolderLook& look = looks[at];
        if (FileSystem::sharedInstance().openFolder(paths[at], look.folder) != 0 ||
            look.folder->status(".", look.status) != 0)
            look.folder.reset();
    });
    for (std::size_t at = 0; at < paths.size(); ++at)
        if (looks[at].folder)
            ahead.emplace(std::move(paths[at]), std::move(looks[at]));
    return count;
}

void RunJournal::lookCloser(const Folder& folder, RecordedItem& item) {
    FileStatus status;
    if (!openFolder)
        static_cast<void>(FileSystem::sharedInstance().openFolder(openPath, openFolder));
    if (!openFolder || openFolder->status(item.standIn.empty() ? item.oldName : item.standIn, status) != 0) {
        if (!openFolder || openFolder->status(item.oldName, status) != 0)
            return;
    }
    item.inode = status.identity.inode;
    item.kind = status.kind;
    if (status.hasBirthTime)
        item.birthTime = status.creationDate;
    if (folder.inodesMayChange)
        item.look = RecordedItem::Look{status.size, status.modificationDate};
}

void RunJournal::late(RowId row, const FileIdentity& found) {
    const std::optional<std::uint32_t> number = rows.numberOf(row);
    if (!file || !number)
        return;
    runLine::print(runLine::Late{*number, found.inode}, text);
    text += '\n';
    flush();
}

void RunJournal::flagRefused(std::uint32_t device) {
    if (!file)
        return;
    runLine::print(runLine::NoFlag{device}, text);
    text += '\n';
    flush();
    if (error == 0)
        error = file->sync();
}

void RunJournal::close(std::int64_t changed, std::int64_t failed, bool wasStopped) {
    if (!file)
        return;
    runLine::print(RunEnd{changed, failed, runLine::timeNow(), wasStopped}, text);
    text += '\n';
    flush();
    file.reset();
}

void RunJournal::endLine() {
    text += '\n';
    checksum = crc32(std::string_view(text).substr(lineStart), checksum);
    lineStart = text.size();
    if (++blockLines == linesPerBlock)
        endBlock();
    if (text.size() >= bytesPerWrite)
        flush();
}

void RunJournal::endBlock() {
    if (blockLines == 0)
        return;
    runLine::print(runLine::Block{blockLines, checksum}, text);
    text += '\n';
    lineStart = text.size();
    blockLines = 0;
    checksum = 0;
}

void RunJournal::flush() {
    if (error == 0 && file)
        error = file->append(text);
    text.clear();
    lineStart = 0;
}

} // namespace tavrin
