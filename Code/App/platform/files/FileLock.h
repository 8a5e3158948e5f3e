#pragma once

#include "platform/files/Descriptor.h"

#include <chrono>
#include <optional>
#include <string>

namespace tavrin {

/// An advisory lock on a file of its own, shared with the other processes of the program. Ends with this
/// object, or with the process.
class FileLock {
  public:
    /// Makes the file where it is missing. Absent when it cannot be made, or when another holds the lock for
    /// longer than `patience`. A file system without locks counts as locked.
    static std::optional<FileLock> take(const std::string& path, std::chrono::milliseconds patience);

  private:
    explicit FileLock(Descriptor opened) : file(std::move(opened)) {}

    Descriptor file;
};

} // namespace tavrin
