#include "store/rows/FolderTable.h"

#include <utility>

namespace tavrin {

std::uint32_t FolderTable::add(RowId row, std::string path) {
    std::uint32_t number;
    if (unused.empty()) {
        folders.emplace_back();
        number = static_cast<std::uint32_t>(folders.size());
    } else {
        number = unused.back();
        unused.pop_back();
    }
    Folder& folder = at(number);
    folder.row = row;
    folder.path = std::move(path);
    numbers.emplace(row, number);
    byPath.emplace(folder.path, number);
    return number;
}

void FolderTable::remove(std::uint32_t number) {
    Folder& folder = at(number);
    numbers.erase(folder.row);
    if (const auto found = byPath.find(folder.path); found != byPath.end() && found->second == number)
        byPath.erase(found);
    folder = Folder{};
    unused.push_back(number);
}

void FolderTable::clear() {
    byPath.clear();
    numbers.clear();
    unused.clear();
    folders.clear();
}

std::uint32_t FolderTable::numberOfRow(RowId row) const {
    const auto found = numbers.find(row);
    return found == numbers.end() ? 0 : found->second;
}

FolderTable::Folder* FolderTable::ofRow(RowId row) {
    const std::uint32_t number = numberOfRow(row);
    return number == 0 ? nullptr : &at(number);
}

FolderTable::Folder* FolderTable::withPath(std::string_view path) {
    const auto found = byPath.find(path);
    return found == byPath.end() ? nullptr : &at(found->second);
}

} // namespace tavrin
