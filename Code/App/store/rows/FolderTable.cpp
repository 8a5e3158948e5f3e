#include "store/rows/FolderTable.h"

#include <utility>

namespace tavrin {

void FolderTable::add(RowId row, std::string path) {
    Folder& folder = folders[row];
    folder.row = row;
    folder.path = std::move(path);
    byPath.emplace(folder.path, &folder);
}

void FolderTable::remove(RowId row) {
    const auto folder = folders.find(row);
    if (folder == folders.end())
        return;
    if (const auto found = byPath.find(folder->second.path);
        found != byPath.end() && found->second == &folder->second)
        byPath.erase(found);
    folders.erase(folder);
}

FolderTable::Folder* FolderTable::ofRow(RowId row) {
    const auto found = folders.find(row);
    return found == folders.end() ? nullptr : &found->second;
}

FolderTable::Folder* FolderTable::withPath(std::string_view path) {
    const auto found = byPath.find(path);
    return found == byPath.end() ? nullptr : found->second;
}

} // namespace tavrin
