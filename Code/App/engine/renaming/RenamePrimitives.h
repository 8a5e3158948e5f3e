#pragma once

#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/NameMover.h"
#include "engine/renaming/RenameItem.h"
#include "engine/renaming/RunFolders.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tavrin {

/// The single rename of one item: refuses links, unless they are wanted, and what is not the item that was
/// read, tries the route of the mode and then the others, counts, and leaves the reason of a failure. Worker
/// thread only.
class RenamePrimitives {
  public:
    struct Parts {
        RunFolders& folders;
        StandIns& standIns;
        NameMover& mover;
        StageProgress report;
    };
    explicit RenamePrimitives(const Parts& units) : parts(units) {}

    /// The settings for the attempts that follow.
    void takeSettings(int renameMode, bool shouldCopyFileComments);
    /// From now on an item whose inode is not the one that was read is left alone.
    void beStrict() { strict = true; }
    /// Whether a rename of a plain item is a look and a rename, and nothing else.
    [[nodiscard]] bool areRenamesPlain() const { return hasRoutes() && !copiesComments; }
    /// From now on links are renamed like other items.
    void takeLinks() { takesLinks = true; }
    /// Told of an item that bears the name that was read and is another file: it has been saved anew.
    std::function<void(RowId, const FileIdentity&)> onReplaced = [](RowId, const FileIdentity&) {};

    /// Looks at the item; false with a reason if it must not be renamed.
    bool check(RenameItem& item);
    /// Checks the item and gives it its final name. A name that no file can bear fails like any other.
    bool renameItem(RenameItem& item);
    /// A step that is not to be tried at all: fails with the default reason and this detail.
    bool refuse(std::string_view detail);
    /// Whether the mode is one of those that there are; else every rename fails.
    [[nodiscard]] bool hasRoutes() const;

    [[nodiscard]] std::string failureReasonString() const;
    /// The same without the sentence that begins it, where there is more.
    [[nodiscard]] std::string failureDetail() const {
        return detail.empty() ? std::string(sentence) : detail;
    }
    /// What the system said of a failure, in words; the names are those of the call.
    static std::string systemReason(int error, std::string_view from, std::string_view to,
                                    const RunFolders::Place& place);
    /// What the item in hand was at the last look; unknown when it was not to be seen.
    [[nodiscard]] const FileIdentity& identity() const { return lastLook.identity; }
    /// The folder of the item in hand.
    RunFolders::Place& place(const RenameItem& item);

    /// Items renamed so far.
    std::int32_t actuallyRenamedCounter = 0;

  private:
    enum class Route { lion, fileManager, finder, leopard };
    /// What is done, in the terms of all routes.
    struct Attempt {
        RunFolders::Place& place;
        const std::string& folder;
        const std::string& from;
        const std::string& to;
        NameMover::StandInName standIn;
        int error = 0;
    };

    /// Leaves the reason of a failed attempt.
    void explain(const Attempt& attempt);
    bool tryRoutes(Attempt& attempt);
    bool tryRoute(Route route, Attempt& attempt);
    [[nodiscard]] bool isStillThere(const Attempt& attempt) const;
    [[nodiscard]] bool hasMovedAllTheSame(const Attempt& attempt) const;
    /// Where a failed move has left the item, if not under its old name alone.
    [[nodiscard]] std::string whereItLies() const;

    Parts parts;
    int mode = 0;
    bool copiesComments = false;
    bool strict = false;
    bool takesLinks = false;
    std::string_view sentence;
    std::string detail;
    FileStatus lastLook;
};

} // namespace tavrin
