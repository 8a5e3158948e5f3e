#include "platform/files/UnflaggedRename.h"

#include "platform/files/FileSystem.h"

#include <cerrno>

namespace tavrin {

namespace {

constexpr int attemptsToClear = 3;

/// Answers of file systems, or of a system's rules, that know no hard links to this item.
bool refusesLinks(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK || error == EINVAL;
}

/// Answers of file systems whose rename never replaces: what is reserved is in its way.
bool refusesToReplace(int error) { return error == EEXIST || error == ENOTEMPTY || error == EPERM; }

} // namespace

int UnflaggedRename::rename(const std::string& from, const std::string& to) {
    unguarded = false;
    left = Leftover::nothing;
    FileStatus item;
    if (const int error = folder.status(from, item))
        return error;
    if (item.kind != FileStatus::Kind::folder) {
        const int error = byLink(from, to, item);
        if (!refusesLinks(error))
            return error;
    }
    return byReservation(from, to, item.kind);
}

int UnflaggedRename::byLink(const std::string& from, const std::string& to, const FileStatus& item) {
    if (const int error = folder.link(from, to))
        return error;
    FileStatus now;
    int error = folder.status(from, now);
    if (error == 0 && now.identity != item.identity)
        error = EBUSY;
    if (error == 0)
        error = folder.remove(from, item.kind);
    if (error == 0)
        return 0;
    // What was linked is still to be found under its old name, unless that was taken by another item.
    left = Leftover::secondName;
    if (folder.status(from, now) == 0)
        clear(to, item.kind, now.identity, left);
    return error;
}

int UnflaggedRename::byReservation(const std::string& from, const std::string& to, FileStatus::Kind kind) {
    const auto reservedKind =
        kind == FileStatus::Kind::folder ? FileStatus::Kind::folder : FileStatus::Kind::file;
    int error = folder.reserve(to, reservedKind);
    if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS) {
        error = byLook(from, to);
        unguarded = error == 0;
        return error;
    }
    if (error != 0)
        return error;
    // Whoever opens a file to write it takes the reservation for it.
    FileStatus reserved;
    error = folder.status(to, reserved);
    if (error != 0) {
        // Without a look it can't be told from what others put there.
        left = Leftover::reservation;
        return error;
    }
    if (reserved.kind != reservedKind || reserved.size != 0)
        return EEXIST;
    error = folder.renameReplacing(from, to);
    if (error == 0)
        return 0;
    clear(to, reservedKind, reserved.identity, Leftover::reservation);
    // A rename that replaces not even this is a guarded one by itself.
    return left == Leftover::nothing && refusesToReplace(error) ? byLook(from, to) : error;
}

void UnflaggedRename::clear(const std::string& name, FileStatus::Kind kind, const FileIdentity& made,
                            Leftover what) {
    left = what;
    for (int attempt = 0; attempt < attemptsToClear && left != Leftover::nothing; ++attempt) {
        FileStatus found;
        const int error = folder.status(name, found);
        // What is another item by now is somebody else's.
        const bool isOurs =
            error == 0 && found.identity == made && (what == Leftover::secondName || found.size == 0);
        if (error == ENOENT || (error == 0 && !isOurs) || (isOurs && folder.remove(name, kind) == 0))
            left = Leftover::nothing;
    }
}

int UnflaggedRename::byLook(const std::string& from, const std::string& to) {
    FileStatus taken;
    const int error = folder.status(to, taken);
    if (error != ENOENT)
        return error == 0 ? EEXIST : error;
    return folder.renameReplacing(from, to);
}

} // namespace tavrin
