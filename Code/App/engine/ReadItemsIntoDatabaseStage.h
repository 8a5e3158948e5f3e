#pragma once

#include "engine/ProcessingStage.h"
#include "platform/FileSystem.h"
#include "platform/HiddenNames.h"
#include "store/NodeRow.h"
#include "store/SourceItem.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Turns source items into rows: one for each path on the list and, when subfolders are wanted, one for each
/// visible thing below. Reads only what has not been read before.
class ReadItemsIntoDatabaseStage final : public ProcessingStage {
  public:
    explicit ReadItemsIntoDatabaseStage(RenameEngine& owner) : ProcessingStage(owner) {}

    /// False when there is nothing on the list.
    bool process() override;
    [[nodiscard]] std::string className() const override { return "ReadItemsIntoDatabaseStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    friend class FolderWalk;

    /// What decides how a source item is read.
    struct Kind {
        bool isFileOrBundle = true;
        bool isInvisible = false;
        SeenItem seen;
    };

    void readSourceItem(const SourceItem& item);
    void forgetItemsRemovedSince(const std::vector<SourceItem>& items);
    void readFolder(const SourceItem& item, const Kind& kind);
    Kind kindOf(const std::string& path);
    void openFolderAt(std::string_view path);
    /// The row that stands for a folder, made if there is none.
    RowId rowForFolder(std::string_view path, const FileIdentity& identity);
    RowId createRootItem(const std::string& path, bool folder, const SeenItem& seen);
    RowId createOneFile(RowId parent, std::string_view folderPath, std::string_view name, bool root,
                        bool folder, const SeenItem& seen);

    bool shouldProcessSubfolders = false;
    int rowsMade = 0;
    RowId lastParentFolder = noRow;
    std::string lastParentFolderPath;

    /// The folder of the last source item, held open because the next is likely to lie there too.
    std::string openPath;
    std::unique_ptr<OpenFolder> folder; ///< null when it can't be opened
    FileIdentity folderIdentity;
    HiddenNames hiddenNames; ///< of that folder
};

} // namespace tavrin
