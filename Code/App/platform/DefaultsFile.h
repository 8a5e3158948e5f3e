#pragma once

#include "support/PropertyValue.h"

#include <optional>
#include <string>

namespace tavrin {

/// The property list file behind the user defaults. A damaged file is never overwritten: it is moved aside
/// under another name. Not locked against other threads.
class DefaultsFile {
  public:
    explicit DefaultsFile(std::string path);

    /// What the file holds; absent when it is missing, damaged (then it has been moved aside, if that was
    /// possible) or unreadable.
    std::optional<PropertyDictionary> load();
    /// Whether the file may be replaced: false after a load that found one which could neither be read nor
    /// moved aside.
    [[nodiscard]] bool mayBeReplaced() const { return replaceable; }
    bool store(const PropertyDictionary& values);
    /// The path of the lock file beside it.
    [[nodiscard]] std::string lockPath() const { return path + ".lock"; }
    /// Makes the folder of the file.
    bool makeFolder();

  private:
    bool moveAside();

    const std::string path;
    bool replaceable = true;
};

} // namespace tavrin
