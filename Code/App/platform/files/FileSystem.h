#pragma once

#include "platform/files/FileStatus.h"

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

/// What is to be known of the file system that a folder lies on.
struct VolumeFacts {
    std::uint64_t id = 0;         ///< f_fsid; 0 where it has none
    std::size_t nameLimit = 0;    ///< the longest name, in bytes
    bool inodesMayChange = false; ///< FUSE: inode numbers may be given anew at any time
    bool countsUnits = false;     ///< names are, or may be, limited by UTF-16 units instead of bytes
    bool ignoresCase = false;     ///< names that differ in case alone are one; false where that is not known
    bool isRemote = false;        ///< a call may ask another machine, or a program (FUSE)
    bool forbidsSigns = false;    ///< takes no name with a control character or one of "*:<>?\|
};

/// A folder held open: names are taken relative to it, so a path is resolved once for many items, and what
/// takes the folder's place meanwhile is not touched. All calls return 0 or an errno value and never follow a
/// link; a name that is not a plain one gives EINVAL.
class OpenFolder {
  public:
    virtual ~OpenFolder() = default;
    /// "." is the folder itself.
    virtual int status(const std::string& name, FileStatus& into) = 0;
    /// EEXIST when `to` is taken, whoever took it; EOPNOTSUPP where the file system can't refuse a taken name
    /// (see UnflaggedRename).
    virtual int renameNoReplace(const std::string& from, const std::string& to) = 0;
    /// Lets two items take each other's names at once; EOPNOTSUPP where the file system can't.
    virtual int exchange(const std::string& a, const std::string& b) = 0;
    /// Replaces what bears the name `to`. Only for a name that is known to be free or reserved.
    virtual int renameReplacing(const std::string& from, const std::string& to) = 0;
    /// Gives a file a second name; EEXIST when that is taken.
    virtual int link(const std::string& from, const std::string& to) = 0;
    /// Makes an empty file or folder; EEXIST when the name is taken.
    virtual int reserve(const std::string& name, FileStatus::Kind kind) = 0;
    /// Removes a name; a folder only if it is empty.
    virtual int remove(const std::string& name, FileStatus::Kind kind) = 0;
    /// Entries without "." and "..", sorted by the bytes of their names.
    virtual int entries(FolderEntries& into) = 0;
    virtual int volume(VolumeFacts& into) = 0;
    /// Whether this is the very folder that the path names, without any link on the way. An absolute path
    /// without "." and "..".
    virtual bool liesAt(const std::string& path) = 0;
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
    /// 0 where the program may change the names in a folder, else EACCES, EPERM, EROFS or what keeps it from
    /// finding out.
    virtual int mayChangeNamesIn(const std::string& folder) = 0;
    virtual int removeFile(const std::string& path) = 0;
    virtual int makeFolders(const std::string& path) = 0;
    /// Writes beside the target, syncs and renames over it.
    virtual int writeFileAtomically(const std::string& path, std::string_view content) = 0;
    /// Makes a file for the user's eyes alone; EEXIST where the name is taken.
    virtual int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) = 0;
    virtual int readFile(const std::string& path, std::string& into, std::size_t limit) = 0;
    /// Whether something is there that can be looked at; a link counts as what it leads to.
    [[nodiscard]] bool exists(const std::string& path);
    /// Whether nothing has this name. What can't be looked at may be there.
    [[nodiscard]] bool isAbsent(const std::string& path);
    /// Writes a file that is there only when it is whole; EEXIST when the name is taken.
    [[nodiscard]] int writeNewFile(const std::string& path, std::string_view content);
    /// Renames an item within its folder without ever replacing another: EEXIST when the name is taken. Both
    /// are paths; EXDEV when they are not in one folder.
    int renameNoReplace(std::string from, std::string to);
    /// Lets the items at two paths of one folder take each other's place, at once where the file system can;
    /// else in three such renames by way of `first` with ".old" behind it. Whatever fails, both are still
    /// there.
    int exchangeNames(std::string first, std::string second);
};

/// Reads a regular file that lies inside a folder: no component below the folder may be a link, so that what
/// is read cannot lie anywhere else. Returns 0 or an errno value: ELOOP or ENOTDIR for a link on the way,
/// EISDIR for a folder, EINVAL for what is no regular file either, EFBIG beyond `limit` bytes.
[[nodiscard]] int readContainedFile(const std::string& folder, std::string_view relativePath,
                                    std::string& into, std::size_t limit);

/// Makes the folder, and what is missing above it, for the user's eyes alone. What is there stays as it is.
/// Returns 0 or an errno value. Any thread.
int makePrivateFolder(const std::string& path);

} // namespace tavrin
