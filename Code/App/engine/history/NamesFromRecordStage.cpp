#include "engine/history/NamesFromRecordStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <mutex>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::size_t rowsPerCommit = 10000;

std::string lookingText(std::size_t count) {
    return count == 1 ? "Looking where 1 file is now…"
                      : fmt::format("Looking where {} files are now…", count);
}

std::string folderOfRecord(const std::string& path) { return std::string(PathParts(path).folder); }

} // namespace

NamesFromRecordStage::NamesFromRecordStage(EngineState& owner, TakeBackRequest whatToDo,
                                           std::shared_ptr<RunPurpose> whatFor)
    : ProcessingStage(owner), request(std::move(whatToDo)), purpose(std::move(whatFor)),
      renamedAgain(folderOfRecord(request.chosen.run.path), request.chosen.run.name) {}

bool NamesFromRecordStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    {
        StoreContext& list = engine.host().managedObjectContext();
        const std::lock_guard lock(list.mutex());
        listHasItems = list.sourceItemCount() > 0;
    }
    RunRecordReader record(request.chosen.run.path);
    record.examine();
    purpose->linksAreItems = record.hasLinksAsItems();
    if (progress != nullptr)
        progress->updateStageText(lookingText(record.itemCount()));
    report.numberOfItems(static_cast<std::int32_t>(record.itemCount()));
    report.indeterminate(false);
    JournalPlaces places(record);
    places.breakOffWhen([this] { return engine.isStopRequested(); });
    // Folders that are to move have their rows before what they hold.
    std::vector<Mover> folders;
    places.visit(JournalPlaces::Which::folders, [&](const PlacedItem& placed) {
        if (isToMove(placed))
            folders.push_back(moverOf(placed));
    });
    std::ranges::stable_sort(folders, {}, [](const Mover& mover) { return mover.folder.size(); });
    std::ranges::for_each(folders, [this](const Mover& mover) { makeRow(mover); });
    places.visit(JournalPlaces::Which::others, [&](const PlacedItem& placed) {
        if (isToMove(placed))
            makeRow(moverOf(placed));
        report.item(static_cast<std::int32_t>(placed.number));
    });
    const bool isToGoOn = goesOn();
    if (isToGoOn)
        clearLeftover(places);
    if (isToGoOn && request.chosen.toNewNames) {
        purpose->visitDone = [path = request.chosen.run.path](const auto& visitor) {
            RunRecordReader again(path);
            again.examine();
            JournalPlaces(again).visit(JournalPlaces::Which::all, [&](const PlacedItem& placed) {
                if (placed.place == ItemPlace::done)
                    visitor(placed.folder, placed.item);
            });
        };
    }
    saveAndRefaultObjects();
    return isToGoOn;
}

bool NamesFromRecordStage::goesOn() const {
    using enum TakeBackRequest::Extent;
    if (engine.isStopRequested())
        return false;
    return request.extent == whatCan || (request.extent == allOrNothing && purpose->failedBefore == 0);
}

bool NamesFromRecordStage::isToMove(const PlacedItem& placed) {
    const bool isHere = placed.place == ItemPlace::done || placed.place == ItemPlace::standIn ||
                        placed.place == ItemPlace::old || placed.place == ItemPlace::replaced;
    if (isHere && placed.name == wantedName(placed.item))
        return false;
    if (isHere && (placed.place != ItemPlace::replaced || request.takesReplaced))
        return true;
    fail(placed);
    return false;
}

NamesFromRecordStage::Mover NamesFromRecordStage::moverOf(const PlacedItem& placed) const {
    const RecordedItem& item = placed.item;
    return {placed.folder,
            placed.name,
            wantedName(item),
            request.chosen.toNewNames ? item.oldName : item.newName,
            {placed.identity, item.kind},
            placed.ofFolder};
}

void NamesFromRecordStage::makeRow(const Mover& mover) {
    const FolderRow parent = rowForFolder(mover.folder, mover.ofFolder);
    const bool isFolder = mover.seen.kind == FileStatus::Kind::folder;
    const std::string path = joinedPath(mover.folder, mover.name);
    const RowId row = context->insertFile(parent.id, mover.name, isOnList(path), isFolder,
                                          engine.nextManualOrder(), mover.seen);
    if (isFolder)
        folderRows[path] = {row, true};
    std::u16string name = text::fromBytes(mover.wanted);
    text::replaceUnit(name, u':', u'/');
    context->setFinalName(row, name);
    NodeRow& values = context->change(row);
    values.diff = true;
    values.namedBy = NamedBy::hand;
    if (mover.former != mover.name)
        purpose->formerNames.emplace(row, mover.former);
    if (++rowsMade % rowsPerCommit == 0)
        saveAndRefaultObjects();
}

/// What lies in a folder that moves is to be renamed before it, so the folders between them have rows too.
NamesFromRecordStage::FolderRow NamesFromRecordStage::rowForFolder(const std::string& path,
                                                                   const FileIdentity& identity) {
    if (const auto known = folderRows.find(path); known != folderRows.end())
        return known->second;
    bool liesInMoving = false;
    for (std::string above = path; above.size() > 1 && !liesInMoving;) {
        above = PathParts(above).folder;
        const auto known = folderRows.find(above);
        liesInMoving = known != folderRows.end() && known->second.isMoving;
    }
    FolderRow made;
    if (liesInMoving) {
        const PathParts parts(path);
        const RowId parent = rowForFolder(std::string(parts.folder), {}).id;
        made = {context->insertFile(parent, parts.name, false, true, engine.nextManualOrder(),
                                    {identity, FileStatus::Kind::folder}),
                true};
    } else {
        made = {context->insertGhostNode(path, identity), false};
    }
    return folderRows[path] = made;
}

bool NamesFromRecordStage::isOnList(const std::string& path) const {
    if (!listHasItems)
        return false;
    StoreContext& list = engine.host().managedObjectContext();
    const std::lock_guard lock(list.mutex());
    return list.hasSourceItem(path);
}

/// A run that was killed leaves one step half done at most. Of more than one that look like it, none is
/// touched.
void NamesFromRecordStage::clearLeftover(JournalPlaces& places) {
    const auto& leftovers = places.leftovers();
    if (leftovers.size() > 1) {
        for (const auto& leftover : leftovers)
            addError("Could not clear what an interrupted run left behind",
                     "More than one item looks like it, so that none was removed.",
                     joinedPath(leftover.folder, leftover.name));
        purpose->failedBefore += static_cast<std::int64_t>(leftovers.size());
        return;
    }
    if (leftovers.empty())
        return;
    const JournalPlaces::Leftover& leftover = leftovers.front();
    std::unique_ptr<OpenFolder> folder;
    FileStatus there;
    FileStatus item;
    int error = FileSystem::sharedInstance().openFolder(leftover.folder, folder);
    if (error == 0) {
        if (folder->status(leftover.name, there) != 0 || there.identity != leftover.identity)
            return;
        // A second name may go only as long as the first is there.
        if (leftover.isSecondName &&
            (folder->status(leftover.itemName, item) != 0 || item.identity != leftover.identity))
            return;
        if (!leftover.isSecondName && !leftover.isFolder && there.size != 0)
            return;
        error = folder->remove(leftover.name, there.kind);
    }
    if (error == 0)
        return;
    ++purpose->failedBefore;
    addError("Could not clear what an interrupted run left behind",
             fmt::format("It can't be removed. ({})", std::generic_category().message(error)),
             joinedPath(leftover.folder, leftover.name));
}

void NamesFromRecordStage::fail(const PlacedItem& placed) {
    ++purpose->failedBefore;
    addError(request.chosen.toNewNames ? "Could not finish a rename" : "Could not bring back a file name",
             reasonFor(placed), joinedPath(placed.folder, placed.name));
}

std::string NamesFromRecordStage::reasonFor(const PlacedItem& placed) {
    const std::string& folder = placed.recordedFolder.path;
    const RenamedAgain::Hit* again =
        renamedAgain.find(joinedPath(placed.folder, placed.item.newName), placed.item.inode);
    if (!placed.reason.empty())
        again = renamedAgain.find(placed.folder, placed.recordedFolder.identity.inode);
    const std::string later = again ? fmt::format(" The run {} has renamed {} again.", again->run,
                                                  placed.reason.empty() ? "it" : "its folder")
                                    : std::string();
    if (!placed.reason.empty())
        return placed.reason + later;
    if (placed.place == ItemPlace::unclear)
        return fmt::format("\"{}\" and \"{}\" are alike, so that it can't be told which of them it is.",
                           joinedPath(folder, placed.item.oldName), joinedPath(folder, placed.item.newName));
    if (placed.place == ItemPlace::replaced)
        return "Another item lies in its place and is left alone; it is not to be found itself." + later;
    return "It is not to be found: it has been removed, moved or renamed." + later;
}

} // namespace tavrin
