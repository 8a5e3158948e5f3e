#pragma once

#include "platform/FileSystem.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>

namespace tavrin::test {

/// The calls that can be counted and made to fail.
enum class FileCall { openFolder, status, entries, rename, remove, makeFolders, write, sync, read };

/// Stands before another file system, counts its calls, those of open folders among them, and makes them
/// fail without reaching it. Registers itself as the shared instance while it lives. Any thread.
class FailingFileSystem : public FileSystem {
  public:
    explicit FailingFileSystem(FileSystem& real = FileSystem::sharedInstance());
    ~FailingFileSystem() override;

    /// Fails the call with this number, counted from 1 from now on, once.
    void failCall(std::size_t number, int error);
    /// Fails every call of a kind, or the one with this number among them, counted from 1 from now on.
    void failKind(FileCall call, int error, std::optional<std::size_t> number = std::nullopt);
    /// Lets everything pass again and counts anew.
    void reset();

    /// Since the last reset.
    [[nodiscard]] std::size_t callCount() const;
    [[nodiscard]] std::size_t callCount(FileCall call) const;
    /// How many calls were made to fail since the last reset.
    [[nodiscard]] std::size_t failureCount() const;

    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override;
    int status(const std::string& path, FileStatus& into) override;
    int followedStatus(const std::string& path, FileStatus& into) override;
    int renameNoReplace(const std::string& from, const std::string& to) override;
    int removeFile(const std::string& path) override;
    int removeEmptyFolder(const std::string& path) override;
    int makeFolders(const std::string& path) override;
    int writeFileAtomically(const std::string& path, std::string_view content) override;
    int makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) override;
    int readFile(const std::string& path, std::string& into, std::size_t limit) override;

    /// Counts a call; the error that it is to fail with, or 0.
    int admit(FileCall call);

  private:
    struct KindFailure {
        int error = 0;
        std::optional<std::size_t> number;
        std::size_t seen = 0;
    };

    FileSystem& real;

    mutable std::mutex mutex; ///< guards what follows
    std::array<std::size_t, 9> counts{};
    std::array<KindFailure, 9> kindFailures{};
    std::size_t seen = 0;
    std::size_t failingCall = 0;
    int failingError = 0;
    std::size_t failures = 0;
};

} // namespace tavrin::test
