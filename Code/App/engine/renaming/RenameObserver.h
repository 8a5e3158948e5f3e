#pragma once

#include <string_view>

namespace tavrin {

/// Told of each item of a run as soon as it bears another name, in the order of the renames; members of a
/// ring one after the other when all have theirs. On the worker's thread, which waits meanwhile.
class RenameObserver {
  public:
    virtual ~RenameObserver() = default;
    /// Names in the bytes of the file system. `to` is the name that it has got, which where a step failed in
    /// the middle is not the planned one.
    virtual void itemWasRenamed(std::string_view from, std::string_view to) = 0;
};

} // namespace tavrin
