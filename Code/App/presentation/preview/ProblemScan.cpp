#include "presentation/preview/ProblemScan.h"

#include "platform/FileSystem.h"
#include "platform/FolderEntries.h"
#include "presentation/preview/NameProblems.h"
#include "shell/MainController.h"
#include "support/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t rowsPerSlice = 1000;
/// Longer lists are not looked at: the rename itself refuses all the same what can't be.
constexpr std::size_t mostRows = 250000;

const char* const takenByForeignFile = "taken by a file not in the list";
const char* const sameAsAnother = "same as another item";

/// The name as it would be written: what is shown as "/" is ":" on the disk.
std::optional<std::string> bytesOf(std::u16string name) {
    text::replaceUnit(name, u'/', u':');
    return text::toBytes(name);
}

} // namespace

ProblemScan::ProblemScan(WindowServices shared, Found whenFound)
    : services(shared), found(std::move(whenFound)) {
    slices.setInterval(0);
    connect(&slices, &QTimer::timeout, this, [this] { readSlice(); });
}

ProblemScan::~ProblemScan() = default;

void ProblemScan::start() {
    ++generation;
    reader = std::jthread();
    rows = services.controller.nodeController().changingRows();
    if (rows.size() > mostRows)
        rows.clear();
    next = 0;
    wishes.clear();
    byName.clear();
    problems.clear();
    slices.start();
}

void ProblemScan::readSlice() {
    const std::size_t end = std::min(rows.size(), next + rowsPerSlice);
    const std::span<const RowId> slice(rows.data() + next, end - next);
    for (const PreviewList::Row& row : services.controller.nodeController().rowsWithIds(slice))
        if (row.id != noRow && row.diff)
            takeRow(row);
    next = end;
    if (next < rows.size())
        return;
    slices.stop();
    readFolders();
}

void ProblemScan::takeRow(const PreviewList::Row& row) {
    if (const char* reason = problemOfName(row.finalName)) {
        problems[row.id] = QString::fromUtf8(reason);
        return;
    }
    const auto name = bytesOf(row.finalName);
    if (!name)
        return;
    const std::string folder = row.fullPath.substr(0, std::max<std::size_t>(1, row.fullPath.rfind('/')));
    const auto [other, isNew] = byName[folder].emplace(*name, row.id);
    if (!isNew) {
        problems[row.id] = sameAsAnother;
        problems[other->second] = sameAsAnother;
        return;
    }
    wishes[folder].push_back({row.id, *name});
}

std::vector<std::pair<RowId, std::string>> ProblemScan::takenNames(const Folders& folders,
                                                                   const std::stop_token& stop) {
    std::vector<std::pair<RowId, std::string>> taken;
    for (const auto& [path, wishes] : folders) {
        if (stop.stop_requested())
            return {};
        std::unique_ptr<OpenFolder> folder;
        FolderEntries entries;
        if (FileSystem::sharedInstance().openFolder(path, folder) != 0 || folder->entries(entries) != 0)
            continue;
        for (const Wish& wish : wishes)
            if (entries.contains(wish.name))
                taken.emplace_back(wish.row, (path == "/" ? path : path + "/") + wish.name);
    }
    return taken;
}

void ProblemScan::readFolders() {
    if (wishes.empty()) {
        found(problems);
        return;
    }
    reader =
        std::jthread([this, folders = std::move(wishes), mine = generation](const std::stop_token& stop) {
            auto taken = takenNames(folders, stop);
            QMetaObject::invokeMethod(
                this,
                [this, mine, taken = std::move(taken)] {
                    if (mine == generation)
                        judge(taken);
                },
                Qt::QueuedConnection);
        });
}

/// A name that an item of the list has is free when its turn comes, or was made distinct.
void ProblemScan::judge(const std::vector<std::pair<RowId, std::string>>& taken) {
    PreviewList& list = services.controller.nodeController();
    for (const auto& [row, path] : taken)
        if (list.rowWithPath(path) == noRow)
            problems[row] = takenByForeignFile;
    found(problems);
}

} // namespace tavrin
