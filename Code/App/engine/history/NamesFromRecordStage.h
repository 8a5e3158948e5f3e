#pragma once

#include "engine/history/JournalPlaces.h"
#include "engine/history/RunHistory.h"
#include "engine/history/TakeBack.h"
#include "engine/pipeline/ProcessingStage.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// Makes a row for each item of a record that is to get another name: where it is now, what it is, and the
/// name that it is to have. What can't be done is recorded as a failure.
class NamesFromRecordStage final : public ProcessingStage {
  public:
    /// Adds to `purpose` what the run that follows has to know.
    NamesFromRecordStage(EngineState& owner, TakeBackRequest whatToDo, std::shared_ptr<RunPurpose> whatFor);

    bool process() override;
    [[nodiscard]] std::string className() const override { return "NamesFromRecordStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Reading the record..."; }

  private:
    /// An item that is to move, as far as its row has to know it.
    struct Mover {
        std::string folder;
        std::string name;
        std::string wanted;
        std::string former;
        SeenItem seen;
        FileIdentity ofFolder;
    };
    struct FolderRow {
        RowId id = noRow;
        bool isMoving = false; ///< or lies in one that is
    };

    [[nodiscard]] bool goesOn() const;
    [[nodiscard]] bool isToMove(const PlacedItem& placed);
    [[nodiscard]] Mover moverOf(const PlacedItem& placed) const;
    void makeRow(const Mover& mover);
    FolderRow rowForFolder(const std::string& path, const FileIdentity& identity);
    void clearLeftover(JournalPlaces& places);
    void fail(const PlacedItem& placed);
    [[nodiscard]] std::string reasonFor(const PlacedItem& placed);
    [[nodiscard]] const std::string& wantedName(const RecordedItem& item) const {
        return request.chosen.toNewNames ? item.newName : item.oldName;
    }
    [[nodiscard]] bool isOnList(const std::string& path) const;

    TakeBackRequest request;
    std::shared_ptr<RunPurpose> purpose;
    RenamedAgain renamedAgain;
    std::unordered_map<std::string, FolderRow> folderRows; ///< by present path
    std::size_t rowsMade = 0;
    bool listHasItems = false;
};

} // namespace tavrin
