#include "engine/StandIns.h"

#include "engine/NameOnDisk.h"
#include "engine/PathParts.h"
#include "store/StoreContext.h"
#include "support/Text.h"

#include <cerrno>

namespace tavrin {

namespace {

constexpr std::string_view nameInTurn = "temporary file name for swapped file";
constexpr std::string_view nameInCase =
    "this dummy file is used to temporarily stand in for the real file that will be renamed during a Cocoa "
    "case sensitive rename";

} // namespace

const std::string& StandIns::nameFor(RowId id) {
    const NodeRow row = context.row(id);
    const bool takesTurns = row.mustBeSwapped || !row.canBeRenamedIndependently;
    if (!takesTurns) {
        component = context.component(id);
        context.finalName(id, finalName);
        if (!NameOnDisk::from(finalName, component, wanted, row.hasExactName) ||
            !NameOnDisk::differsOnlyInCase(component, wanted))
            return none;
    }
    Names& names = chosen[row.parent];
    std::string& name = takesTurns ? names.inTurn : names.inCase;
    if (name.empty())
        name = freeName(row.parent, context.parentPath(id), takesTurns ? nameInTurn : nameInCase);
    return name;
}

std::string StandIns::freeName(RowId parent, const std::string& path, std::string_view wish) {
    RunFolders::Place& place = folders.at(parent, path, context.row(parent).identity());
    constexpr std::size_t roomForNumber = 11;
    const std::size_t limit = place.volume.nameLimit;
    if (limit > roomForNumber && wish.size() > limit - roomForNumber)
        wish = wish.substr(0, limit - roomForNumber);
    std::string name(wish);
    for (unsigned number = 2;; ++number) {
        FileStatus status;
        // What can't be looked at is tried; a name that is taken all the same is refused when it is used.
        const bool isTaken = place.folder && place.folder->status(name, status) == 0;
        if (!isTaken && context.fileWithPath(joinedPath(path, name)) == noRow)
            return name;
        name = std::string(wish) + " " + std::to_string(number);
    }
}

} // namespace tavrin
