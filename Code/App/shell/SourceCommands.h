#pragma once

#include "shell/ShellServices.h"
#include "store/NodeRow.h"

#include <string>
#include <vector>

namespace tavrin {

class PreviewControl;
class StoreOwner;

/// The commands on the list of added paths. Paths are absolute and in bytes. Main thread.
class SourceCommands {
  public:
    SourceCommands(ShellServices& shared, StoreOwner& storeOwner, PreviewControl& previewControl)
        : services(shared), store(storeOwner), preview(previewControl) {}

    /// Adds what can be added; those that were refused, in the order given. Asks for no preview.
    std::vector<std::string> addPaths(const std::vector<std::string>& paths);
    /// The way in for all additions of the user; always true. One alert speaks for all refusals.
    bool addFilePaths(const std::vector<std::string>& paths, bool interactive);
    void showFileDialog();
    /// Removes the selected rows of the preview list that are source items.
    void removeFile(const std::vector<RowId>& selection);
    /// Whether removeFile would remove anything.
    [[nodiscard]] bool canRemove(const std::vector<RowId>& selection);
    /// Forgets all items, with the store that holds them.
    void clearList();
    /// Has everything read anew.
    void reloadPreview();

  private:
    ShellServices& services;
    StoreOwner& store;
    PreviewControl& preview;
};

} // namespace tavrin
