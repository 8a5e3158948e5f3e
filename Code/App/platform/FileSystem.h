#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What one statx call tells of an item. Times are seconds since 2001-01-01 00:00:00 UTC.
struct FileStatus {
    enum class Kind : std::uint8_t { file, folder, link, other };
    Kind kind = Kind::file;
    bool immutable = false;
    std::uint64_t size = 0;      ///< logical size in bytes; 0 for a folder
    std::uint64_t allocated = 0; ///< bytes on the medium; 0 for a folder
    double modificationDate = 0;
    double creationDate = 0; ///< birth time where the file system has one, else the modification time
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
};

/// One entry of a folder. `kind` is that of the entry itself, links not followed.
struct FolderEntry {
    std::string name;
    FileStatus::Kind kind;
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
    virtual int entries(std::vector<FolderEntry>& into) = 0;
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
    virtual int makeFolders(const std::string& path) = 0;
    /// Writes beside the target, syncs and renames over it.
    virtual int writeFileAtomically(const std::string& path, std::string_view content) = 0;
    virtual int readFile(const std::string& path, std::string& into, std::size_t limit) = 0;
};

} // namespace tavrin
