#pragma once

#include "platform/files/Descriptor.h"
#include "support/values/PropertyValue.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

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

/// The property list file behind the user defaults. A damaged file is never overwritten: it is moved aside
/// under another name. A link stays one: what it leads to is read and written. Not locked against other
/// threads.
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
    /// Copies the file as it is to its name with ".saved-" and `label` behind it, or with a number behind
    /// that where something else has this name. The path of the copy, empty where there is nothing to copy;
    /// or an errno value.
    [[nodiscard]] std::variant<std::string, int> copyAside(std::string_view label) const;
    /// The path of the lock file beside it.
    [[nodiscard]] std::string lockPath() const { return path + ".lock"; }
    /// Makes the folder of the file.
    bool makeFolder();

  private:
    bool moveAside() const;

    const std::string path;
    bool replaceable = true;
};

} // namespace tavrin
