#pragma once

namespace tavrin {

/// A rename that refuses to replace: renameat2 with its no-replace flag, or a stand-in for it. Returns 0 or
/// an errno value.
using FlaggedRename = int (*)(int fromFolder, const char* from, int toFolder, const char* to);

int kernelRenameNoReplace(int fromFolder, const char* from, int toFolder, const char* to);

/// Renames without ever replacing: EEXIST when `to` is taken, by a dangling link too. Only where the file
/// system refuses the flag itself is the name tested first and a plain rename made. Returns 0 or an errno
/// value.
int renameNoReplaceAt(int fromFolder, const char* from, int toFolder, const char* to,
                      FlaggedRename flagged = kernelRenameNoReplace);

} // namespace tavrin
