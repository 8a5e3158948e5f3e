#pragma once

#include <cstdint>

namespace tavrin {

/// What keeps an item from getting its new name, as far as it can be foreseen. `engine/naming/NameProblems.h`
/// puts it into words.
enum class NameProblem : std::uint8_t {
    none,
    empty,
    holdsNul,
    standsForFolder, ///< "." or ".."
    cutCharacter,    ///< a stray half of a character
    tooManyBytes,
    tooManyUnits,     ///< of UTF-16, where names are limited by these
    foreignCharacter, ///< one that the file system takes in no name
    taken,            ///< by an item that stays where it is, on the list or not
    conflict,         ///< another item is to get the same name
    lockedFolder,
    lockedItem, ///< in a folder where only owners rename
    readOnlyVolume,
    link,
    gone,
    replaced,       ///< by an item of another kind
    folderReplaced, ///< by another folder
    lostExchange,   ///< in a ring of items that want each other's names, of which one is gone
    pathTooLong,    ///< with its folder's
    lockedByFlag,   ///< nobody may rename it until the flag is taken off
};

} // namespace tavrin
