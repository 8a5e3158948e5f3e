#include "engine/renaming/RunFolders.h"

#include "engine/renaming/NameOnDisk.h"
#include "engine/renaming/RenameItem.h"
#include "platform/files/Descriptor.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"

#include <cerrno>

namespace tavrin {

namespace {

constexpr std::size_t descriptorsWanted = 4096;
/// A table of descriptors that grows costs more than what would be kept open in it.
constexpr std::size_t fewFolders = 16;

bool isOutOfDescriptors(int error) { return error == EMFILE || error == ENFILE; }

constexpr std::string_view nameInTurn = "temporary file name for swapped file";
constexpr std::string_view nameInCase =
    "this dummy file is used to temporarily stand in for the real file that will be renamed during a Cocoa "
    "case sensitive rename";

} // namespace

RunFolders::RunFolders(FileSystem& disk, Order order)
    : fileSystem(disk),
      mostOpen(order == Order::byFolder ? fewFolders : raiseDescriptorLimit(descriptorsWanted) / 2) {}

VolumeFacts RunFolders::Place::volume() const {
    VolumeFacts facts;
    if (!folder || folder->volume(facts) != 0)
        return {};
    return facts;
}

RunFolders::Place& RunFolders::at(RowId row, const std::string& path, const FileIdentity& asRead) {
    const auto found = places.find(row);
    if (found != places.end())
        return found->second;
    if (places.size() >= mostOpen)
        places.clear();
    Place* place = &places[row];
    open(*place, path, asRead);
    if (isOutOfDescriptors(place->error) && places.size() > 1) {
        places.clear();
        place = &places[row];
        open(*place, path, asRead);
    }
    return *place;
}

void RunFolders::open(Place& place, const std::string& path, const FileIdentity& asRead) {
    place.path = path;
    place.error = fileSystem.openFolder(path, place.folder);
    FileStatus status;
    if (place.error == 0)
        place.error = place.folder->status(".", status);
    place.identity = status.identity;
    const bool isAnother = asRead.isKnown() && status.identity != asRead;
    // Where numbers are given anew at any time, a folder that is reached without a link is taken for it.
    if (place.error == 0 && isAnother && !(place.volume().inodesMayChange && place.folder->liesAt(path)))
        place.error = ESTALE;
    if (place.error != 0)
        place.folder.reset();
}

const std::string& StandIns::nameFor(RenameItem& item) {
    const bool takesTurns = item.takesTurns();
    if (!takesTurns && !nameOnDisk::differsOnlyInCase(item.component(), item.newComponent()))
        return none;
    Names& names = chosen[item.parentRow()];
    std::string& name = takesTurns ? names.inTurn : names.inCase;
    if (name.empty())
        name = freeName(item, takesTurns ? nameInTurn : nameInCase);
    return name;
}

std::string StandIns::freeName(const RenameItem& item, std::string_view wish) {
    RunFolders::Place& place = folders.at(item.parentRow(), item.folder(), item.folderAsRead());
    constexpr std::size_t roomForNumber = 11;
    const std::size_t limit = place.volume().nameLimit;
    if (limit > roomForNumber && wish.size() > limit - roomForNumber)
        wish = wish.substr(0, limit - roomForNumber);
    std::string name(wish);
    for (unsigned number = 2;; ++number) {
        FileStatus status;
        // What can't be looked at is tried; a name that is taken all the same is refused when it is used.
        const bool isTaken = place.folder && place.folder->status(name, status) == 0;
        if (!isTaken && context.fileWithPath(joinedPath(item.folder(), name)) == noRow)
            return name;
        name = std::string(wish) + " " + std::to_string(number);
    }
}

} // namespace tavrin
