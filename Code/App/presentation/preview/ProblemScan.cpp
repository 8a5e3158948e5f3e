#include "presentation/preview/ProblemScan.h"

#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t rowsPerSlice = 500;
/// Longer lists are not looked at: the rename itself refuses all the same what can't be.
constexpr std::size_t mostRows = 250000;

/// The name as it would be written: what is shown as "/" is ":" on the disk.
std::optional<std::string> bytesOf(std::u16string name) {
    text::replaceUnit(name, u'/', u':');
    return text::toBytes(name);
}

void findEqual(const std::vector<ProblemScan::Wish>& wishes, std::vector<RowId>& equal) {
    std::unordered_map<std::string_view, RowId> rowOf;
    rowOf.reserve(wishes.size());
    for (const ProblemScan::Wish& wish : wishes) {
        const auto [other, isNew] = rowOf.emplace(wish.name, wish.row);
        if (isNew)
            continue;
        equal.push_back(wish.row);
        equal.push_back(other->second);
    }
}

void findTaken(const std::string& path, const std::vector<ProblemScan::Wish>& wishes,
               std::vector<ProblemScan::Taken>& taken) {
    std::unique_ptr<OpenFolder> folder;
    FolderEntries entries;
    if (FileSystem::sharedInstance().openFolder(path, folder) != 0 || folder->entries(entries) != 0)
        return;
    std::unordered_set<std::string_view> names;
    names.reserve(entries.size());
    for (const FolderEntry entry : entries)
        names.insert(entry.name);
    for (const ProblemScan::Wish& wish : wishes)
        if (names.contains(wish.name))
            taken.push_back({wish.row, (path == "/" ? path : path + "/") + wish.name});
}

} // namespace

ProblemScan::ProblemScan(const WindowServices& shared, QObject* parent)
    : QObject(parent), services(shared), isStopped(std::make_shared<std::atomic<bool>>()) {
    slices.setObjectName("problemScan");
    slices.setInterval(0);
    connect(&slices, &QTimer::timeout, this, [this] { (this->*current)(); });
}

ProblemScan::~ProblemScan() { *isStopped = true; }

void ProblemScan::start() {
    *isStopped = true;
    isStopped = std::make_shared<std::atomic<bool>>(false);
    rows = services.controller.nodeController().changingIds();
    if (rows.size() > mostRows)
        rows.clear();
    wishes.clear();
    findings = {};
    proceedWith(&ProblemScan::readSlice);
}

ProblemScan::Findings ProblemScan::takeFindings() { return std::exchange(findings, {}); }

void ProblemScan::proceedWith(Slice slice) {
    current = slice;
    next = 0;
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
    compareOnThread();
}

void ProblemScan::takeRow(const PreviewList::Row& row) {
    findings.madeDistinct += row.madeDistinct;
    if (const char* reason = problemOfName(row.finalName)) {
        findings.problems[row.id] = ShownName::tr(reason);
        return;
    }
    if (auto name = bytesOf(row.finalName))
        wishes[std::string(PathParts(row.fullPath).folder)].push_back({row.id, std::move(*name)});
}

ProblemScan::Comparison ProblemScan::compare(const Folders& folders, const std::atomic<bool>& isStopped) {
    Comparison result;
    for (const auto& [path, wishes] : folders) {
        if (isStopped)
            return {};
        findEqual(wishes, result.equal);
        findTaken(path, wishes, result.taken);
    }
    return result;
}

/// One after the other: the scan that is out of date has been told to stop.
void ProblemScan::compareOnThread() {
    thread.start([this, &loop = services.controller.runLoop(), alive = std::weak_ptr(lifetime),
                  folders = std::make_shared<Folders>(std::move(wishes)), stop = isStopped]() mutable {
        auto result = std::make_shared<Comparison>(compare(*folders, *stop));
        folders.reset(); // much to free, so not on the main thread
        loop.post([this, alive, result = std::move(result), stop] {
            if (alive.lock() && !*stop)
                compared(std::move(*result));
        });
    });
    wishes.clear();
}

void ProblemScan::compared(Comparison result) {
    const QString sameAsAnother = tr("same as another item");
    for (const RowId row : result.equal)
        findings.problems[row] = sameAsAnother;
    taken = std::move(result.taken);
    proceedWith(&ProblemScan::judgeSlice);
}

/// A name that an item of the list has is free when its turn comes, or was made distinct.
void ProblemScan::judgeSlice() {
    const QString takenByForeignFile = tr("taken by a file not in the list");
    PreviewList& list = services.controller.nodeController();
    const std::size_t end = std::min(taken.size(), next + rowsPerSlice);
    for (; next < end; ++next)
        if (list.rowWithPath(taken[next].path) == noRow)
            findings.problems.try_emplace(taken[next].row, takenByForeignFile);
    if (next < taken.size())
        return;
    slices.stop();
    taken.clear();
    emit found();
}

} // namespace tavrin
