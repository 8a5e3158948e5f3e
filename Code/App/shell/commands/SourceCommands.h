#pragma once

#include "shell/commands/ShellServices.h"
#include "shell/preview/SlicedWork.h"
#include "store/rows/NodeRow.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavrin {

class PreviewControl;
class StoreOwner;

/// The commands on the list of added paths. Paths are absolute and in bytes. Main thread.
class SourceCommands {
  public:
    SourceCommands(ShellServices& shared, StoreOwner& storeOwner, PreviewControl& previewControl)
        : services(shared), store(storeOwner), preview(previewControl), work(shared.runLoop) {}

    /// Whether adding is to end; asked on any thread.
    using IsToStop = std::function<bool()>;
    /// Adds what can be added; those that were refused, in the order given, or none where it was stopped.
    /// Asks for no preview.
    std::vector<std::string> addPaths(std::vector<std::string> paths, const IsToStop& isToStop = never);
    /// Adds paths that may lie inside each other, once each; the first at which nothing lies ends it.
    std::optional<std::string> addNestedPaths(const std::vector<std::string>& paths,
                                              const IsToStop& isToStop = never);
    /// The way in for all additions of the user; always true. One alert speaks for all refusals. Of many
    /// paths the last may be added later, between other events.
    bool addFilePaths(const std::vector<std::string>& paths, bool interactive);
    void showFileDialog();
    /// Removes the selected rows of the preview list that are source items; of many, the last may go later.
    void removeFile(const std::vector<RowId>& selection);
    /// Whether removeFile would remove anything.
    [[nodiscard]] bool canRemove(const std::vector<RowId>& selection);
    /// Forgets all items, with the store that holds them.
    void clearList();
    /// Has everything read that is marked unread.
    void reloadPreview();
    /// Does at once what is left to do.
    void finishWork() { work.finish(); }

  private:
    static bool never() { return false; }
    bool removeRow(RowId id);

    ShellServices& services;
    StoreOwner& store;
    PreviewControl& preview;
    SlicedWork work;
};

} // namespace tavrin
