#include "presentation/history/HistoryValues.h"

#include "platform/files/FileStatus.h"
#include "platform/files/FileSystem.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <unordered_map>

namespace tavrin {

namespace {

/// Of a run that did not come to its end, the disk is asked.
void countChanged(ShownRun& shown, RunRecordReader& record) {
    if (shown.run.end) {
        shown.changed = static_cast<std::size_t>(std::max<std::int64_t>(0, shown.run.end->changed));
        return;
    }
    JournalPlaces(record).visit(JournalPlaces::Which::all, [&](const PlacedItem& placed) {
        shown.changed += placed.place == ItemPlace::done ? 1 : 0;
        shown.withTemporaryName += placed.place == ItemPlace::standIn ? 1 : 0;
    });
}

} // namespace

std::vector<ShownRun> ShownRun::readAll(const RunHistory& history, const ByName& known) {
    std::vector<ShownRun> all;
    for (PastRun& run : history.runs()) {
        ShownRun shown;
        if (const auto before = known.find(run.name); before != known.end() && before->second.run.end)
            shown = before->second;
        const bool isKnown = shown.run.end.has_value();
        shown.run = std::move(run);
        if (!isKnown && shown.isUsable()) {
            RunRecordReader record(shown.run.path);
            record.examine();
            shown.folder = record.commonFolder();
            shown.folderCount = record.folders().size();
            shown.items = record.itemCount();
            shown.recipe = record.recipe();
            countChanged(shown, record);
        } else if (!isKnown) {
            shown.folder = shown.run.folder;
        }
        all.push_back(std::move(shown));
    }
    return all;
}

RunContents RunContents::read(const PastRun& run) {
    RunContents contents;
    RunRecordReader record(run.path);
    record.examine();
    for (const RecordedFolder& folder : record.folders())
        contents.folders.push_back(folder.path);
    contents.items.reserve(record.itemCount());
    record.visitItems([&](const RecordedItem& item, std::size_t) {
        contents.items.push_back(
            {item.folder, item.kind == FileStatus::Kind::folder, item.oldName, item.newName, {}});
        return true;
    });
    return contents;
}

RunContents RunContents::lookedAt(const PastRun& run, const std::function<bool()>& isUnwanted) {
    RunContents contents;
    RunRecordReader record(run.path);
    record.examine();
    contents.items.reserve(record.itemCount());
    contents.folders.resize(record.folders().size());
    std::size_t withoutFolder = 0;
    ItemsNow now(record, run);
    now.breakOffWhen(isUnwanted);
    now.visit([&](const PlacedItem& placed, const WhereNow& where) {
        const RecordedItem& item = placed.item;
        contents.folders[item.folder] = placed.folder;
        contents.items.push_back(
            {item.folder, item.kind == FileStatus::Kind::folder, item.oldName, item.newName, where});
        ++contents.counts[where.now];
        withoutFolder += placed.reason.empty() ? 0 : 1;
    });
    contents.isLookedAt = contents.items.size() == record.itemCount();
    if (withoutFolder == 0 || withoutFolder < contents.items.size())
        return contents;
    FileStatus status;
    contents.isFolderMissing = std::ranges::none_of(contents.folders, [&](const std::string& folder) {
        return FileSystem::sharedInstance().status(folder, status) == 0;
    });
    contents.isFolderAnother = !contents.isFolderMissing;
    return contents;
}

std::size_t RunContents::count(ItemNow now) const {
    const auto entry = counts.find(now);
    return entry == counts.end() ? 0 : entry->second;
}

std::size_t RunContents::lost() const {
    return count(ItemNow::replaced) + count(ItemNow::gone) + count(ItemNow::unclear) +
           count(ItemNow::renamed);
}

std::string RunContents::pathOf(const Item& item) const {
    const std::string& name = item.where && !item.where->name.empty() ? item.where->name : item.newName;
    return joinedPath(folders[item.folder], name);
}

} // namespace tavrin
