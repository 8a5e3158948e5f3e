#pragma once

#include "platform/FileSystem.h"

#include <vector>

namespace tavrin {

/// Reads all entries of the folder behind a readable descriptor, from its start, sorted by the bytes of their
/// names. Returns 0 or an errno value.
int readFolder(int folder, std::vector<FolderEntry>& into);

/// Sorts by the bytes of the names.
void sortByName(std::vector<FolderEntry>& entries);

} // namespace tavrin
