#include "engine/naming/ProblemFinder.h"

#include "engine/naming/NameProblems.h"
#include "engine/reading/FolderNotes.h"
#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/AsciiBytes.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <utility>

namespace tavrin {

namespace {

using enum NameProblem;

/// So many are asked for one by one before a whole folder is listed.
constexpr std::size_t fewMovers = 32;

/// Nothing is wrong with the name itself, as is seen without making it a text.
bool isPlain(std::string_view name) {
    return !name.empty() && (name.front() != '.' || (name != "." && name != "..")) &&
           (text::isAsciiWithoutNul(name) || (name.find('\0') == name.npos && text::isUtf8(name)));
}

/// From one row to another, as the detail of a problem tells it.
std::uint16_t stepTo(RowId from, RowId to) {
    const std::int64_t step = std::int64_t{to} - from;
    return static_cast<std::uint16_t>(step == static_cast<std::int16_t>(step) ? step : rowTooFar);
}

bool holdsSign(std::string_view name) {
    return std::ranges::any_of(name, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               nameOnDisk::foreignSigns.find(c) != std::string_view::npos;
    });
}

} // namespace

void ProblemFinder::lookAt(RowId folder, const std::vector<RowId>& children, Names names) {
    rows = &children;
    others.clear();
    absent.clear();
    if (gatherMovers(folder) == none && !movers.empty()) {
        lookAtDisk(folder);
        findTaken(names);
    }
    if (hadProblems || std::ranges::any_of(movers, std::not_fn(&Mover::goes)) ||
        std::ranges::any_of(movers, &Mover::isRival))
        store(names);
}

/// Each is judged as it is found, while its row is at hand.
NameProblem ProblemFinder::gatherMovers(RowId folder) {
    NameProblem ofAll = none;
    movers.clear();
    movers.reserve(rows->size()); // room that is not used costs nothing
    hasExact = false;
    hasRespelledStayer = false;
    hadProblems = false;
    for (std::size_t i = 0; i < rows->size(); ++i) {
        const RowId id = (*rows)[i];
        const NodeRow& row = context.row(id);
        hadProblems |= row.problem != none;
        if (row.diff && filter.admits(row)) {
            movers.push_back({.row = id,
                              .child = static_cast<std::uint32_t>(i),
                              .isLink = row.kind == FileStatus::Kind::link,
                              .wasSeen = holds(row.loaded, RowValues::ofStatus) && !notes.wasLocked(id),
                              .isExact = row.hasExactName()});
            hasExact |= row.hasExactName();
            if (movers.size() == 1)
                ofAll = problemOfFolder(folder);
            judgeName(movers.back());
            if (movers.back().goes())
                movers.back().problem = ofAll;
        } else {
            hasRespelledStayer |= !context.heldFinalName(id).isName;
        }
    }
    return ofAll;
}

NameProblem ProblemFinder::problemOfFolder(RowId folder) {
    FileSystem& disk = FileSystem::sharedInstance();
    context.fullPath(folder, path);
    const FileIdentity asRead = context.row(folder).identity();
    volume = {};
    if (const int error = disk.followedStatus(path, status))
        return error == ENOENT || error == ENOTDIR ? gone : lockedFolder;
    volume = volumeOf(status.identity.device);
    if (asRead.isKnown() && status.identity != asRead && !volume.inodesMayChange)
        return folderReplaced;
    switch (disk.mayChangeNamesIn(path)) {
    case EROFS:
        return readOnlyVolume;
    case EACCES:
    case EPERM:
        return lockedFolder;
    default: // nothing of folders that may only be added to
        return status.isLocked() ? lockedFolder : none;
    }
}

VolumeFacts ProblemFinder::volumeOf(std::uint32_t device) {
    if (const auto known = volumes.find(device); known != volumes.end())
        return known->second;
    std::unique_ptr<OpenFolder> place;
    VolumeFacts facts;
    if (FileSystem::sharedInstance().openFolder(path, place) != 0 || place->volume(facts) != 0)
        return {};
    return volumes[device] = facts;
}

// ---- names

void ProblemFinder::judgeName(Mover& mover) {
    StoreContext::HeldName final = context.heldFinalName(mover.row);
    if (!final.hasBytes || !isPlain(final.bytes)) {
        mover.problem =
            nameOnDisk::problemOf(context.finalName(mover.row), context.component(mover.row), mover.isExact);
        final = context.heldFinalName(mover.row); // what was read meanwhile may have paged it out
    }
    if (mover.goes() && !renamesLinks && mover.isLink)
        mover.problem = NameProblem::link;
    if (!mover.goes())
        return;
    if (volume.forbidsSigns && holdsSign(final.bytes))
        mover.problem = foreignCharacter;
    else
        judgeLength(mover, final.bytes.size());
}

void ProblemFinder::judgeLength(Mover& mover, std::size_t bytes) {
    const std::size_t limit = volume.nameLimit;
    const bool isNameTooLong =
        limit != 0 && bytes > limit && !(volume.countsUnits && context.finalName(mover.row).size() <= limit);
    const std::size_t length = path.size() + 1 + bytes;
    if (isNameTooLong) {
        mover.problem = volume.countsUnits ? tooManyUnits : tooManyBytes;
        mover.detail = static_cast<std::uint16_t>(limit);
    } else if (length > longestPath) {
        mover.problem = pathTooLong;
        mover.detail = static_cast<std::uint16_t>(std::min<std::size_t>(length, 0xFFFF));
    }
}

// ---- the disk

void ProblemFinder::lookAtDisk(RowId folder) {
    const FolderNotes::Answer noted = notes.find(folder, status, rows->size());
    if (noted.isKnown)
        others = noted.names;
    const bool looks =
        std::ranges::any_of(movers, [this](const Mover& each) { return mustBeLookedAt(each); });
    if (noted.isKnown && !looks)
        return;
    std::unique_ptr<OpenFolder> place;
    if (FileSystem::sharedInstance().openFolder(path, place) != 0)
        return;
    if (!noted.isKnown) {
        if (movers.size() <= fewMovers && askForEach(*place))
            return;
        if (place->entries(listing) != 0) { // it may not be read
            static_cast<void>(askForEach(*place));
            return;
        }
        compareWithListing(folder);
    }
    if (looks)
        lookAtItems(*place);
}

bool ProblemFinder::askForEach(OpenFolder& place) {
    others.clear();
    asked.clear();
    asked.reserve(movers.size()); // so that they stay where they are
    for (Mover& mover : movers) {
        FileStatus own;
        const int error = place.status(std::string(context.component(mover.row)), own);
        judgePresence(mover, error, own);
        if (error == 0 && mover.goes())
            judgeRights(mover, own);
        if (!mover.goes())
            continue;
        const std::string wanted(wishOf(mover));
        FileStatus found;
        if (place.status(wanted, found) != 0 || isOnList(wanted, found.identity))
            continue;
        // Either another name of the same file, or the folder ignores case.
        if (found.identity == own.identity &&
            nameOnDisk::differsOnlyInCase(wanted, context.component(mover.row))) {
            others.clear();
            return false;
        }
        others.push_back(asked.emplace_back(wanted));
    }
    return true;
}

void ProblemFinder::judgePresence(Mover& mover, int error, const FileStatus& found) {
    mover.isAbsent = error == ENOENT;
    // The rename looks at the name first, then for the item, and leaves the rest to the system.
    const bool isOfName = mover.problem == NameProblem::empty || mover.problem == holdsNul ||
                          mover.problem == standsForFolder || mover.problem == cutCharacter;
    if (isOfName)
        return;
    const NodeRow& row = context.row(mover.row);
    if (mover.isAbsent)
        mover.problem = gone;
    else if (error == 0 && !renamesLinks && found.kind == FileStatus::Kind::link)
        mover.problem = NameProblem::link;
    else if (error == 0 && row.identity().isKnown() && row.kind != found.kind) {
        mover.problem = replaced;
        mover.detail = static_cast<std::uint16_t>(found.kind);
    }
}

bool ProblemFinder::isOnList(const std::string& name, const FileIdentity& identity) {
    if (context.fileWithPath(joinedPath(path, name)) != noRow)
        return true;
    return volume.ignoresCase && std::ranges::any_of(*rows, [&](RowId row) {
               return context.row(row).identity() == identity &&
                      nameOnDisk::differsOnlyInCase(context.component(row), name);
           });
}

void ProblemFinder::compareWithListing(RowId folder) {
    // The rows are read in their order, whatever that of the names.
    NameSlots names;
    names.reset(listing.size());
    for (std::size_t i = 0; i < listing.size(); ++i)
        names.add(names.hashOf(listing[i].name), static_cast<std::uint32_t>(i + 1));
    absent.assign(rows->size(), true);
    std::vector<FileStatus::Kind> kinds(rows->size());
    std::vector<bool> isListed(listing.size());
    for (std::size_t i = 0; i < rows->size(); ++i) {
        const std::string_view name = context.component((*rows)[i]);
        const std::uint32_t* const entry = names.find(
            names.hashOf(name), [&](std::uint32_t place) { return listing[place - 1].name == name; });
        if (entry == nullptr)
            continue;
        absent[i] = false;
        kinds[i] = listing[*entry - 1].kind;
        isListed[*entry - 1] = true;
    }
    others.clear();
    for (std::size_t i = 0; i < listing.size(); ++i)
        if (!isListed[i])
            others.push_back(listing[i].name);
    for (Mover& mover : movers) {
        FileStatus present;
        present.kind = kinds[mover.child];
        judgePresence(mover, absent[mover.child] ? ENOENT : 0, present);
    }
    notes.put(folder, status, listing.size() - others.size(), others);
}

/// A look at each item costs more than the rest of a preview, so it is only made where it may tell something.
bool ProblemFinder::mustBeLookedAt(const Mover& mover) const {
    const bool onlyOwnersRename = status.isSticky && status.isForeign;
    return onlyOwnersRename || (status.tellsLocks && (isToEnd || !mover.wasSeen));
}

void ProblemFinder::lookAtItems(OpenFolder& place) {
    for (Mover& mover : movers) {
        if (isToEnd && isToEnd())
            return;
        FileStatus own;
        if (mover.goes() && mustBeLookedAt(mover) &&
            place.status(std::string(context.component(mover.row)), own) == 0)
            judgeRights(mover, own);
    }
}

void ProblemFinder::judgeRights(Mover& mover, const FileStatus& found) {
    notes.noteLocked(mover.row, found.isLocked());
    if (status.isSticky && status.isForeign && found.isForeign)
        mover.problem = lockedItem;
    else if (found.isLocked())
        mover.problem = lockedByFlag;
}

// ---- names that are taken

void ProblemFinder::findTaken(Names names) {
    const bool allGo = std::ranges::all_of(movers, &Mover::goes);
    if (names == Names::distinct && allGo && !hasExact && !hasRespelledStayer && others.empty())
        return;
    gatherWishes(names);
    for (const std::string_view name : others)
        withhold(name, noRow);
    for (const Mover& mover : movers)
        if (mover.problem == gone && !mover.isRival)
            breakRingOf(mover);
    std::size_t next = 0;
    for (std::size_t i = 0; i < rows->size(); ++i) {
        const bool isMover = next < movers.size() && movers[next].child == i;
        const bool stays = !isMover || (!movers[next].goes() && !movers[next].isAbsent);
        // What makes way for the item that stays has no problem with it.
        const bool isForExact = !isMover && names == Names::toBeMadeDistinct;
        next += isMover ? 1 : 0;
        if (stays && (!isForExact || hasExact) && (absent.empty() || !absent[i]))
            withhold(context.component((*rows)[i]), (*rows)[i], isForExact);
    }
}

void ProblemFinder::gatherWishes(Names names) {
    wishes.reset(movers.size());
    for (std::size_t i = 0; i < movers.size(); ++i) {
        if (!movers[i].goes())
            continue;
        nameInHand = wishOf(movers[i]);
        Mover* const other = whoWants(nameInHand);
        const bool bothInsist = other != nullptr && other->isExact && movers[i].isExact;
        if (other != nullptr && names == Names::toBeMadeDistinct && !bothInsist)
            other->willBeMadeDistinct = !other->isExact;
        else if (other != nullptr)
            findConflict(*other, movers[i]);
        else
            wishes.add(wishes.hashOf(keyOf(nameInHand, sought)), static_cast<std::uint32_t>(i + 1));
    }
    for (Mover& mover : movers) {
        nameInHand = wishOf(mover);
        mover.isRival = !mover.goes() && names == Names::keptWhereTaken && whoWants(nameInHand) != nullptr;
    }
}

void ProblemFinder::findConflict(Mover& one, Mover& other) {
    one.problem = other.problem = conflict;
    one.detail = stepTo(one.row, other.row);
    other.detail = stepTo(other.row, one.row);
}

void ProblemFinder::withhold(std::string_view name, RowId holder, bool onlyFromExact) {
    nameInHand = name;
    for (Mover* mover = whoWants(nameInHand);
         mover != nullptr && mover->goes() && !mover->willBeMadeDistinct && mover->row != holder &&
         (mover->isExact || !onlyFromExact);
         mover = whoWants(nameInHand)) {
        mover->problem = taken;
        mover->detail = holder == noRow ? 0 : stepTo(mover->row, holder);
        holder = mover->row;
        nameInHand = context.component(holder);
    }
}

void ProblemFinder::breakRingOf(const Mover& absentee) {
    std::vector<Mover*> ring;
    nameInHand = context.component(absentee.row);
    for (Mover* mover = whoWants(nameInHand); mover != nullptr && mover->goes();
         mover = whoWants(nameInHand)) {
        ring.push_back(mover);
        nameInHand = context.component(mover->row);
    }
    if (keyOf(wishOf(absentee), held) != keyOf(nameInHand, sought))
        return;
    for (Mover* const mover : ring)
        mover->problem = lostExchange;
}

ProblemFinder::Mover* ProblemFinder::whoWants(std::string_view name) {
    const std::string_view key = keyOf(name, sought);
    const std::uint32_t* const place = wishes.find(wishes.hashOf(key), [&](std::uint32_t candidate) {
        return keyOf(wishOf(movers[candidate - 1]), held) == key;
    });
    return place == nullptr ? nullptr : &movers[*place - 1];
}

std::string_view ProblemFinder::wishOf(const Mover& mover) {
    wish = context.heldFinalName(mover.row).bytes;
    std::ranges::replace(wish, '/', ':');
    return wish;
}

std::string_view ProblemFinder::keyOf(std::string_view name, std::string& lowered) const {
    if (!volume.ignoresCase)
        return name;
    text::lowercaseBytes(name, lowered);
    return lowered;
}

// ---- the rows

void ProblemFinder::store(Names names) {
    auto mover = movers.begin();
    for (std::size_t i = 0; i < rows->size(); ++i) {
        if (mover == movers.end() || mover->child != i) {
            storeProblem((*rows)[i], none, 0);
            continue;
        }
        storeProblem(mover->row, mover->problem, mover->detail);
        const bool givesWay = mover->problem == taken || mover->problem == conflict || mover->isRival;
        if (names == Names::keptWhereTaken && givesWay) {
            context.setFinalNameToName(mover->row);
            context.change(mover->row).diff = false;
        }
        ++mover;
    }
}

void ProblemFinder::storeProblem(RowId row, NameProblem problem, std::uint16_t detail) {
    const NodeRow& present = context.row(row);
    if (present.problem == problem && present.problemDetail == detail)
        return;
    NodeRow& changed = context.change(row);
    changed.problem = problem;
    changed.problemDetail = detail;
    context.commitIfMuchIsStaged();
}

} // namespace tavrin
