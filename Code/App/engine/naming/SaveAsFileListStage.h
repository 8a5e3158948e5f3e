#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"

#include <string>
#include <string_view>

namespace tavrin {

/// Writes the old and new names of all shown items to a text file, in UTF-8 and sorted by name.
class SaveAsFileListStage final : public ProcessingStage {
  public:
    explicit SaveAsFileListStage(EngineState& owner) : ProcessingStage(owner) {}

    /// Where to write, in bytes. An existing file is replaced by the whole new one, or stays as it is; where
    /// a link stands, the file that it leads to.
    void setPath(std::string newPath) { path = std::move(newPath); }
    void setShouldIncludeOnlyAffectedFiles(bool flag) { shouldIncludeOnlyAffectedFiles = flag; }
    /// 0: name and new name, 1: new name, 2: path and new name; any other writes no lines.
    void setFormat(int newFormat) { format = newFormat; }

    /// What gets the system's reason when the list could not be written (not owned; may be null).
    void setReason(std::string* into) { reason = into; }

    /// False when the list could not be written.
    bool process() override;
    void breakOff(const std::string& why) override;
    [[nodiscard]] std::string className() const override { return "SaveAsFileListStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    void appendLine(RowId id);

    std::string path;
    std::string* reason = nullptr;
    bool shouldIncludeOnlyAffectedFiles = false;
    int format = 0;
    std::string text;
};

} // namespace tavrin
