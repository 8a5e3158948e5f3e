#pragma once

#include "engine/history/RunRecord.h"
#include "platform/files/LineFile.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// The record of one run, read from its file as often as needed and never held as a whole. Only blocks whose
/// checksum is right count, and of these only those before the first that is not.
class RunRecordReader {
  public:
    /// Opens the file and reads its heading and its end.
    explicit RunRecordReader(const std::string& path);

    /// Why nothing can be made of the file, as a sentence; empty where it has a heading.
    [[nodiscard]] const std::string& problem() const { return failure; }
    /// Whether the file is one to be read at all: the user's own, and of no newer version.
    [[nodiscard]] bool isReadable() const { return canBeRead; }
    [[nodiscard]] const RunHeading& heading() const { return runHeading; }
    /// Whether links were renamed themselves.
    [[nodiscard]] bool hasLinksAsItems() const { return linksAreItems; }
    /// The folder of the first item that the record tells of; empty without one.
    [[nodiscard]] const std::string& firstFolder() const { return topFolder; }
    /// The recipe by which the names were made, as text; empty for names that were made otherwise.
    [[nodiscard]] const std::string& recipe() const { return recipeText; }
    /// Absent for a run that is under way, or was interrupted.
    [[nodiscard]] const std::optional<RunEnd>& end() const { return runEnd; }
    [[nodiscard]] std::uint64_t size() const { return file.size(); }
    /// Whether the run is still under way.
    [[nodiscard]] bool isHeld() const { return file.isHeld(); }

    /// Reads everything once and finds out what counts. Once, before what follows.
    void examine();
    /// Something of the record is lost although the run went on behind it.
    [[nodiscard]] bool isDamaged() const { return hasDamage; }
    [[nodiscard]] std::size_t itemCount() const { return items; }
    /// In the order of their numbers.
    [[nodiscard]] const std::vector<RecordedFolder>& folders() const { return recordedFolders; }
    /// The folder that holds all of them; empty where there is none.
    [[nodiscard]] std::string commonFolder() const;
    /// Calls with each item that counts and its number, until the visitor says false. An item comes with the
    /// inode that the run found in the end.
    void visitItems(const std::function<bool(const RecordedItem&, std::size_t number)>& visitor);
    /// Whether renames in the folder had to do without the kernel's way of refusing a taken name.
    [[nodiscard]] bool hasNoFlag(const RecordedFolder& folder) const {
        return unflaggedDevices.contains(folder.identity.device);
    }
    /// The run itself has found another inode under this number than its plan had.
    [[nodiscard]] bool isLate(std::size_t number) const { return lateInodes.contains(number); }

  private:
    struct OpenBlock;

    void readHeading();
    void add(std::string_view line, OpenBlock& block) const;
    void take(OpenBlock& block);

    LineFile file;
    std::string failure;
    bool canBeRead = false;
    RunHeading runHeading;
    bool linksAreItems = false;
    std::string topFolder;
    std::string recipeText;
    std::optional<RunEnd> runEnd;
    std::uint64_t intactEnd = 0; ///< behind the last block that counts
    bool hasDamage = false;
    std::size_t items = 0;
    std::vector<RecordedFolder> recordedFolders;
    std::unordered_map<std::size_t, std::uint64_t> lateInodes;
    std::set<std::uint32_t> unflaggedDevices;
};

} // namespace tavrin
