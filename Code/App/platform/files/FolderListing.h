#pragma once

namespace tavrin {

class FolderEntries;

/// Reads all entries of the folder behind a readable descriptor, from its start, sorted by the bytes of their
/// names. Returns 0 or an errno value.
int readFolder(int folder, FolderEntries& into);

} // namespace tavrin
