#include "engine/renaming/RenamesAhead.h"

#include "engine/naming/NameProblems.h"
#include "engine/renaming/NameOnDisk.h"
#include "platform/processes/Parallel.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace tavrin {

namespace {

constexpr std::size_t callsAtATime = 16;
/// A run that is to stop has come to all of them soon.
constexpr std::size_t mostJobs = 8 * callsAtATime;

} // namespace

std::size_t RenamesAhead::run(std::span<const RowId> next) {
    tried.clear();
    if (const std::size_t local = localItems(next))
        return local;
    folders.makeRoomFor(RunFolders::mostAhead);
    std::vector<Job> jobs;
    std::unordered_set<RowId> parents;
    std::size_t count = 0;
    for (; count < next.size() && jobs.size() < mostJobs; ++count) {
        if (!takes(next[count]))
            continue;
        if (!parents.contains(item.parentRow()) && parents.size() == RunFolders::mostAhead)
            break;
        const std::size_t closings = folders.closings();
        RunFolders::Place& place = folders.at(item.parentRow(), item.folder(), item.folderAsRead());
        if (folders.closings() != closings) { // for want of descriptors: those are renamed in their turn
            jobs.clear();
            parents.clear();
        }
        parents.insert(item.parentRow());
        if (place.folder && place.isRemote)
            jobs.push_back({item.id(), item.parentRow(), place.folder.get(), item.component(),
                            item.newComponent(), item.seen()});
    }
    try {
        inParallel(jobs.size(), callsAtATime, [&](std::size_t number) {
            if (!isToStop()) // a call may take seconds
                perform(jobs[number]);
        });
    } catch (const std::exception& failure) {
        // What has been renamed counts all the same; the others are come to in their turn.
        debugLog("renames ahead were broken off: {}", failure.what());
    }
    for (Job& job : jobs) {
        if (!job.isTried)
            continue;
        tried.insert(job.id);
        folders.answer(job.parent, std::move(job.from), std::move(job.answer));
    }
    return std::max<std::size_t>(count, 1);
}

std::size_t RenamesAhead::localItems(std::span<const RowId> next) {
    item.moveTo(next.front());
    if (folders.at(item.parentRow(), item.folder(), item.folderAsRead()).isRemote)
        return 0;
    const auto end =
        std::ranges::find_if(next, [this](RowId id) { return context.row(id).parent != item.parentRow(); });
    return static_cast<std::size_t>(end - next.begin());
}

bool RenamesAhead::takes(RowId id) {
    const NodeRow row = context.row(id);
    const bool isAlone = row.canBeRenamedIndependently && !row.mustBeSwapped &&
                         row.mustBeRenamedBefore == noRow && row.cannotBeRenamedBefore == noRow;
    // What lies in a folder is reached by its path.
    const bool isKnownFile = row.identity().isKnown() && row.kind == FileStatus::Kind::file;
    if (!row.diff || !isAlone || !isKnownFile)
        return false;
    item.moveTo(id);
    const std::string& to = item.newComponent();
    return nameOnDisk::isPossible(to) && item.folder().size() + 1 + to.size() <= longestPath &&
           isPlain(id, item.folder(), item.component());
}

/// Any thread.
void RenamesAhead::perform(Job& job) {
    if (job.folder->status(job.from, job.answer.look) != 0 ||
        job.answer.look.identity.inode != job.seen.identity.inode || job.answer.look.kind != job.seen.kind)
        return;
    job.answer.to = job.to;
    job.answer.error = job.folder->renameNoReplace(job.from, job.to);
    job.isTried = true; // an exception is no answer
}

} // namespace tavrin
