#pragma once

#include "platform/files/FileSystem.h"
#include "platform/metadata/MetadataTool.h"
#include "support/values/PropertyValue.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

class FolderEntries;

/// The names that a folder's ".hidden" file lists, one a line, as they were when this object was made.
class HiddenNames {
  public:
    HiddenNames() = default;
    /// A list that is missing, unreadable or larger than 1 MiB counts as empty.
    explicit HiddenNames(const std::string& folder);

    [[nodiscard]] bool contains(std::string_view name) const;
    [[nodiscard]] bool empty() const { return names.empty(); }

  private:
    std::vector<std::string> names; ///< sorted
};

/// Small file queries that the whole program shares. Paths are absolute and in bytes as the file system
/// gives them. A path that cannot be reached gives the neutral value (false, 0, absent). Any thread.
class FileManager {
  public:
    /// `metadataScript` is the path of the metadata tool; empty takes the program's own.
    explicit FileManager(std::string metadataScript = {});
    ~FileManager();
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;
    /// The one that the application registered, else one made at the first call.
    static FileManager& instance();
    /// Not owned; null unregisters.
    static void setInstance(FileManager* manager);

    /// False only for a folder (links followed); true for a missing path.
    bool isFile(const std::string& path) const;
    /// Neither a file nor a bundle.
    bool isFolder(const std::string& path) const;
    /// A folder that is shown as one item: by suffix, by Contents/Info.plist, or AppRun beside a .desktop
    /// file.
    bool isBundle(const std::string& path) const;
    /// The same for a path that is known to be a folder: two file-system calls at most, unless there is an
    /// AppRun.
    bool isBundleFolder(const std::string& path) const;
    /// The same by what a listing of the folder has shown: most need no call then.
    bool isBundleFolder(const std::string& path, const FolderEntries& entries) const;
    bool folderIsLikelyToBeABundle(const std::string& path) const;
    /// The name begins with "." or is listed in its folder's ".hidden"; false for a missing path. The list is
    /// kept for a second while paths of the same folder are asked for; a walker takes HiddenNames itself.
    bool isInvisible(const std::string& path) const;

    std::string lockedFor(const std::string& path) const;           ///< "Locked" or "Not Locked"
    std::string extensionVisibleFor(const std::string& path) const; ///< "Hidden" or "Shown"
    bool lockFile(const std::string& path) const;
    bool unlockFile(const std::string& path) const;
    std::optional<FileStatus> attributesFor(const std::string& path) const;
    /// Saturates; 0 when unknown.
    std::int32_t fileLength(const std::string& path) const;
    /// In the form "%e %b %Y %H:%M:%S", local time; empty when unknown.
    std::string creationDateFor(const std::string& path) const;
    std::string modificationDateFor(const std::string& path) const;
    /// The shooting date likewise.
    std::string exifDateFor(const std::string& path) const;
    /// Bytes; with `recurse` the sum over everything below a folder, links and hard links counted by
    /// themselves. A folder itself counts 0.
    std::uint64_t sizeForPath(const std::string& path, bool recurse) const;
    std::uint64_t physicalSizeForPath(const std::string& path, bool recurse) const;
    std::optional<std::string> getCreatorCode(const std::string& path) const;
    std::optional<std::string> getTypeCode(const std::string& path) const;
    /// The four characters between the quotes of a quoted file code; absent for any other length.
    static std::optional<std::string> extractCodeString(std::string_view quoted);
    /// Renews the entries in the menus of file managers, where the application has registered them.
    void updateServicesMenu() const;

    /// The extended attribute user.xdg.comment.
    std::optional<std::string> finderCommentForFileURL(const std::string& path) const;
    bool changeFinderComment(const std::string& comment, const std::string& path) const;
    /// Whether comments stay with a file over a rename by themselves (they lie on the inode here), so that
    /// no one has to carry them over.
    static bool commentsTravelWithFiles();

    /// Seconds since 2001-01-01 00:00:00 UTC; absent when unknown.
    std::optional<double> fileCreationDate(const std::string& path) const;
    std::optional<double> fileModificationDate(const std::string& path) const;
    /// The shooting date, or `distantPast` when there is none.
    double fileEXIFDate(const std::string& path) const;
    /// Width and height in pixels; -1.0 both when unknown.
    std::pair<float, float> fileEXIFDimensions(const std::string& path) const;

    /// All metadata of a file as the metadata tool tells it. Blocks.
    [[nodiscard]] FileMetadata allTagsFor(const std::string& path) const;
    /// The same for audio and video files by their extension, absent for all others.
    [[nodiscard]] std::optional<FileMetadata> mp3TagsFor(const std::string& path) const;

    /// 0001-01-01 00:00:00 UTC in seconds since 2001.
    static constexpr double distantPast = -63114076800.0;

    /// The moment this object was made, seconds since 2001.
    [[nodiscard]] double now() const { return nowDate; }

  private:
    /// The list of the folder that was asked for last.
    struct HiddenCache {
        bool contains(const std::string& inFolder, std::string_view name);

        std::mutex mutex; ///< guards what follows
        std::string folder;
        HiddenNames names;
        std::chrono::steady_clock::time_point readAt;
    };

    double nowDate;
    mutable MetadataTool metadataTool;
    mutable HiddenCache hiddenCache;
};

} // namespace tavrin
