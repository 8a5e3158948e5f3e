#pragma once

#include "engine/history/RunRecordReader.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tavrin {

/// What has become of a recorded item: it bears its new, its old or its stand-in name; another item bears
/// its name and it is gone itself; it is nowhere; or it can't be told from another.
enum class ItemPlace : std::uint8_t { done, standIn, old, replaced, gone, unclear };

/// Where an item of a record is now.
struct PlacedItem {
    const RecordedItem& item;
    std::size_t number;
    const RecordedFolder& recordedFolder;
    ItemPlace place;
    std::string folder;    ///< where its folder is now; where it was, if that is nowhere
    std::string name;      ///< the one that it bears now; of a replaced item: the one found taken
    FileIdentity identity; ///< of what bears that name
    FileIdentity ofFolder;
    std::string reason; ///< why the folder is of no use; empty where it is
};

/// Finds the items of a record on the disk by what they are, not by their names alone. Touches nothing.
class JournalPlaces {
  public:
    /// `record` has been examined. What a killed run may have left half done counts only where the record
    /// has no end.
    explicit JournalPlaces(RunRecordReader& record);
    /// Visits end early once this says so; it is asked now and then.
    void breakOffWhen(std::function<bool()> condition) { isUnwanted = std::move(condition); }

    /// Something that a killed run has left at a name where an item was to go: a second name of the item, or
    /// an empty place kept for it.
    struct Leftover {
        std::string folder;
        std::string name;
        std::string itemName;
        FileIdentity identity;
        bool isSecondName = false;
        bool isFolder = false;
    };

    enum class Which : std::uint8_t { all, folders, others };
    /// Calls with each such item that counts, in the order of the record.
    void visit(Which which, const std::function<void(const PlacedItem&)>& visitor);
    /// What was found on the visits so far. Only where it is one, it is known for what it is.
    [[nodiscard]] const std::vector<Leftover>& leftovers();

  private:
    struct FolderItem {
        RecordedItem item;
        std::size_t number;
    };
    struct Folder {
        bool isResolved = false;
        std::string path;
        std::string reason;
        FileIdentity identity;
    };
    /// What lies under one name of an item.
    struct Look {
        bool isThere = false;
        bool isSame = false;
        FileStatus status;
    };

    void findFolders();
    void gatherNames();
    void dropListedItems();
    const Folder& folder(std::uint32_t number);
    void resolve(std::uint32_t number, Folder& into);
    [[nodiscard]] std::string presentPath(const std::string& path);
    bool open(std::uint32_t number);
    PlacedItem place(const RecordedItem& item, std::size_t number);
    void placeByLooks(PlacedItem& into);
    void placeElsewhere(PlacedItem& into, const Look& atNew, const Look& atOld);
    void placeByScores(PlacedItem& into);
    Look lookAt(const std::string& name, const PlacedItem& of);
    [[nodiscard]] bool isSame(const FileStatus& status, const PlacedItem& of) const;
    [[nodiscard]] bool bearsExactly(const std::string& name);
    void readEntries();
    [[nodiscard]] std::string nameInRing(const PlacedItem& of);
    void noteLeftover(const PlacedItem& of, const std::string& name, const Look& look);
    static void put(PlacedItem& into, ItemPlace place, const std::string& name, const Look& look);

    RunRecordReader& record;
    std::function<bool()> isUnwanted = [] { return false; };
    const bool wasInterrupted;
    std::optional<double> began;
    std::vector<Folder> folders;                               ///< by number
    std::unordered_map<std::string, FolderItem> folderItems;   ///< by path when planned; those above folders
    std::unordered_map<std::string, std::string> presentPaths; ///< of those
    std::uint32_t openNumber = 0;
    std::unique_ptr<OpenFolder> openFolder;
    bool entriesAreRead = false;
    FolderEntries entries; ///< of that folder, once they are asked for
    std::vector<Leftover> found;
    std::unordered_map<std::uint32_t, std::unordered_set<std::string>> namesInRings; ///< by folder
    std::optional<std::uint32_t> ringFolder;                                         ///< of the next
    std::unordered_map<std::uint64_t, std::string> holders; ///< of such names, by inode
};

} // namespace tavrin
