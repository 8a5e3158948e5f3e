#pragma once

#include "engine/history/RecordedRows.h"
#include "engine/history/TakeBack.h"
#include "platform/files/FileSystem.h"
#include "platform/files/KnownVolumes.h"
#include "store/queries/Predicate.h"

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin {

class StandIns;
class StoreContext;

/// Writes the record of one run: its whole plan before the first rename, so that what has happened can always
/// be asked of the disk afterwards, and a few words behind it. Worker thread only.
class RunJournal {
  public:
    /// `recipeText` tells how the names were made; empty where no recipe did.
    explicit RunJournal(HistoryPlace where, std::string recipeText = {})
        : place(std::move(where)), recipe(std::move(recipeText)) {}

    /// Writes the plan, and comes back when it would outlast a loss of power. `planned` tells the rows that
    /// are to get another name. Empty when all is well, else why there is no record, as part of a sentence;
    /// nothing of it is left behind then.
    [[nodiscard]] std::string begin(StoreContext& context, const Predicate& planned, StandIns& standIns,
                                    const RunPurpose& purpose);
    /// On this device a rename is about to do without the kernel's way of refusing a taken name, so that a
    /// kill can leave a step half done. Comes back when that would outlast a loss of power.
    void flagRefused(std::uint32_t device);
    /// The rename itself has found another item than the row knows, and goes on with it.
    void late(RowId row, const FileIdentity& found);
    void close(std::int64_t changed, std::int64_t failed, bool wasStopped);
    [[nodiscard]] bool isOpen() const { return file != nullptr; }
    /// What the history calls the run.
    [[nodiscard]] const std::string& runName() const { return name; }

  private:
    struct Folder {
        std::uint32_t number = 0;
        bool inodesMayChange = false;
    };

    /// The folder, held open, and what it is.
    struct FolderLook {
        std::unique_ptr<OpenFolder> folder;
        FileStatus status;
    };

    int makeFile();
    void writePlan(StoreContext& context, const Predicate& planned, StandIns& standIns,
                   const RunPurpose& purpose);
    void writeHeading(const RunPurpose& purpose);
    Folder folderAt(const std::string& path);
    /// Looks at the next folders of these rows; how many of the rows were thought of.
    std::size_t lookAhead(StoreContext& context, std::span<const RowId> items);
    void lookCloser(const Folder& folder, RecordedItem& item);
    void endLine();
    void endBlock();
    void flush();

    HistoryPlace place;
    std::string recipe;
    std::unique_ptr<AppendFile> file;
    std::string name;
    std::string filePath;
    std::string text; ///< not written yet
    std::size_t lineStart = 0;
    std::size_t blockLines = 0;
    std::uint32_t checksum = 0;
    int error = 0; ///< the first
    std::unordered_map<std::string, Folder> folders;
    std::unordered_map<std::string, FolderLook> ahead; ///< looked at, and not yet come to
    KnownVolumes volumes;
    bool isRemote = false; ///< where the last folder lies
    std::string openPath;
    std::unique_ptr<OpenFolder> openFolder;
    RecordedRows rows;
};

} // namespace tavrin
