#include "engine/reading/ReadItemsIntoDatabaseStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/SortingValues.h"
#include "platform/files/FolderEntries.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/Parallel.h"
#include "store/contexts/StoreContext.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace tavrin {

namespace {

constexpr int rowsPerCommit = 5000;
/// What listing a folder of a remote disk waits for is the way there and back.
constexpr std::size_t foldersAtATime = 16;

/// Nothing lies at a path.
bool meansGone(int error) { return error == ENOENT || error == ENOTDIR; }

} // namespace

/// Goes through everything below a source item, a folder before its contents and each subfolder to its end
/// before the next entry, and has a row made for what is visible. Links are never followed, bundles never
/// entered, and no folder is entered inside itself.
class ReadItemsIntoDatabaseStage::FolderWalk {
  public:
    /// Globs for paths are held against what stands behind `givenFolder`.
    FolderWalk(ReadItemsIntoDatabaseStage& owner, bool sourceIsInvisible, const std::string& givenFolder)
        : stage(owner), selection(owner.selection), isSourceInvisible(sourceIsInvisible),
          lengthOfGiven(givenFolder == "/" ? 1 : givenFolder.size() + 1),
          takesAllFiles(selection.takesFiles && selection.takesLinks && !selection.hasGlobs() &&
                        !selection.asksForTime()) {}

    /// False if the folder itself could not be read.
    bool run(const std::string& sourcePath);

  private:
    /// A folder on the way down, with what is left to do in it.
    struct Level {
        std::string path;
        Place place;
        FolderEntries entries;
        std::size_t next = 0;
        HiddenNames hidden;
        bool isRemote = false;
        int error = 0;                         ///< why it could not be listed: an errno value
        FileStatus status;                     ///< from before the entries were listed
        std::vector<std::size_t> notOnTheList; ///< entries that were given no row
        std::vector<Level> ahead;              ///< folders in it that are listed, and not yet come to
        std::size_t nextAhead = 0;             ///< the entry behind those that were thought of for that
    };

    /// `row` stands for the folder; none yet for a source item that has none of its own.
    void enter(Level level, RowId row);
    /// A folder with all that a listing tells of it. Of a remote disk the next ones are listed side by side.
    [[nodiscard]] Level listedAhead(const std::string& path);
    /// The folders among the next entries that the walk is sure to enter, at most as many as are listed at a
    /// time.
    [[nodiscard]] std::vector<std::string> nextFolders(Level& level) const;
    /// One by itself. `volumes` tells whether its disk is remote; without them, on any thread, it is.
    [[nodiscard]] static Level listed(std::string path, KnownVolumes* volumes);
    /// 0 or an errno value.
    static int read(Level& level, KnownVolumes* volumes);
    [[nodiscard]] bool isInsideItself(const Level& level) const;
    void readNextEntry();
    void readFileEntry(const FolderEntry& entry);
    /// Reads the next entry, or notes what the folder holds besides at its end.
    void proceed();
    void readFolderEntry(const FolderEntry& entry);
    /// The kind that a listing leaves open; an entry that is no more, or that can't be looked at, is none.
    [[nodiscard]] std::optional<FileStatus::Kind> kindOf(const FolderEntry& entry);
    /// Has a row made; noRow where the item has one under another path.
    RowId createRow(const FolderEntry& entry, bool isFolder);
    void report(const std::string& message, const std::string& path);

    [[nodiscard]] bool isHidden(const FolderEntry& entry, const Level& level) const;
    // Of the entry in hand.
    [[nodiscard]] bool isExcluded(bool isFolder) const;
    [[nodiscard]] bool takesPart(const FolderEntry& entry, bool isFolder) const;
    [[nodiscard]] bool hasFittingTime() const;
    [[nodiscard]] bool mayGoDeeper() const {
        return !selection.depth || levels.size() < static_cast<std::size_t>(*selection.depth);
    }

    ReadItemsIntoDatabaseStage& stage;
    const ItemSelection& selection;
    const bool isSourceInvisible;
    const std::size_t lengthOfGiven;
    const bool takesAllFiles; ///< nothing is asked of them one by one
    std::vector<Level> levels;
    std::string pathOfEntry; ///< of the one in hand, where it is asked for
};

ReadItemsIntoDatabaseStage::ReadItemsIntoDatabaseStage(EngineState& owner)
    : ProcessingStage(owner), selection(owner.selection()) {}

std::string ReadItemsIntoDatabaseStage::stageDescription() const { return "Adding items to database..."; }

bool ReadItemsIntoDatabaseStage::process() {
    const StageProgress report(progress);
    rowsMade = 0;
    lastParentFolder = {};
    lastParentFolderPath.clear();
    aliases.reset();
    leftOut.clear();
    volumes = {};
    engine.setFirstNewRow(context->endOfRows());
    report.describe("start processing..");
    report.indeterminate(true);
    if (progress)
        progress->signalQuickSwitchToLongProcessingMode();
    context->changeEngineControl().needToRedoConflictResolution = true;
    const std::size_t removed = context->removedSourceItems();
    const std::vector<SourceItem> items = context->sourceItems();
    if (items.empty()) {
        debugLog("No source items yet, interrupting pipeline");
        return false;
    }
    shouldProcessSubfolders = settings.shouldProcessSubfolders != 0 && selection.depth.value_or(1) > 0;
    looks = SourceItemManager::sharedInstance().takeLooks();
    if (selection.mayNest)
        nested.emplace(items);
    std::vector<bool> done(items.size());
    for (std::size_t place = 0; place < items.size(); ++place)
        readInTurn(items, place, done);
    nested.reset();
    looks = {};
    folder.reset();
    aliases.reset();
    tellWhatWasLeftOut();
    if (rowsMade > 0 && context->removedSourceItems() != removed)
        forgetItemsRemovedSince(items);
    engine.computeTotalNumberOfFilesForContext(*context, settings.itemFilter());
    engine.computeTotalNumberOfFilesSelectedOrNotForContext(*context);
    return true;
}

void ReadItemsIntoDatabaseStage::readInTurn(const std::vector<SourceItem>& items, std::size_t place,
                                            std::vector<bool>& done) {
    if (done[place])
        return;
    done[place] = true;
    const std::optional<std::size_t> above = nested ? nested->above(place) : std::nullopt;
    if (above)
        readInTurn(items, *above, done);
    folderAbove = above ? std::string_view(nested->outermost(place)) : std::string_view();
    StageProgress(progress).describeItem([&] { return "Processing item: " + items[place].path; });
    readSourceItem(items[place], place);
}

void ReadItemsIntoDatabaseStage::readSourceItem(const SourceItem& item, std::size_t place) {
    const bool mayHaveContents = item.treatAsFolder && shouldProcessSubfolders && !item.readInSubfolders;
    if (item.readInRoot && !mayHaveContents)
        return; // nothing would come of looking at the disk
    const Kind kind = kindOf(item, nested && nested->holdsOthers(place));
    if (!aliases)
        aliases.emplace(*context);
    if (kind.error != 0)
        return addReadingError(item.treatAsFolder, kind.error, item.path);
    if (!selection.excludes.empty() &&
        (selection.isExcluded({pathForGlobs(item.path, place), !kind.isFileOrBundle}) ||
         (nested && liesInExcluded(item.path, place))))
        return;
    const bool isWanted = takesPart(item, place, kind);
    if (!kind.isFileOrBundle)
        readFolder(item, kind, place, isWanted);
    else if (!item.readInRoot && !kind.isInvisible && isWanted &&
             createRootItem(item.path, false, kind.status))
        context->setSourceItemRead(item.path, true, item.readInSubfolders);
}

bool ReadItemsIntoDatabaseStage::takesPart(const SourceItem& item, std::size_t place, const Kind& kind) {
    const bool isOfKind = kind.isLink()         ? selection.takesLinks
                          : kind.isFileOrBundle ? selection.takesFiles
                                                : true;
    return isOfKind && (!selection.asksForTime() || selection.admitsTime(kind.status.modificationDate)) &&
           selection.isIncluded({pathForGlobs(item.path, place), !kind.isFileOrBundle});
}

std::string_view ReadItemsIntoDatabaseStage::pathForGlobs(std::string_view path, std::size_t place) const {
    const std::string_view outermost = nested ? std::string_view(nested->outermost(place)) : path;
    if (outermost == path)
        return PathParts(path).name;
    return path.substr(outermost == "/" ? 1 : outermost.size() + 1);
}

bool ReadItemsIntoDatabaseStage::liesInExcluded(const std::string& path, std::size_t place) {
    if (folderAbove.empty())
        return false;
    std::string_view above = PathParts(path).folder;
    if (above == lastFolderChecked)
        return lastFolderIsExcluded;
    lastFolderChecked = above;
    const std::string& outermost = nested->outermost(place);
    lastFolderIsExcluded = false;
    for (bool isAtTop = false; !isAtTop && !lastFolderIsExcluded; above = PathParts(above).folder) {
        isAtTop = above == outermost;
        const std::string_view forGlobs =
            isAtTop ? PathParts(above).name : above.substr(outermost == "/" ? 1 : outermost.size() + 1);
        lastFolderIsExcluded = selection.isExcluded({forGlobs, true});
    }
    return lastFolderIsExcluded;
}

void ReadItemsIntoDatabaseStage::addReadingError(bool isFolder, int error, const std::string& path) {
    addError(isFolder ? "Could not read a folder" : "Could not read an item",
             std::generic_category().message(error), path);
}

/// What left the list while it was read could not take along rows that were not in the store yet.
void ReadItemsIntoDatabaseStage::forgetItemsRemovedSince(const std::vector<SourceItem>& items) {
    const std::vector<SourceItem> left = context->sourceItems();
    std::vector<std::string> gone;
    auto next = left.begin(); // both lists are in the order added
    for (const SourceItem& item : items) {
        if (next != left.end() && next->path == item.path)
            ++next;
        else
            gone.push_back(item.path);
    }
    if (gone.empty())
        return;
    saveAndRefaultObjects();
    for (const std::string& path : gone) {
        SourceItemManager::deleteRowsOf(path, *context);
        context->setSourceItemRead(path, false, false); // where it is on the list again
    }
    saveAndRefaultObjects();
}

void ReadItemsIntoDatabaseStage::readFolder(const SourceItem& item, const Kind& kind, std::size_t place,
                                            bool takesPart) {
    const bool isNew = takesPart && !kind.isInvisible && !item.readInRoot;
    // A link that lies in another item is followed no more than one that is found there.
    const bool isFollowed = !kind.isLink() || folderAbove.empty();
    const bool mustWalk = shouldProcessSubfolders && !item.readInSubfolders && isFollowed;
    if (isNew && !createRootItem(item.path, true, kind.status))
        return;
    if (isNew || mustWalk)
        context->setSourceItemRead(item.path, isNew || item.readInRoot, mustWalk || item.readInSubfolders);
    const std::string& given = nested ? nested->outermost(place) : item.path;
    if (mustWalk && !FolderWalk(*this, kind.isInvisible, given).run(item.path))
        context->setSourceItemRead(item.path, isNew || item.readInRoot, false); // to be tried again
}

/// At most one call per item: the folder is held open for its neighbours on the list.
int ReadItemsIntoDatabaseStage::statusOf(const SourceItem& item, std::string_view name, FileStatus& into) {
    if (!folder)
        return folderError;
    if (const FileStatus* const look = looks.of(item)) {
        into = *look;
        return 0;
    }
    return folder->status(std::string(name), into);
}

ReadItemsIntoDatabaseStage::Kind ReadItemsIntoDatabaseStage::kindOf(const SourceItem& item,
                                                                    bool holdsOthers) {
    const std::string& path = item.path;
    const PathParts parts(path);
    openFolderAt(parts.folder);
    const std::string_view name = parts.name.empty() ? "." : parts.name;
    Kind kind;
    kind.error = statusOf(item, name, kind.status);
    if (meansGone(kind.error))
        return {}; // goes through as a file, and fails when it is to be renamed
    if (kind.error != 0)
        return kind;
    kind.isInvisible = !selection.takesGivenHidden && (name.front() == '.' || hiddenNames.contains(name));
    if (parts.name.empty())
        kind.isInvisible = true; // the root has no name that could be changed
    if (kind.isLink() && !selection.followsLinks)
        return kind;
    FileStatus::Kind target = kind.status.kind;
    if (kind.isLink()) {
        FileStatus followed;
        const int error = FileSystem::sharedInstance().followedStatus(path, followed);
        kind.error = meansGone(error) || error == ELOOP ? 0 : error;
        if (error != 0)
            return kind;
        target = followed.kind;
    }
    kind.isFileOrBundle =
        target != FileStatus::Kind::folder || (!holdsOthers && FileManager::instance().isBundleFolder(path));
    return kind;
}

void ReadItemsIntoDatabaseStage::openFolderAt(std::string_view path) {
    if (folder && openPath == path)
        return;
    openPath = path;
    FileStatus status;
    folderError = FileSystem::sharedInstance().openFolder(openPath, folder);
    if (folderError == 0)
        folderError = folder->status(".", status);
    if (folderError != 0)
        folder.reset();
    folderIdentity = status.identity;
    hiddenNames = folder && !selection.takesGivenHidden ? HiddenNames(openPath) : HiddenNames();
}

RowId ReadItemsIntoDatabaseStage::rowForFolder(std::string_view path, const FileIdentity& identity) {
    if (const RowId row = context->folderWithPath(path); row != noRow)
        return row;
    RowId parent = noRow;
    if (!folderAbove.empty() && path.size() > folderAbove.size()) {
        const std::string above(PathParts(path).folder);
        FileStatus status;
        static_cast<void>(FileSystem::sharedInstance().status(above, status));
        parent = rowForFolder(above, status.identity);
    }
    return context->insertGhostNode(path, identity, parent);
}

ReadItemsIntoDatabaseStage::Place ReadItemsIntoDatabaseStage::placeIn(RowId folderRow,
                                                                      const FileIdentity& identity) {
    if (aliases->mayBeShared(folderRow, identity))
        saveAndRefaultObjects(); // what is only staged would not be found
    return {folderRow, identity, aliases->enter(folderRow, identity)};
}

bool ReadItemsIntoDatabaseStage::createRootItem(const std::string& path, bool isFolder,
                                                const FileStatus& status) {
    const PathParts parts(path);
    if (lastParentFolder.row == noRow || lastParentFolderPath != parts.folder) {
        lastParentFolder = placeIn(rowForFolder(parts.folder, folderIdentity), folderIdentity);
        lastParentFolderPath = parts.folder;
    }
    const SeenItem seen{status.identity, status.kind};
    const RowId row = createOneFile(lastParentFolder, parts.folder, parts.name, true, isFolder, seen);
    if (row == noRow)
        return false;
    if (status.identity.isKnown()) {
        SortingValues(settings).put(context->change(row), status, parts.name);
        engine.folderNotes().noteLocked(row, status.isLocked());
    }
    return true;
}

RowId ReadItemsIntoDatabaseStage::createOneFile(const Place& place, std::string_view folderPath,
                                                std::string_view name, bool root, bool isFolder,
                                                const SeenItem& seen) {
    const StageProgress report(progress);
    report.describeItem([&] { return "Processing: " + joinedPath(folderPath, name); });
    if (place.isShared) {
        if (const RowId same = aliases->find(place.row, place.identity, name); same != noRow) {
            leaveOut(folderPath, name, same);
            return noRow;
        }
    }
    const RowId id = context->insertFile(place.row, name, root, isFolder, engine.nextManualOrder(), seen);
    if (place.isShared)
        aliases->add(place.identity, name, id);
    if (++rowsMade % rowsPerCommit == 0) {
        report.describe("{} files read. Committing..", rowsMade);
        saveAndRefaultObjects();
    }
    return id;
}

void ReadItemsIntoDatabaseStage::leaveOut(std::string_view folderPath, std::string_view name,
                                          RowId sameItem) {
    LeftOut& here = leftOut[std::string(folderPath)];
    if (++here.count > 1)
        return;
    here.firstName = name;
    here.otherFolder = context->parentPath(sameItem);
}

/// One line for a folder, however much it holds.
void ReadItemsIntoDatabaseStage::tellWhatWasLeftOut() {
    for (const auto& [path, what] : leftOut) {
        if (what.count == 1)
            addError("Left out", "It is the same item as " + joinedPath(what.otherFolder, what.firstName),
                     joinedPath(path, what.firstName));
        else
            addError("Left out",
                     fmt::format("{} items of this folder are the same as those in {}", what.count,
                                 what.otherFolder),
                     path);
    }
}

bool ReadItemsIntoDatabaseStage::FolderWalk::run(const std::string& sourcePath) {
    enter(listed(sourcePath, &stage.volumes), noRow);
    if (levels.empty())
        return false;
    while (!levels.empty())
        proceed();
    return true;
}

void ReadItemsIntoDatabaseStage::FolderWalk::proceed() {
    const std::size_t at = levels.size() - 1; // a folder that is entered comes behind it
    if (levels[at].next < levels[at].entries.size()) {
        const int rowsBefore = stage.rowsMade;
        readNextEntry();
        if (stage.rowsMade == rowsBefore)
            levels[at].notOnTheList.push_back(levels[at].next - 1);
        return;
    }
    const Level& level = levels[at];
    FolderNotes::Names others;
    for (const std::size_t entry : level.notOnTheList)
        others.push_back(level.entries[entry].name);
    stage.engine.folderNotes().put(level.place.row, level.status, level.entries.size() - others.size(),
                                   others);
    levels.pop_back();
}

void ReadItemsIntoDatabaseStage::FolderWalk::enter(Level level, RowId row) {
    level.place.row = row;
    if (level.error != 0)
        report(std::generic_category().message(level.error), level.path);
    else if (isInsideItself(level))
        report("The folder lies inside itself.", level.path);
    else {
        const FileIdentity identity = level.place.identity;
        if (row == noRow && levels.empty())
            row = stage.rowForFolder(level.path, identity);
        else if (row == noRow)
            row = stage.context->folderWithPath(level.path);
        if (row == noRow)
            row = stage.context->insertGhostNode(level.path, identity, levels.back().place.row);
        // A listing gives the inode of the folder below a mounted one, and a link's own.
        if (stage.context->row(row).identity() != identity)
            stage.context->change(row).setIdentity(identity);
        level.place = stage.placeIn(row, identity);
        levels.push_back(std::move(level));
    }
}

ReadItemsIntoDatabaseStage::FolderWalk::Level
ReadItemsIntoDatabaseStage::FolderWalk::listed(std::string path, KnownVolumes* volumes) {
    Level level;
    level.path = std::move(path);
    level.error = read(level, volumes);
    return level;
}

ReadItemsIntoDatabaseStage::FolderWalk::Level
ReadItemsIntoDatabaseStage::FolderWalk::listedAhead(const std::string& path) {
    Level& above = levels.back();
    if (above.isRemote && above.next > above.nextAhead) {
        std::vector<std::string> paths = nextFolders(above);
        paths.push_back(path);
        std::vector<Level> found(paths.size());
        inParallel(paths.size(), foldersAtATime,
                   [&](std::size_t at) { found[at] = listed(paths[at], nullptr); });
        std::erase_if(found, [](const Level& level) { return level.error != 0; });
        above.ahead = std::move(found);
    }
    const auto known = std::ranges::find(above.ahead, path, &Level::path);
    if (known == above.ahead.end())
        return listed(path, &stage.volumes); // so is one for which there were too many at a time
    Level level = std::move(*known);
    above.ahead.erase(known);
    return level;
}

std::vector<std::string> ReadItemsIntoDatabaseStage::FolderWalk::nextFolders(Level& level) const {
    std::vector<std::string> paths;
    std::size_t& at = level.nextAhead;
    for (at = level.next; at < level.entries.size() && paths.size() + 1 < foldersAtATime; ++at) {
        const FolderEntry entry = level.entries[at];
        if (entry.kind != FileStatus::Kind::folder || isHidden(entry, level))
            continue;
        std::string path = joinedPath(level.path, entry.name);
        const bool isEntered =
            !(stage.nested && stage.nested->contains(path)) &&
            !(!selection.excludes.empty() &&
              selection.isExcluded({std::string_view(path).substr(lengthOfGiven), true})) &&
            !FileManager::instance().isBundleFolder(path, FolderEntries());
        if (isEntered)
            paths.push_back(std::move(path));
    }
    return paths;
}

int ReadItemsIntoDatabaseStage::FolderWalk::read(Level& level, KnownVolumes* volumes) {
    std::unique_ptr<OpenFolder> folder;
    if (const int error = FileSystem::sharedInstance().openFolder(level.path, folder))
        return error;
    if (const int error = folder->status(".", level.status))
        return error;
    level.place.identity = level.status.identity;
    level.isRemote = volumes == nullptr || volumes->of(*folder, level.status.identity).isRemote;
    if (const int error = folder->entries(level.entries))
        return error;
    if (level.entries.contains(".hidden"))
        level.hidden = HiddenNames(level.path);
    return 0;
}

bool ReadItemsIntoDatabaseStage::FolderWalk::isInsideItself(const Level& level) const {
    return std::any_of(levels.begin(), levels.end(),
                       [&](const Level& above) { return above.place.identity == level.place.identity; });
}

void ReadItemsIntoDatabaseStage::FolderWalk::readNextEntry() {
    Level& level = levels.back();
    const FolderEntry entry = level.entries[level.next++];
    if (isHidden(entry, level))
        return;
    if (selection.hasGlobs() || selection.asksForTime() || stage.nested)
        pathOfEntry = joinedPath(level.path, entry.name);
    if (stage.nested && stage.nested->contains(pathOfEntry))
        return; // it has its own turn
    const std::optional<FileStatus::Kind> kind = kindOf(entry);
    if (kind == FileStatus::Kind::folder)
        return readFolderEntry({entry.name, *kind, entry.inode});
    if (kind == FileStatus::Kind::link && selection.followsLinks) {
        FileStatus target;
        const std::string path = joinedPath(level.path, entry.name);
        if (FileSystem::sharedInstance().followedStatus(path, target) == 0 &&
            target.kind == FileStatus::Kind::folder)
            return readFolderEntry({entry.name, *kind, entry.inode});
    }
    if (kind)
        readFileEntry({entry.name, *kind, entry.inode});
}

bool ReadItemsIntoDatabaseStage::FolderWalk::isHidden(const FolderEntry& entry, const Level& level) const {
    return !selection.findsHidden && (entry.name.front() == '.' || level.hidden.contains(entry.name));
}

bool ReadItemsIntoDatabaseStage::FolderWalk::isExcluded(bool isFolder) const {
    return !selection.excludes.empty() &&
           selection.isExcluded({std::string_view(pathOfEntry).substr(lengthOfGiven), isFolder});
}

bool ReadItemsIntoDatabaseStage::FolderWalk::takesPart(const FolderEntry& entry, bool isFolder) const {
    if (entry.kind == FileStatus::Kind::link ? !selection.takesLinks : !isFolder && !selection.takesFiles)
        return false;
    return (selection.includes.empty() ||
            selection.isIncluded({std::string_view(pathOfEntry).substr(lengthOfGiven), isFolder})) &&
           (!selection.asksForTime() || hasFittingTime());
}

bool ReadItemsIntoDatabaseStage::FolderWalk::hasFittingTime() const {
    FileStatus status;
    const int error = FileSystem::sharedInstance().status(pathOfEntry, status);
    if (error != 0 && error != ENOENT)
        stage.addReadingError(false, error, pathOfEntry);
    return error == 0 && selection.admitsTime(status.modificationDate);
}

void ReadItemsIntoDatabaseStage::FolderWalk::readFileEntry(const FolderEntry& entry) {
    if (takesAllFiles || (!isExcluded(false) && takesPart(entry, false)))
        createRow(entry, false);
}

std::optional<FileStatus::Kind> ReadItemsIntoDatabaseStage::FolderWalk::kindOf(const FolderEntry& entry) {
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

void ReadItemsIntoDatabaseStage::FolderWalk::readFolderEntry(const FolderEntry& entry) {
    std::string path = joinedPath(levels.back().path, entry.name);
    const FileManager& files = FileManager::instance();
    const bool isLeftOut = isExcluded(true);
    std::optional<Level> below;
    const bool isBundleByName = files.isBundleFolder(path, FolderEntries());
    if (!isLeftOut && !isBundleByName && entry.kind == FileStatus::Kind::folder && mayGoDeeper())
        below = listedAhead(path);
    if (below && below->error == 0 ? files.isBundleFolder(path, below->entries)
                                   : files.isBundleFolder(path)) {
        // The source item decides, not the bundle.
        if (!isSourceInvisible)
            readFileEntry(entry);
        return;
    }
    if (isLeftOut)
        return;
    RowId row = noRow;
    if (takesPart(entry, true)) {
        row = createRow(entry, true);
        if (row == noRow)
            return;
    }
    if (below)
        enter(std::move(*below), row);
}

RowId ReadItemsIntoDatabaseStage::FolderWalk::createRow(const FolderEntry& entry, bool isFolder) {
    const Level& level = levels.back();
    const SeenItem seen{{entry.inode, level.place.identity.device}, entry.kind};
    return stage.createOneFile(level.place, level.path, entry.name, false, isFolder, seen);
}

void ReadItemsIntoDatabaseStage::FolderWalk::report(const std::string& message, const std::string& path) {
    stage.addError("Could not read a folder", message, path);
}

} // namespace tavrin
