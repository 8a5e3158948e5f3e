#pragma once

#include "engine/ProcessingStage.h"
#include "store/NodeRow.h"

#include <string>
#include <string_view>

namespace tavrin {

/// Writes the old and new names of all shown items to a text file, in UTF-8 and sorted by name.
class SaveAsFileListStage final : public ProcessingStage {
  public:
    explicit SaveAsFileListStage(RenameEngine& owner) : ProcessingStage(owner) {}

    /// Where to write, in bytes. An existing file goes first, even if writing later fails.
    void setPath(std::string newPath) { path = std::move(newPath); }
    void setShouldIncludeOnlyAffectedFiles(bool flag) { shouldIncludeOnlyAffectedFiles = flag; }
    /// 0: name and new name, 1: new name, 2: path and new name; any other writes no lines.
    void setFormat(int newFormat) { format = newFormat; }

    bool process() override;
    void breakOff(const std::string& reason) override;
    [[nodiscard]] std::string className() const override { return "SaveAsFileListStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    void appendLine(RowId id);

    std::string path;
    bool shouldIncludeOnlyAffectedFiles = false;
    int format = 0;
    std::string text;
};

} // namespace tavrin
