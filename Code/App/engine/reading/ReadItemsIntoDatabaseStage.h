#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "engine/reading/FolderAliases.h"
#include "engine/reading/ItemSelection.h"
#include "engine/reading/NestedItems.h"
#include "platform/files/FileSystem.h"
#include "platform/files/KnownVolumes.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/SmallEntities.h"
#include "store/rows/NodeRow.h"
#include "store/sources/SourceLooks.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Turns source items into rows: one for each path on the list and, when subfolders are wanted, one for each
/// visible thing below, as far as the engine's selection lets them take part. Reads only what has not been
/// read before, and nothing a second time under another path.
class ReadItemsIntoDatabaseStage final : public ProcessingStage {
  public:
    explicit ReadItemsIntoDatabaseStage(EngineState& owner);

    /// False when there is nothing on the list.
    bool process() override;
    [[nodiscard]] std::string className() const override { return "ReadItemsIntoDatabaseStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    class FolderWalk;

    /// What decides how a source item is read.
    struct Kind {
        bool isFileOrBundle = true;
        bool isInvisible = false;
        FileStatus status; ///< the item's own; without identity where there is none
        int error = 0;     ///< why nothing of this is known: an errno value
        [[nodiscard]] bool isLink() const { return status.kind == FileStatus::Kind::link; }
    };
    /// A folder whose rows are being made.
    struct Place {
        RowId row = noRow;
        FileIdentity identity;
        bool isShared = false; ///< with rows that stand for it under other paths
    };

    /// After the items of the list that it lies in.
    void readInTurn(const std::vector<SourceItem>& items, std::size_t place, std::vector<bool>& done);
    void readSourceItem(const SourceItem& item, std::size_t place);
    /// Whether the item on the list does, by all that its path and a look at it tell.
    bool takesPart(const SourceItem& item, std::size_t place, const Kind& kind);
    /// It lies in a folder of the list that is not entered, or in one below that.
    bool liesInExcluded(const std::string& path, std::size_t place);
    /// The path of an item on the list as globs see it.
    std::string_view pathForGlobs(std::string_view path, std::size_t place) const;
    void forgetItemsRemovedSince(const std::vector<SourceItem>& items);
    void readFolder(const SourceItem& item, const Kind& kind, std::size_t place, bool takesPart);
    Kind kindOf(const SourceItem& item, bool holdsOthers);
    /// 0 or an errno value.
    int statusOf(const SourceItem& item, std::string_view name, FileStatus& into);
    void openFolderAt(std::string_view path);
    /// The row that stands for a folder, made if there is none; so are those up to the folder of the list
    /// that it lies in, since what moves takes along all that lies between.
    RowId rowForFolder(std::string_view path, const FileIdentity& identity);
    Place placeIn(RowId folderRow, const FileIdentity& identity);
    /// False if it has a row already, under another path; then there is nothing more to do for it.
    bool createRootItem(const std::string& path, bool folder, const FileStatus& status);
    /// noRow likewise.
    RowId createOneFile(const Place& place, std::string_view folderPath, std::string_view name, bool root,
                        bool folder, const SeenItem& seen);
    void leaveOut(std::string_view folderPath, std::string_view name, RowId sameItem);
    void tellWhatWasLeftOut();
    void addReadingError(bool isFolder, int error, const std::string& path);

    const ItemSelection& selection;
    bool shouldProcessSubfolders = false;
    SourceLooks looks;                 ///< from when the items were added
    std::optional<NestedItems> nested; ///< where items of the list may lie in others
    std::string_view folderAbove;      ///< outermost one on the list that holds the one in hand; or none
    std::string lastFolderChecked;     ///< for `liesInExcluded`
    bool lastFolderIsExcluded = false;
    int rowsMade = 0;
    KnownVolumes volumes;
    Place lastParentFolder;
    std::string lastParentFolderPath;
    std::optional<FolderAliases> aliases; ///< made when the first item is read

    struct LeftOut {
        std::size_t count = 0;
        std::string firstName;
        std::string otherFolder; ///< the one that holds them under its own path
    };
    std::map<std::string, LeftOut> leftOut; ///< by the path of the folder

    /// The folder of the last source item, held open because the next is likely to lie there too.
    std::string openPath;
    std::unique_ptr<OpenFolder> folder; ///< null when it can't be opened
    int folderError = 0;                ///< why, then
    FileIdentity folderIdentity;
    HiddenNames hiddenNames; ///< of that folder
};

} // namespace tavrin
