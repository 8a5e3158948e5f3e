#pragma once

#include "platform/FolderEntries.h"
#include "platform/HiddenNames.h"
#include "store/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class ReadItemsIntoDatabaseStage;

/// Goes through everything below a source item, a folder before its contents and each subfolder to its end
/// before the next entry, and has a row made for what is visible. Links are never followed, bundles never
/// entered, and no folder is entered inside itself.
class FolderWalk {
  public:
    FolderWalk(ReadItemsIntoDatabaseStage& owner, bool sourceIsInvisible)
        : stage(owner), isSourceInvisible(sourceIsInvisible) {}

    void run(const std::string& sourcePath);

  private:
    /// A folder on the way down, with what is left to do in it.
    struct Level {
        std::string path;
        RowId row = noRow;
        FolderEntries entries;
        std::size_t next = 0;
        HiddenNames hidden;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
    };

    void enter(std::string path, RowId row);
    /// 0 or an errno value.
    int read(Level& level);
    [[nodiscard]] bool isInsideItself(const Level& level) const;
    void readNextEntry();
    void readFolderEntry(std::string_view name, bool isLink);
    void report(const std::string& message, const std::string& path);

    ReadItemsIntoDatabaseStage& stage;
    const bool isSourceInvisible;
    std::vector<Level> levels;
};

} // namespace tavrin
