#pragma once

#include "platform/FileSystem.h"

#include <memory>
#include <string>
#include <string_view>

namespace tavrin {

/// The ways to the file system by which one item gets another name in its folder. They differ in how they
/// reach the item and in what they say about a taken name. Common to all: none ever replaces an item,
/// whoever puts it there and whenever, and a change of case alone goes by way of a dummy name, since one step
/// does nothing, or fails, in a folder that ignores case.
class RenameRoutes {
  public:
    explicit RenameRoutes(FileSystem& disk) : fileSystem(disk) {}

    /// Chooses the item and its new name for what follows, and reads the item's status: 0 or an errno value.
    /// `folder` is a path. The names are possible ones, in bytes.
    int begin(const std::string& folder, std::string_view from, std::string_view to);
    [[nodiscard]] const FileStatus& source() const { return sourceStatus; }

    /// A plain move after a test of the new name.
    bool renameUsingLionMode();
    /// A rename by reference, without that test.
    bool renameUsingFileManagerMode();
    /// A move by path.
    bool renameUsingLeopardMode();
    /// A rename as the file browser does it. True exactly when the call worked and yet nothing is found under
    /// the new name, so a rename by this route never counts.
    bool renameUsingFinderMode();

    /// Whether a route has said that the new name is taken.
    [[nodiscard]] bool foundNameTaken() const { return nameTaken; }
    /// Whether the item may still be where it was: not after a route that worked all the same, nor when it
    /// could not be brought back from the dummy name. What lies there now is then another item.
    [[nodiscard]] bool sourceIsInPlace();

  private:
    /// By the folder where it is held open, or always by path.
    enum class Way { folder, path };

    void holdFolder();
    int status(Way way, const std::string& name, FileStatus& into);
    int rename(Way way, const std::string& oldName, const std::string& newName);
    int move(Way way);
    int moveByDummy(Way way);
    bool moveUsingTest(Way way);
    void lookForTakenName(Way way);

    FileSystem& fileSystem;
    std::string folder;
    std::unique_ptr<OpenFolder> openFolder; ///< null until it is worth it, and when it can't be opened
    std::string from;
    std::string to;
    FileStatus sourceStatus;
    bool sourceIsKnown = false;
    bool isCaseOnly = false;
    bool nameTaken = false;
    bool displaced = false;
};

} // namespace tavrin
