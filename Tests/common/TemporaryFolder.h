#pragma once

#include "platform/files/FileSystem.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin::test {

/// A fresh folder on disk that ends with this object. Names given to the operations are relative to it;
/// folders on the way to a file are made. What cannot be done throws std::runtime_error.
class TemporaryFolder {
  public:
    TemporaryFolder() : TemporaryFolder("") {}
    /// In this folder, which exists; empty: where temporary files go.
    explicit TemporaryFolder(const std::string& place);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, free of links, without a slash at the end.
    [[nodiscard]] const std::string& path() const { return folder; }
    [[nodiscard]] std::string path(std::string_view name) const;

    /// These return the absolute path of what they made.
    std::string write(std::string_view name, std::string_view content = "") const;
    std::string makeFolder(std::string_view name) const;
    std::string link(std::string_view name, const std::string& target) const;
    void remove(std::string_view name) const;

    [[nodiscard]] std::string read(std::string_view name) const;
    /// The kind of what lies there, links not followed; absent when there is nothing.
    [[nodiscard]] std::optional<FileStatus::Kind> kind(std::string_view name) const;
    /// The names in a folder, sorted.
    [[nodiscard]] std::vector<std::string> names(std::string_view of = "") const;
    /// Everything below, by relative path: a file with its content, a folder with a slash behind its name
    /// and nothing, a link with "-> " and its target, anything else with "?".
    [[nodiscard]] std::map<std::string, std::string> tree() const;

  private:
    std::string folder;
};

} // namespace tavrin::test
