#include "engine/reading/FolderNotes.h"

#include <utility>

namespace tavrin {

namespace {

constexpr double timeToSettle = 3; // seconds; the coarsest clock of a file system has two
constexpr std::size_t mostBytes = 16u << 20;
constexpr std::size_t bytesOfNote = 96;

} // namespace

void FolderNotes::put(RowId folder, const FileStatus& before, std::size_t rows, const Names& others) {
    if (const auto former = notes.find(folder); former != notes.end()) {
        bytes -= bytesOfNote + former->second.others.size();
        notes.erase(former);
    }
    std::size_t size = bytesOfNote + others.size();
    for (const std::string_view name : others)
        size += name.size();
    if (secondsSince2001() - before.changeDate < timeToSettle || bytes + size > mostBytes)
        return;
    Note note{before.identity, before.changeDate, rows, {}};
    note.others.reserve(size - bytesOfNote);
    for (const std::string_view name : others)
        (note.others += name) += '\0';
    bytes += size;
    notes.emplace(folder, std::move(note));
}

void FolderNotes::noteLocked(RowId item, bool isLocked) {
    if (wasLocked(item) == isLocked)
        return;
    if (item >= locked.size())
        locked.resize(item + std::size_t{1});
    locked[item] = isLocked;
}

FolderNotes::Answer FolderNotes::find(RowId folder, const FileStatus& now, std::size_t rows) const {
    const auto found = notes.find(folder);
    if (found == notes.end())
        return {};
    const Note& note = found->second;
    if (note.identity != now.identity || note.changeDate != now.changeDate || note.rows != rows)
        return {};
    Answer answer{true};
    for (std::string_view left = note.others; !left.empty();) {
        const std::size_t end = left.find('\0');
        answer.names.push_back(left.substr(0, end));
        left.remove_prefix(end + 1);
    }
    return answer;
}

} // namespace tavrin
