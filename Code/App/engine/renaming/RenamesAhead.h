#pragma once

#include "engine/renaming/RenameItem.h"
#include "engine/renaming/RunFolders.h"

#include <functional>
#include <span>
#include <string>
#include <unordered_set>

namespace tavrin {

class StoreContext;

/// On a remote disk a call takes as long as the way to the server and back. There the plain renames of the
/// next items are made side by side, ahead of the run, which comes to them one by one and takes what each
/// call has answered for its own. Made ahead is only what the run would rename without a question: items that
/// wait for no name and leave none to others, and that are exactly what was read. Worker thread only.
class RenamesAhead {
  public:
    /// Whether an item may be renamed without a word, by folder and name.
    using IsPlain = std::function<bool(RowId id, const std::string& folder, const std::string& component)>;

    /// `mustStop` is asked on any thread.
    RenamesAhead(StoreContext& rows, RunFolders& runFolders, IsPlain mayBePlain,
                 std::function<bool()> mustStop)
        : context(rows), item(rows), folders(runFolders), isPlain(std::move(mayBePlain)),
          isToStop(std::move(mustStop)) {}

    /// Renames what can be renamed ahead of the first of these, the run's next; how many of them were thought
    /// of.
    std::size_t run(std::span<const RowId> next);
    /// Whether the item has been tried, so that the run must come to it even when it is to stop.
    [[nodiscard]] bool hasTried(RowId id) const { return tried.contains(id); }

  private:
    struct Job {
        RowId id;
        RowId parent;
        OpenFolder* folder;
        std::string from;
        std::string to;
        SeenItem seen;
        RunFolders::Answer answer = {};
        bool isTried = false;
    };

    /// How many items at the front lie in one folder that is not remote.
    [[nodiscard]] std::size_t localItems(std::span<const RowId> next);
    [[nodiscard]] bool takes(RowId id);
    static void perform(Job& job);

    StoreContext& context;
    RenameItem item;
    RunFolders& folders;
    IsPlain isPlain;
    std::function<bool()> isToStop;
    std::unordered_set<RowId> tried;
};

} // namespace tavrin
