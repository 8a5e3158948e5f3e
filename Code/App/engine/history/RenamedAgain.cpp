#include "engine/history/RenamedAgain.h"

#include "engine/history/RunHistory.h"
#include "engine/history/RunRecordReader.h"
#include "support/text/PathParts.h"

namespace tavrin {

namespace {

constexpr std::size_t mostHits = 1'000'000;

std::string keyOf(std::string_view path, std::uint64_t inode) {
    return std::to_string(inode).append(1, ' ').append(path);
}

} // namespace

const RenamedAgain::Hit* RenamedAgain::find(std::string_view path, std::uint64_t inode) {
    if (!std::exchange(isRead, true))
        read();
    const auto hit = hits.find(keyOf(path, inode));
    return hit == hits.end() ? nullptr : &hit->second;
}

void RenamedAgain::read() {
    for (const PastRun& run : RunHistory(folder).runs()) {
        if (run.name <= after)
            return;
        if (!run.problem.empty() || run.isUndone)
            continue;
        RunRecordReader reader(run.path);
        reader.examine();
        reader.visitItems([&](const RecordedItem& item, std::size_t) {
            hits.try_emplace(keyOf(joinedPath(reader.folders()[item.folder].path, item.oldName), item.inode),
                             Hit{run.name, item.newName});
            return hits.size() < mostHits;
        });
    }
}

} // namespace tavrin
