#pragma once

#include "platform/FileSystem.h"

#include <functional>
#include <string>
#include <vector>

namespace tavrin::test {

/// One call that is to rename something.
struct WatchedRename {
    std::string folder;
    std::string from;
    std::string to;
    bool byPath = false;
};

/// Stands before the real file system, tells the test of each rename before it happens and lets it refuse.
/// Can make a folder ignore case. Registers itself as the shared instance while it lives.
class RenameWatch : public FileSystem {
  public:
    RenameWatch();
    ~RenameWatch() override;

    /// 0, or the error to fail with. Called on the worker.
    std::function<int(const WatchedRename&)> before = [](const WatchedRename&) { return 0; };
    std::vector<WatchedRename> seen;
    bool ignoresCase = false;

    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override;
    int status(const std::string& path, FileStatus& into) override;
    int followedStatus(const std::string& path, FileStatus& into) override;
    int renameNoReplace(const std::string& from, const std::string& to) override;
    int removeFile(const std::string& path) override { return real.removeFile(path); }
    int removeEmptyFolder(const std::string& path) override { return real.removeEmptyFolder(path); }
    int makeFolders(const std::string& path) override { return real.makeFolders(path); }
    int writeFileAtomically(const std::string& path, std::string_view content) override {
        return real.writeFileAtomically(path, content);
    }
    int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) override {
        return real.makeAppendFile(path, into);
    }
    int readFile(const std::string& path, std::string& into, std::size_t limit) override {
        return real.readFile(path, into, limit);
    }

    int rename(const WatchedRename& rename);
    /// The path of what bears this name in the folder, apart from case where that is ignored.
    std::string resolved(const std::string& folder, const std::string& name);

  private:
    FileSystem& real;
};

} // namespace tavrin::test
