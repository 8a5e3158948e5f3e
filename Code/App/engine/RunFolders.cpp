#include "engine/RunFolders.h"

#include <cerrno>

namespace tavrin {

namespace {

/// Far below the number of descriptors that a process may hold.
constexpr std::size_t mostOpen = 256;

} // namespace

RunFolders::Place& RunFolders::at(RowId row, const std::string& path, const FileIdentity& asRead) {
    const auto found = places.find(row);
    if (found != places.end())
        return found->second;
    if (places.size() >= mostOpen)
        places.clear();
    Place& place = places[row];
    open(place, path, asRead);
    return place;
}

void RunFolders::open(Place& place, const std::string& path, const FileIdentity& asRead) {
    place.error = fileSystem.openFolder(path, place.folder);
    FileStatus status;
    if (place.error == 0)
        place.error = place.folder->status(".", status);
    if (place.error == 0)
        place.error = place.folder->volume(place.volume);
    place.identity = status.identity;
    const bool isAnother = asRead.isKnown() && status.identity != asRead;
    // Where numbers are given anew at any time, a folder that is reached without a link is taken for it.
    if (place.error == 0 && isAnother && !(place.volume.inodesMayChange && place.folder->liesAt(path)))
        place.error = ESTALE;
    if (place.error != 0)
        place.folder.reset();
}

} // namespace tavrin
