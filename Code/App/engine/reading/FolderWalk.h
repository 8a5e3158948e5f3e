#pragma once

#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "platform/files/FolderEntries.h"
#include "platform/metadata/FileManager.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Goes through everything below a source item, a folder before its contents and each subfolder to its end
/// before the next entry, and has a row made for what is visible. Links are never followed, bundles never
/// entered, and no folder is entered inside itself.
class FolderWalk {
  public:
    FolderWalk(ReadItemsIntoDatabaseStage& owner, bool sourceIsInvisible)
        : stage(owner), isSourceInvisible(sourceIsInvisible) {}

    /// False if the folder itself could not be read.
    bool run(const std::string& sourcePath);

  private:
    /// A folder on the way down, with what is left to do in it.
    struct Level {
        std::string path;
        ReadItemsIntoDatabaseStage::Place place;
        FolderEntries entries;
        std::size_t next = 0;
        HiddenNames hidden;
    };

    /// `row` stands for the folder; none yet for a source item that has none of its own.
    void enter(std::string path, RowId row);
    /// 0 or an errno value.
    int read(Level& level);
    [[nodiscard]] bool isInsideItself(const Level& level) const;
    void readNextEntry();
    void readFolderEntry(const FolderEntry& entry);
    /// The kind that a listing leaves open; an entry that is no more, or that can't be looked at, is none.
    [[nodiscard]] std::optional<FileStatus::Kind> kindOf(const FolderEntry& entry);
    /// Has a row made; noRow where the item has one under another path.
    RowId createRow(const FolderEntry& entry, bool isFolder);
    void report(const std::string& message, const std::string& path);

    ReadItemsIntoDatabaseStage& stage;
    const bool isSourceInvisible;
    std::vector<Level> levels;
};

} // namespace tavrin
