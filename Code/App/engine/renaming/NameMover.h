#pragma once

#include "engine/renaming/RunFolders.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tavrin {

/// What a run is told of the file systems it meets.
struct VolumeEvents {
    /// The file system of this device can't refuse a taken name; called before the first rename there that
    /// does without, which may leave a second name or a reservation when it is cut off.
    std::function<void(std::uint32_t device)> flagRefused = [](std::uint32_t) {};
    /// In this folder a rename could not be guarded at all.
    std::function<void(const RunFolders::Place&)> unguarded = [](const RunFolders::Place&) {};
};

/// Gives items of one folder other names there, without ever replacing one, whoever puts it there and
/// whenever. Worker thread only.
class NameMover {
  public:
    explicit NameMover(VolumeEvents listeners) : events(std::move(listeners)) {}

    /// 0 or an errno value; EEXIST when another item has the name. A change of case alone, in a folder that
    /// ignores case, goes by way of the stand-in name, which is asked for only then, and back when its second
    /// half fails.
    using StandInName = std::function<const std::string&()>;
    int move(RunFolders::Place& place, const std::string& from, const std::string& to,
             const StandInName& standIn);
    /// One rename, whatever the names.
    int rename(RunFolders::Place& place, const std::string& from, const std::string& to);
    /// Lets two items take each other's names; EOPNOTSUPP where that can't be done at once.
    static int exchange(RunFolders::Place& place, const std::string& a, const std::string& b) {
        return place.folder->exchange(a, b);
    }
    /// The stand-in name if the last move had to leave the item there, else empty.
    [[nodiscard]] const std::string& leftUnder() const { return left; }
    /// What failed renames have left behind since the last `begin`, as sentences after a full stop.
    [[nodiscard]] const std::string& leftovers() const { return behind; }
    void begin() { behind.clear(); }

  private:
    /// Whether what has the new name can only be the item itself.
    static bool ignoresCase(RunFolders::Place& place, const std::string& to);
    int moveByStandIn(RunFolders::Place& place, const std::string& from, const std::string& to,
                      const std::string& standIn);

    VolumeEvents events;
    std::string left;
    std::string behind;
};

} // namespace tavrin
