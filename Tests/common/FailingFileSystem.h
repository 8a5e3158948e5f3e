#pragma once

#include "common/Testing.h"
#include "platform/files/FileSystem.h"

namespace tavrin::test {

/// The calls that can be counted and made to fail. Those that change names come last.
enum class FileCall {
    openFolder,
    status,
    access,
    entries,
    makeFolders,
    write,
    sync,
    read,
    removeFile,
    rename,
    exchange,
    replace,
    link,
    reserve,
    remove
};

/// One call: what it is about, and for a rename, an exchange or a link the other name.
struct FileEvent {
    FileCall call;
    std::string folder; ///< or the path of a call by path
    std::string name = {};
    std::string to = {};
    [[nodiscard]] bool changesNames() const { return call >= FileCall::rename; }
    /// Whether the disk is another one after it.
    [[nodiscard]] bool changesDisk() const { return call >= FileCall::makeFolders && call != FileCall::read; }
};

/// Stands before another file system, counts its calls, those of open folders among them, tells of each
/// before it is made, and makes them fail without reaching it. Registers itself as the shared instance while
/// it lives. Any thread.
class FailingFileSystem : public FileSystem {
  public:
    explicit FailingFileSystem(FileSystem& realSystem = FileSystem::sharedInstance()) : real(realSystem) {
        setSharedInstance(this);
    }
    ~FailingFileSystem() override { setSharedInstance(nullptr); }

    /// Fails the call with this number, counted from 1 from now on, once.
    void failCall(std::size_t number, int error);
    /// Fails every call of a kind, or the one with this number among them, counted from 1 from now on.
    void failKind(FileCall call, int error, std::optional<std::size_t> number = std::nullopt);
    /// 0, or the error to fail with. Called on the caller's thread, before the call is made.
    std::function<int(const FileEvent&)> before = [](const FileEvent&) { return 0; };
    /// Folders know names apart from case only.
    bool ignoresCase = false;
    /// Folders seem to lie on another machine.
    bool isRemote = false;
    /// Names of items that seem to be locked, and that the system lets nobody rename.
    std::set<std::string> locked;
    /// Seconds by which all changes seem to be older.
    double ages = 0;
    /// Lets everything pass again and counts anew.
    void reset();

    /// Since the last reset.
    [[nodiscard]] std::size_t callCount(FileCall first, FileCall last) const;
    [[nodiscard]] std::size_t callCount(FileCall call) const { return callCount(call, call); }
    [[nodiscard]] std::size_t callCount() const { return callCount(FileCall::openFolder, FileCall::remove); }
    /// Calls that change names, in folders.
    [[nodiscard]] std::size_t nameChangeCount() const {
        return callCount(FileCall::rename, FileCall::remove);
    }
    /// How many calls were made to fail since the last reset.
    [[nodiscard]] std::size_t failureCount() const;

    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override;
    int status(const std::string& path, FileStatus& into) override {
        return look({FileCall::status, path}, into, [&] { return real.status(path, into); });
    }
    int followedStatus(const std::string& path, FileStatus& into) override {
        return look({FileCall::status, path}, into, [&] { return real.followedStatus(path, into); });
    }
    int mayChangeNamesIn(const std::string& folder) override {
        return pass({FileCall::access, folder}, [&] { return real.mayChangeNamesIn(folder); });
    }
    int removeFile(const std::string& path) override {
        return pass({FileCall::removeFile, path}, [&] { return real.removeFile(path); });
    }
    int makeFolders(const std::string& path) override {
        return pass({FileCall::makeFolders, path}, [&] { return real.makeFolders(path); });
    }
    int writeFileAtomically(const std::string& path, std::string_view content) override {
        return pass({FileCall::write, path}, [&] { return real.writeFileAtomically(path, content); });
    }
    int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) override;
    int readFile(const std::string& path, std::string& into, std::size_t limit) override {
        return pass({FileCall::read, path}, [&] { return real.readFile(path, into, limit); });
    }

    /// Counts a call; the error that it is to fail with, or 0.
    int admit(const FileEvent& event);
    /// Counts a call and makes it, unless it is to fail.
    template <typename Call> int pass(const FileEvent& event, Call call) {
        const int error = admit(event);
        return error != 0 ? error : call();
    }

    template <typename Call> int look(const FileEvent& event, FileStatus& into, Call call) {
        const int error = pass(event, call);
        into.changeDate -= ages;
        into.appendOnly |= locked.contains(event.name);
        into.tellsLocks |= !locked.empty();
        return error;
    }

  private:
    struct Kind {
        std::size_t count = 0;
        int error = 0;
        std::optional<std::size_t> failing; ///< the only one to fail
    };

    FileSystem& real;

    mutable std::mutex mutex; ///< guards what follows
    std::map<FileCall, Kind> kinds;
    std::size_t calls = 0;
    std::size_t failingCall = 0;
    int failingError = 0;
    std::size_t failures = 0;
};

} // namespace tavrin::test
