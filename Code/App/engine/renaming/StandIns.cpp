#include "engine/renaming/StandIns.h"

#include "engine/planning/RenameItem.h"
#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"

#include <cerrno>

namespace tavrin {

namespace {

constexpr std::string_view nameInTurn = "temporary file name for swapped file";
constexpr std::string_view nameInCase =
    "this dummy file is used to temporarily stand in for the real file that will be renamed during a Cocoa "
    "case sensitive rename";

} // namespace

const std::string& StandIns::nameFor(RenameItem& item) {
    const bool takesTurns = item.takesTurns();
    if (!takesTurns && !NameOnDisk::differsOnlyInCase(item.component(), item.newComponent()))
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
