#include "actions/list/SharedRenameLists.h"

#include "platform/files/FileStatus.h"
#include "platform/files/FileSystem.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <vector>

namespace tavrin {

namespace {

/// The coarsest times of file systems in use have steps of two seconds.
constexpr double coarsestStep = 2.0;

struct Entry {
    SharedRenameLists::Source source;
    std::weak_ptr<const RenameList> list;
};

struct Entries {
    std::mutex mutex;
    std::vector<Entry> all;
};

Entries& entries() {
    static Entries shared;
    return shared;
}

double now() {
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return since1970.count() - static_cast<double>(referenceDateSince1970);
}

bool areSame(const SharedRenameLists::Source& a, const SharedRenameLists::Source& b) {
    return a.path == b.path && a.ignoreCase == b.ignoreCase && a.status.identity == b.status.identity &&
           a.status.size == b.status.size && a.status.modificationDate == b.status.modificationDate;
}

} // namespace

std::optional<SharedRenameLists::Source> SharedRenameLists::sourceFor(const std::string& path,
                                                                      bool ignoreCase) {
    Source source{path, ignoreCase, {}, false};
    if (FileSystem::sharedInstance().followedStatus(path, source.status) != 0)
        return std::nullopt;
    source.isSettled = now() - source.status.modificationDate > coarsestStep;
    return source;
}

std::shared_ptr<const RenameList> SharedRenameLists::find(const Source& source) {
    const std::lock_guard lock(entries().mutex);
    for (const Entry& entry : entries().all)
        if (areSame(entry.source, source))
            return entry.list.lock();
    return nullptr;
}

void SharedRenameLists::offer(const Source& source, const std::shared_ptr<const RenameList>& list) {
    const auto after = sourceFor(source.path, source.ignoreCase);
    if (!source.isSettled || !after || !areSame(source, *after))
        return;
    const std::lock_guard lock(entries().mutex);
    std::erase_if(entries().all,
                  [&](const Entry& entry) { return entry.list.expired() || areSame(entry.source, source); });
    entries().all.push_back({source, list});
}

} // namespace tavrin
