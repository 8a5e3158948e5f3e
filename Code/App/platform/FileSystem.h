#pragma once

#include "platform/FileStatus.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tavrin {

class FolderEntries;

/// A new file that only grows. Others see that it is held by a lock on it for as long as this object lives.
class AppendFile {
  public:
    virtual ~AppendFile() = default;
    /// The calls return 0 or an errno value.
    virtual int append(std::string_view bytes) = 0;
    /// Comes back when what was appended, and the name of the file, would outlast a loss of power.
    virtual int sync() = 0;
};

/// A folder held open: names are taken relative to it, so a path is resolved once for many items.
class OpenFolder {
  public:
    virtual ~OpenFolder() = default;
    /// The calls return 0 or an errno value and never follow a link at the end.
    virtual int status(const std::string& name, FileStatus& into) = 0;
    /// Renames within this folder; EEXIST when `to` is taken, whoever took it. Falls back to a test and a
    /// plain rename only where the file system refuses the no-replace flag.
    virtual int renameNoReplace(const std::string& from, const std::string& to) = 0;
    /// Entries without "." and "..", sorted by the bytes of their names.
    virtual int entries(FolderEntries& into) = 0;
    virtual int volume(VolumeStatus& into) = 0;
};

/// The file-system calls of the program; bytes in, errno values out. Real in the program, failing on demand
/// in tests. Any thread.
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    static FileSystem& sharedInstance();
    /// Replaces the real one (not owned); null restores it.
    static void setSharedInstance(FileSystem* instance);

    virtual int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) = 0;
    virtual int status(const std::string& path, FileStatus& into) = 0;         ///< link not followed
    virtual int followedStatus(const std::string& path, FileStatus& into) = 0; ///< link followed
    virtual int renameNoReplace(const std::string& from, const std::string& to) = 0;
    virtual int removeFile(const std::string& path) = 0;
    virtual int removeEmptyFolder(const std::string& path) = 0;
    virtual int makeFolders(const std::string& path) = 0;
    /// Writes beside the target, syncs and renames over it.
    virtual int writeFileAtomically(const std::string& path, std::string_view content) = 0;
    /// Makes a file for the user's eyes alone; EEXIST where the name is taken.
    virtual int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) = 0;
    virtual int readFile(const std::string& path, std::string& into, std::size_t limit) = 0;
};

} // namespace tavrin
