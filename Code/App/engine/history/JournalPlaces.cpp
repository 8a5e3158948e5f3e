#include "engine/history/JournalPlaces.h"

#include "engine/renaming/NameOnDisk.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace tavrin {

namespace {

/// Clocks of file systems are coarser than ours.
constexpr double slack = 2;
constexpr std::size_t mostLeftovers = 100;
constexpr std::size_t itemsBetweenQuestions = 256;

std::string withReason(std::string_view sentence, int error) {
    return std::string(sentence) + " (" + std::generic_category().message(error) + ")";
}

} // namespace

JournalPlaces::JournalPlaces(RunRecordReader& reader)
    : record(reader), wasInterrupted(!reader.end()), began(reader.heading().began()) {}

void JournalPlaces::visit(Which which, const std::function<void(const PlacedItem&)>& visitor) {
    if (folders.size() != record.folders().size())
        findFolders();
    record.visitItems([&](const RecordedItem& item, std::size_t number) {
        const bool isFolder = item.kind == FileStatus::Kind::folder;
        if (which == Which::all || isFolder == (which == Which::folders))
            visitor(place(item, number));
        return number % itemsBetweenQuestions != 0 || !isUnwanted();
    });
    openFolder.reset();
}

void JournalPlaces::findFolders() {
    folders.assign(record.folders().size(), {});
    gatherNames();
    for (std::uint32_t number = 0; number < folders.size(); ++number)
        static_cast<void>(folder(number));
    found.clear(); // what lies in the way of a folder comes up again with the folder itself
}

const std::vector<JournalPlaces::Leftover>& JournalPlaces::leftovers() {
    dropListedItems();
    return found;
}

/// An item that waits to be renamed can look like an empty place for another.
void JournalPlaces::dropListedItems() {
    if (found.empty())
        return;
    record.visitItems([this](const RecordedItem& item, std::size_t) {
        std::erase_if(found, [&](const Leftover& leftover) {
            return !leftover.isSecondName && leftover.identity.inode == item.inode;
        });
        return !found.empty();
    });
}

void JournalPlaces::gatherNames() {
    std::unordered_set<std::string> wanted;
    for (const RecordedFolder& line : record.folders()) {
        for (std::string path = line.path; path.size() > 1 && wanted.insert(path).second;)
            path = PathParts(path).folder;
    }
    record.visitItems([&](const RecordedItem& item, std::size_t number) {
        if (!item.standIn.empty())
            namesInRings[item.folder].insert(item.oldName);
        if (item.kind != FileStatus::Kind::folder)
            return true;
        std::string path = joinedPath(record.folders()[item.folder].path, item.oldName);
        if (wanted.contains(path))
            folderItems.emplace(std::move(path), FolderItem{item, number});
        return true;
    });
}

const JournalPlaces::Folder& JournalPlaces::folder(std::uint32_t number) {
    Folder& entry = folders[number];
    if (!entry.isResolved) {
        entry.isResolved = true; // before its own, which can't be above it in a sound record
        resolve(number, entry);
    }
    return entry;
}

void JournalPlaces::resolve(std::uint32_t number, Folder& into) {
    const RecordedFolder& line = record.folders()[number];
    into.path = presentPath(line.path);
    std::unique_ptr<OpenFolder> opened;
    FileStatus status;
    VolumeFacts volume;
    int error = FileSystem::sharedInstance().openFolder(into.path, opened);
    if (error == 0)
        error = opened->status(".", status);
    if (error != 0) {
        into.reason = withReason("Its folder is not to be found.", error);
        return;
    }
    static_cast<void>(opened->volume(volume));
    into.identity = status.identity;
    const bool isSameVolume =
        status.identity.device == line.identity.device || (volume.id != 0 && volume.id == line.volume);
    const bool isSameFolder =
        status.identity.inode == line.identity.inode &&
        (!line.birthTime || !status.hasBirthTime || *line.birthTime == status.creationDate);
    if (!volume.inodesMayChange && line.identity.isKnown() && !(isSameVolume && isSameFolder))
        into.reason = "Its folder is another one than it was.";
}

/// Each folder above that had a new name to get is looked for under its three names.
std::string JournalPlaces::presentPath(const std::string& path) {
    if (path.size() <= 1)
        return path;
    if (const auto known = presentPaths.find(path); known != presentPaths.end())
        return known->second;
    const PathParts parts(path);
    std::string present;
    if (const auto entry = folderItems.find(path); entry != folderItems.end()) {
        const PlacedItem placed = place(entry->second.item, entry->second.number);
        const bool isThere = placed.place <= ItemPlace::old;
        present = joinedPath(placed.folder, isThere ? placed.name : std::string(parts.name));
    } else {
        present = joinedPath(presentPath(std::string(parts.folder)), parts.name);
    }
    presentPaths.emplace(path, present);
    return present;
}

bool JournalPlaces::open(std::uint32_t number) {
    if (openFolder && openNumber == number)
        return true;
    openNumber = number;
    openFolder.reset();
    entriesAreRead = false;
    return FileSystem::sharedInstance().openFolder(folders[number].path, openFolder) == 0;
}

PlacedItem JournalPlaces::place(const RecordedItem& item, std::size_t number) {
    const Folder& in = folder(item.folder);
    PlacedItem placed{
        item,        number,   record.folders()[item.folder], ItemPlace::gone, in.path, item.newName, {},
        in.identity, in.reason};
    if (!in.reason.empty() || !open(item.folder))
        return placed;
    if (item.look)
        placeByScores(placed);
    else
        placeByLooks(placed);
    return placed;
}

void JournalPlaces::put(PlacedItem& into, ItemPlace place, const std::string& name, const Look& look) {
    into.place = place;
    into.name = name;
    into.identity = look.status.identity;
}

void JournalPlaces::placeByLooks(PlacedItem& into) {
    const RecordedItem& item = into.item;
    const Look atNew = lookAt(item.newName, into);
    // What was cut off can leave an item under two of its names; a folder that ignores case always does.
    const bool isCaseOnly = nameOnDisk::differsOnlyInCase(item.oldName, item.newName);
    if (atNew.isSame && !wasInterrupted && !isCaseOnly)
        return put(into, ItemPlace::done, item.newName, atNew);
    const Look atOld = lookAt(item.oldName, into);
    Look atStandIn;
    if (!item.standIn.empty() && (wasInterrupted || (!atNew.isSame && !atOld.isSame)))
        atStandIn = lookAt(item.standIn, into);
    // Where one spelling finds the other, the listing tells them apart.
    const bool isAtOld = atOld.isSame && !(isCaseOnly && atNew.isSame && !bearsExactly(item.oldName));
    const bool isAtNew = atNew.isSame && !(isCaseOnly && isAtOld && !bearsExactly(item.newName));
    if (isAtOld)
        put(into, ItemPlace::old, item.oldName, atOld);
    else if (isAtNew)
        put(into, ItemPlace::done, item.newName, atNew);
    else if (atStandIn.isSame)
        put(into, ItemPlace::standIn, item.standIn, atStandIn);
    else
        return placeElsewhere(into, atNew, atOld);
    if (atNew.isThere && into.place != ItemPlace::done && (!atNew.isSame || isAtNew))
        noteLeftover(into, item.newName, atNew);
    if (atStandIn.isThere && into.place != ItemPlace::standIn)
        noteLeftover(into, item.standIn, atStandIn);
}

void JournalPlaces::placeElsewhere(PlacedItem& into, const Look& atNew, const Look& atOld) {
    if (const std::string held = nameInRing(into); !held.empty()) {
        if (const Look look = lookAt(held, into); look.isSame)
            return put(into, ItemPlace::standIn, held, look);
    }
    const Look& other = atNew.isThere ? atNew : atOld;
    const std::string& name = atNew.isThere ? into.item.newName : into.item.oldName;
    if (other.isThere && other.status.kind == into.item.kind)
        put(into, ItemPlace::replaced, name, other);
}

/// Names of a ring are exchanged two by two: until the last step, one of its items lies under the name of
/// another one.
std::string JournalPlaces::nameInRing(const PlacedItem& of) {
    const auto names = namesInRings.find(of.item.folder);
    if (names == namesInRings.end())
        return {};
    if (ringFolder != of.item.folder) {
        ringFolder = of.item.folder;
        holders.clear();
        readEntries();
        for (const FolderEntry entry : entries) {
            if (names->second.contains(std::string(entry.name)))
                holders.emplace(entry.inode, entry.name);
        }
    }
    const auto holder = holders.find(of.item.inode);
    return holder == holders.end() ? std::string() : holder->second;
}

/// Where inodes change, an item is known by all else that is recorded of it, if nothing else fits as well.
void JournalPlaces::placeByScores(PlacedItem& into) {
    const RecordedItem& item = into.item;
    struct Candidate {
        ItemPlace place;
        const std::string& name;
    };
    const std::array<Candidate, 3> candidates{{{ItemPlace::done, item.newName},
                                               {ItemPlace::standIn, item.standIn},
                                               {ItemPlace::old, item.oldName}}};
    int best = 0;
    bool isTie = false;
    Look atNew;
    for (const Candidate& candidate : candidates) {
        if (candidate.name.empty() || !bearsExactly(candidate.name))
            continue;
        const Look look = lookAt(candidate.name, into);
        if (candidate.place == ItemPlace::done)
            atNew = look;
        if (!look.isThere || look.status.kind != item.kind)
            continue;
        const bool isAlike =
            look.status.size == item.look->size &&
            (item.kind == FileStatus::Kind::folder || look.status.modificationDate == item.look->modified);
        const int score = (isAlike ? 2 : 0) + (look.status.identity.inode == item.inode ? 1 : 0);
        if (score == 0 || score < best)
            continue;
        isTie = score == best;
        best = score;
        put(into, candidate.place, candidate.name, look);
    }
    if (isTie)
        into.place = ItemPlace::unclear;
    else if (best == 0 && atNew.isThere && atNew.status.kind == item.kind)
        put(into, ItemPlace::replaced, item.newName, atNew);
}

JournalPlaces::Look JournalPlaces::lookAt(const std::string& name, const PlacedItem& of) {
    Look look;
    look.isThere = openFolder->status(name, look.status) == 0;
    look.isSame = look.isThere && isSame(look.status, of);
    return look;
}

bool JournalPlaces::isSame(const FileStatus& status, const PlacedItem& of) const {
    const RecordedItem& item = of.item;
    if (item.inode == 0 || status.identity.inode != item.inode || status.kind != item.kind)
        return false;
    if (!status.hasBirthTime)
        return true;
    if (item.birthTime)
        return *item.birthTime == status.creationDate;
    // A number that has been used again since belongs to an item that is younger than the run.
    return !began || record.isLate(of.number) || status.creationDate < *began + slack;
}

bool JournalPlaces::bearsExactly(const std::string& name) {
    readEntries();
    return entries.contains(name);
}

void JournalPlaces::readEntries() {
    if (!std::exchange(entriesAreRead, true) && openFolder->entries(entries) != 0)
        entries.clear();
}

void JournalPlaces::noteLeftover(const PlacedItem& of, const std::string& name, const Look& look) {
    if (!wasInterrupted || !record.hasNoFlag(of.recordedFolder) || found.size() == mostLeftovers)
        return;
    const bool isYoung =
        began && std::max(look.status.creationDate, look.status.modificationDate) > *began - slack;
    Leftover leftover{of.folder,   name,
                      of.name,     look.status.identity,
                      look.isSame, look.status.kind == FileStatus::Kind::folder};
    const bool isReservation = !look.isSame && isYoung && look.status.kind == of.item.kind &&
                               (leftover.isFolder || look.status.size == 0);
    // Items of a folder share their stand-in name.
    const bool isKnown = std::ranges::any_of(found, [&](const Leftover& other) {
        return other.folder == leftover.folder && other.name == leftover.name;
    });
    if (!isKnown && ((look.isSame && !leftover.isFolder) || isReservation))
        found.push_back(std::move(leftover));
}

} // namespace tavrin
