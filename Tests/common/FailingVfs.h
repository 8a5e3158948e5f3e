#pragma once

#include "common/Testing.h"

struct sqlite3_vfs;

namespace tavrin::test {

/// A SQLite VFS over the default one whose k-th read or write fails, and those after it if wanted.
class FailingVfs {
  public:
    FailingVfs();
    ~FailingVfs();
    FailingVfs(const FailingVfs&) = delete;
    FailingVfs& operator=(const FailingVfs&) = delete;

    /// For ItemStore::Options::vfs.
    [[nodiscard]] const std::string& name() const { return vfsName; }

    /// The read (or write) number `k`, from 1, counted from this call on, fails; 0 lets all pass.
    void failRead(int k, bool andAllAfter = false);
    /// A full disk refuses later on what would make the file longer.
    void failWrite(int k, bool isFullThen = false);
    [[nodiscard]] int reads() const { return readCount; }
    [[nodiscard]] int writes() const { return writeCount; }

    /// For the shim: whether this call fails.
    bool nextReadFails();
    bool nextWriteFails(bool grows);

  private:
    std::string vfsName;
    std::unique_ptr<sqlite3_vfs> vfs;
    std::atomic<int> readCount{0}, writeCount{0}, failingRead{0}, failingWrite{0};
    std::atomic<bool> failLaterReads{false}, failLaterGrowth{false};
};

} // namespace tavrin::test
