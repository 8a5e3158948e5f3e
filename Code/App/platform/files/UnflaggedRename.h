#pragma once

#include "platform/files/FileStatus.h"

#include <string>

namespace tavrin {

class OpenFolder;

/// Renames that replace nothing where the kernel's call can't be told so: the taking of the name is what only
/// one can win. A file gets the new name as its second one (a hard link) and then loses the old one; where
/// links are refused, and for folders, the new name is reserved by an empty item, which the rename replaces.
/// A kill in between leaves the second name or the reservation.
class UnflaggedRename {
  public:
    explicit UnflaggedRename(OpenFolder& place) : folder(place) {}

    /// 0 or an errno value; EEXIST when `to` is taken; EBUSY when the item was replaced meanwhile.
    int rename(const std::string& from, const std::string& to);
    /// Whether the rename was an unguarded one: neither way was to be had, so that a look and a plain rename
    /// had to do, and an item made between the two would have been replaced.
    [[nodiscard]] bool wasUnguarded() const { return unguarded; }
    /// What a rename that failed could not clear away again: it stands under the new name.
    enum class Leftover { nothing, secondName, reservation };
    [[nodiscard]] Leftover leftover() const { return left; }

  private:
    int byLink(const std::string& from, const std::string& to, const FileStatus& item);
    int byReservation(const std::string& from, const std::string& to, FileStatus::Kind kind);
    /// Removes what was made under the new name, with a few tries.
    void clear(const std::string& name, FileStatus::Kind kind, const FileIdentity& made, Leftover what);
    int byLook(const std::string& from, const std::string& to);

    OpenFolder& folder;
    bool unguarded = false;
    Leftover left = Leftover::nothing;
};

} // namespace tavrin
