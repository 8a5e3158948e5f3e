#include "RenameWatch.h"

#include "engine/PathParts.h"
#include "platform/FolderEntries.h"

#include <cerrno>
#include <strings.h>

namespace tavrin::test {

namespace {

class WatchedFolder : public OpenFolder {
  public:
    WatchedFolder(RenameWatch& newWatch, std::string newPath, std::unique_ptr<OpenFolder> folder)
        : watch(newWatch), path(std::move(newPath)), real(std::move(folder)) {}

    int status(const std::string& name, FileStatus& into) override {
        return watch.status(joinedPath(path, name), into);
    }
    int renameNoReplace(const std::string& from, const std::string& to) override {
        return watch.rename({path, from, to, false});
    }
    int entries(FolderEntries& into) override { return real->entries(into); }
    int volume(VolumeStatus& into) override { return real->volume(into); }

  private:
    RenameWatch& watch;
    std::string path;
    std::unique_ptr<OpenFolder> real;
};

} // namespace

RenameWatch::RenameWatch() : real(FileSystem::sharedInstance()) { FileSystem::setSharedInstance(this); }

RenameWatch::~RenameWatch() { FileSystem::setSharedInstance(nullptr); }

int RenameWatch::openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) {
    std::unique_ptr<OpenFolder> folder;
    if (const int error = real.openFolder(path, folder))
        return error;
    into = std::make_unique<WatchedFolder>(*this, path, std::move(folder));
    return 0;
}

int RenameWatch::status(const std::string& path, FileStatus& into) {
    const PathParts parts(path);
    return real.status(resolved(std::string(parts.folder), std::string(parts.name)), into);
}

int RenameWatch::followedStatus(const std::string& path, FileStatus& into) {
    return real.followedStatus(path, into);
}

int RenameWatch::renameNoReplace(const std::string& from, const std::string& to) {
    const PathParts parts(from);
    return rename(
        {std::string(parts.folder), std::string(parts.name), std::string(PathParts(to).name), true});
}

int RenameWatch::rename(const WatchedRename& rename) {
    seen.push_back(rename);
    if (const int error = before(rename))
        return error;
    const std::string target = resolved(rename.folder, rename.to);
    FileStatus taken;
    if (ignoresCase && real.status(target, taken) == 0)
        return EEXIST;
    return real.renameNoReplace(resolved(rename.folder, rename.from), target);
}

std::string RenameWatch::resolved(const std::string& folder, const std::string& name) {
    std::unique_ptr<OpenFolder> open;
    FolderEntries entries;
    if (ignoresCase && real.openFolder(folder, open) == 0 && open->entries(entries) == 0) {
        for (const FolderEntry entry : entries) {
            if (::strcasecmp(std::string(entry.name).c_str(), name.c_str()) == 0)
                return joinedPath(folder, entry.name);
        }
    }
    return joinedPath(folder, name);
}

} // namespace tavrin::test
