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

/// A folder that gives the answers of calls that were made ahead, each once, and for all else the folder
/// itself.
class AnsweredFolder final : public OpenFolder {
  public:
    AnsweredFolder(std::unique_ptr<OpenFolder> itself, RunFolders& owner, RowId row)
        : folder(std::move(itself)), run(owner), id(row) {}

    int status(const std::string& name, FileStatus& into) override {
        RunFolders::Answer* answer = run.answerFor(id, name);
        if (!answer || answer->isLookGiven)
            return folder->status(name, into);
        answer->isLookGiven = true;
        into = answer->look;
        return 0;
    }
    int renameNoReplace(const std::string& from, const std::string& to) override {
        const RunFolders::Answer* answer = run.answerFor(id, from);
        if (!answer || answer->to != to)
            return folder->renameNoReplace(from, to);
        const int error = answer->error;
        run.forgetAnswer(id, from);
        return error;
    }
    int exchange(const std::string& a, const std::string& b) override { return folder->exchange(a, b); }
    int renameReplacing(const std::string& from, const std::string& to) override {
        return folder->renameReplacing(from, to);
    }
    int link(const std::string& from, const std::string& to) override { return folder->link(from, to); }
    int reserve(const std::string& name, FileStatus::Kind kind) override {
        return folder->reserve(name, kind);
    }
    int remove(const std::string& name, FileStatus::Kind kind) override { return folder->remove(name, kind); }
    int entries(FolderEntries& into) override { return folder->entries(into); }
    int volume(VolumeFacts& into) override { return folder->volume(into); }
    bool liesAt(const std::string& path) override { return folder->liesAt(path); }

  private:
    std::unique_ptr<OpenFolder> folder;
    RunFolders& run;
    const RowId id;
};

} // namespace

RunFolders::RunFolders(FileSystem& disk, Order wantedOrder)
    : fileSystem(disk), order(wantedOrder),
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
        closeAll();
    Place* place = &places[row];
    open(*place, row, path, asRead);
    if (isOutOfDescriptors(place->error) && places.size() > 1) {
        closeAll();
        place = &places[row];
        open(*place, row, path, asRead);
    }
    return *place;
}

void RunFolders::closeAll() {
    places.clear();
    ++closingCount;
}

void RunFolders::open(Place& place, RowId row, const std::string& path, const FileIdentity& asRead) {
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
    if (place.error != 0) {
        place.folder.reset();
        return;
    }
    if (order == Order::byFolder)
        place.isRemote = volumes.of(*place.folder, place.identity).isRemote;
    if (place.isRemote)
        place.folder = std::make_unique<AnsweredFolder>(std::move(place.folder), *this, row);
}

void RunFolders::makeRoomFor(std::size_t folders) {
    if (places.size() + folders > mostOpen)
        closeAll();
}

void RunFolders::answer(RowId row, std::string from, Answer answer) {
    answers[row][std::move(from)] = std::move(answer);
}

RunFolders::Answer* RunFolders::answerFor(RowId row, const std::string& from) {
    const auto folder = answers.find(row);
    if (folder == answers.end())
        return nullptr;
    const auto found = folder->second.find(from);
    return found == folder->second.end() ? nullptr : &found->second;
}

void RunFolders::forgetAnswer(RowId row, const std::string& from) {
    const auto folder = answers.find(row);
    folder->second.erase(from);
    if (folder->second.empty())
        answers.erase(folder);
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
