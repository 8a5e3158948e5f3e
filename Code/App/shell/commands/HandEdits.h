#pragma once

#include "engine/naming/NamePins.h"
#include "shell/commands/ShellServices.h"
#include "shell/preview/PreviewList.h"
#include "shell/preview/SlicedWork.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class PreviewControl;

/// A name that somebody has typed for an item.
struct NameByHand {
    std::string path;    ///< of the item, in bytes
    std::u16string name; ///< as names are shown; empty for that of the steps
};

/// What the user settles for items beside the steps: names by hand, and that items are left out. Each change
/// is followed by a preview, and `FrontEnd::handEditsChanged` tells of it. Kept by the paths of the items:
/// it outlasts changes of steps and reading anew, and goes with the item from the list, or when a run has
/// given it its name. Nothing can be changed while a droplet is edited. What is about many items is done in
/// slices, one change after the other, so that it may still be under way when a call returns. Main thread.
class HandEdits {
  public:
    HandEdits(ShellServices& shared, PreviewControl& previewControl)
        : services(shared), preview(previewControl), work(shared.runLoop) {}

    // --- Names ---
    /// Gives the item of a row a name, as names are shown. Empty, or the name that the steps give: there is
    /// none by hand then. False when it holds half a character, so that no file can bear it.
    bool pin(const PreviewList::Row& row, const std::u16string& name);
    /// The same of many items, which need not be pinned yet; who calls passes over those that keep the names
    /// shown. Those that no file can bear are passed over.
    void pin(std::vector<NameByHand> names);
    void unpin(std::vector<std::string> paths);
    void unpinAll();
    /// Off: names by hand are kept, but neither shown nor given.
    void setNamesCount(bool count);
    /// What the steps make of the item, as of the last preview: its final name where it is not pinned.
    [[nodiscard]] std::u16string computedName(const PreviewList::Row& row) const;
    /// The name by hand that is settled, be it in the list yet or not; empty for none.
    [[nodiscard]] std::u16string pinnedName(const std::string& path) const;

    // --- Taking part ---
    void setTakesPart(std::vector<RowId> rows, bool takesPart);
    void setTakesPart(std::vector<std::string> paths, bool takesPart);
    void tickAll();
    [[nodiscard]] bool takesPart(const std::string& path) const;

    // --- All of it ---
    [[nodiscard]] std::size_t pinned() const { return pins.named(); }
    [[nodiscard]] std::size_t leftOut() const { return pins.leftOut(); }
    [[nodiscard]] bool namesCount() const { return pins.namesCount(); }
    /// What holds now, to come back to: a value that is cheap to keep.
    [[nodiscard]] NamePins snapshot() const { return pins; }
    void restore(NamePins former);
    /// Does at once what is still under way.
    void finish() { work.finish(); }
    [[nodiscard]] bool isAllowed() const { return services.mode != OperationMode::dropletEdit; }

    // --- For the application ---
    /// What runs have found; asks for no preview.
    void change(std::vector<NamePins::Change> changes);
    /// Forgets all, since the list is empty.
    void drop();

  private:
    /// Of the item at a place of what a change was given; nothing for none.
    using ChangeAt = std::function<std::optional<NamePins::Change>(std::size_t place)>;
    void begin(std::size_t count, ChangeAt changeAt);
    /// The same change for all of which something is settled.
    void beginForAll(NamePins::Change change);
    [[nodiscard]] std::optional<NamePins::Change> changeFor(NameByHand& one) const;
    void publish();
    void publishAndPreview();

    ShellServices& services;
    PreviewControl& preview;
    SlicedWork work;
    NamePins pins; ///< while work is under way, with a part of it
};

} // namespace tavrin
