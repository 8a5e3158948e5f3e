#pragma once

#include "platform/files/FileSystem.h"

namespace tavrin {

/// The file system of the running system. Stateless. A path or name that holds a NUL is refused with EINVAL.
class PosixFileSystem : public FileSystem {
  public:
    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override;
    int status(const std::string& path, FileStatus& into) override;
    int followedStatus(const std::string& path, FileStatus& into) override;
    int removeFile(const std::string& path) override;
    int makeFolders(const std::string& path) override;
    int writeFileAtomically(const std::string& path, std::string_view content) override;
    int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) override;
    /// Regular files only: EISDIR for a folder, EINVAL for anything else, EFBIG beyond the limit.
    int readFile(const std::string& path, std::string& into, std::size_t limit) override;
};

} // namespace tavrin
