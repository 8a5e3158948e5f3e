#pragma once

#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "store/queries/FilterManager.h"
#include "store/rows/NameSlots.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

class FolderNotes;
class StoreContext;

/// Foresees, folder by folder, which new names the rename will be refused, and writes it into the rows. Looks
/// at the disk only where names are to change, and lists a folder only where it may have changed since it was
/// last listed. Worker threads, under the engine's lock.
class ProblemFinder {
  public:
    /// What the final names of a folder's children are.
    enum class Names {
        distinct,         ///< those of no two are the same
        toBeMadeDistinct, ///< the same later, so that two that are the same now are none of its problems
        asTheyAre,        ///< what two want none gets
        keptWhereTaken ///< the same, and whoever can't have a name for another item's sake is to keep its own
    };

    ProblemFinder(StoreContext& storeContext, FolderNotes& folderNotes, const ItemFilter& itemFilter,
                  bool linksAreRenamed)
        : context(storeContext), notes(folderNotes), filter(itemFilter), renamesLinks(linksAreRenamed) {}

    /// Has each item looked at that may be locked, not only those that were when they were read; until the
    /// question is answered with yes.
    void lookForLocks(std::function<bool()> question) { isToEnd = std::move(question); }
    /// The children are all those of the folder.
    void lookAt(RowId folder, const std::vector<RowId>& children, Names names);

  private:
    /// A child that is to get another name.
    struct Mover {
        RowId row;
        std::uint32_t child;  ///< its place among the children
        bool isLink = false;  ///< when it was read
        bool wasSeen = false; ///< and found not to be locked
        bool isExact = false; ///< its name gives way to nothing
        NameProblem problem = NameProblem::none;
        std::uint16_t detail = 0;
        bool willBeMadeDistinct = false;
        bool isAbsent = false;
        bool isRival = false; ///< can't be renamed, and wants the name that another one will get
        [[nodiscard]] bool goes() const { return problem == NameProblem::none; }
    };

    /// Finds them with the problems of their names; what keeps all from other names, where there are any.
    NameProblem gatherMovers(RowId folder);
    /// What keeps every child of the folder from another name.
    NameProblem problemOfFolder(RowId folder);
    [[nodiscard]] VolumeFacts volumeOf(std::uint32_t device);
    void judgeName(Mover& mover);
    void judgeLength(Mover& mover, std::size_t bytes);

    // What the disk says of the movers, and which names of the folder are not on the list.
    void lookAtDisk(RowId folder);
    /// False where only a listing can tell.
    bool askForEach(OpenFolder& place);
    void judgePresence(Mover& mover, int error, const FileStatus& found);
    [[nodiscard]] bool isOnList(const std::string& name, const FileIdentity& identity);
    void compareWithListing(RowId folder);
    [[nodiscard]] bool mustBeLookedAt(const Mover& mover) const;
    void lookAtItems(OpenFolder& place);
    void judgeRights(Mover& mover, const FileStatus& found);

    // Who wants a name that stays another item's.
    void findTaken(Names names);
    void gatherWishes(Names names);
    static void findConflict(Mover& one, Mover& other);
    /// Nobody gets this name; who wanted it keeps its own, which nobody else gets then.
    void withhold(std::string_view name, RowId holder, bool onlyFromExact = false);
    /// An item that is gone takes all with it that were to exchange names with it.
    void breakRingOf(const Mover& absentee);
    /// The name to be, in the bytes of the file system. Valid until the next call.
    std::string_view wishOf(const Mover& mover);
    /// What tells names apart in the folder.
    std::string_view keyOf(std::string_view name, std::string& lowered) const;
    Mover* whoWants(std::string_view name);

    void store(Names names);
    void storeProblem(RowId row, NameProblem problem, std::uint16_t detail);

    StoreContext& context;
    FolderNotes& notes;
    const ItemFilter filter;
    const bool renamesLinks;
    std::function<bool()> isToEnd;                ///< none where locks are not looked for
    std::map<std::uint32_t, VolumeFacts> volumes; ///< by device

    // Of the folder in hand.
    const std::vector<RowId>* rows = nullptr;
    std::vector<Mover> movers;       ///< in the order of the children
    bool hadProblems = false;        ///< any child, as it is stored
    bool hasExact = false;           ///< any mover
    bool hasRespelledStayer = false; ///< an item that stays bears its final name in another Unicode form
    std::string path;
    FileStatus status;
    VolumeFacts volume;
    std::vector<std::string_view>
        others; ///< names that are not on the list; in the next two, or in the notes
    FolderEntries listing;
    std::vector<std::string> asked;
    std::vector<bool> absent; ///< children that are no more, where that is known
    NameSlots wishes;         ///< places among the movers, from 1
    std::string nameInHand, wish, sought, held;
};

} // namespace tavrin
