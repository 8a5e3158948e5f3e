#pragma once

namespace tavrin {

/// How the tag library tells the user that a file lacks a value.
class TagNotice {
  public:
    virtual ~TagNotice() = default;
    /// Called on the thread that resolves a pattern; returns when the user has seen it, or when nobody is
    /// there to see it.
    virtual void tellThatTagIsNotPresent() = 0;
};

} // namespace tavrin
