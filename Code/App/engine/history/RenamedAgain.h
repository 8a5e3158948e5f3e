#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin {

/// Tells which later run has given an item yet another name. Reads the records of later runs when it is first
/// asked.
class RenamedAgain {
  public:
    struct Hit {
        std::string run;
        std::string newName;
    };

    /// `folder` is that of the records; `run` the one that later is meant of.
    RenamedAgain(std::string historyFolder, std::string runName)
        : folder(std::move(historyFolder)), after(std::move(runName)) {}

    /// Null where no later run has to do with the item.
    [[nodiscard]] const Hit* find(std::string_view path, std::uint64_t inode);

  private:
    void read();

    std::string folder;
    std::string after;
    bool isRead = false;
    std::unordered_map<std::string, Hit> hits; ///< by inode and path
};

} // namespace tavrin
