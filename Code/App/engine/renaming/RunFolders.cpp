#include "engine/renaming/RunFolders.h"

#include "platform/files/Descriptor.h"

#include <cerrno>

namespace tavrin {

namespace {

/// Items of many folders come in turn, by their names.
constexpr std::size_t descriptorsWanted = 4096;

} // namespace

RunFolders::RunFolders(FileSystem& disk)
    : fileSystem(disk), mostOpen(raiseDescriptorLimit(descriptorsWanted) / 2) {}

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
    Place& place = places[row];
    open(place, path, asRead);
    return place;
}

void RunFolders::open(Place& place, const std::string& path, const FileIdentity& asRead) {
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

} // namespace tavrin
