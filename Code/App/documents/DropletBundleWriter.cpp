#include "documents/DropletBundleWriter.h"

#include "documents/DropletLauncher.h"
#include "documents/DropletScript.h"
#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyList.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace tavrin {

namespace {

using Error = std::optional<std::string>;

Error failure(const std::string& path, const std::string& reason) {
    return fmt::format("{}: {}", path, reason);
}

Error failure(const std::string& path, int error) {
    return failure(path, std::generic_category().message(error));
}

/// A new folder beside a droplet, which goes with this object unless it has been moved away.
class TemporaryBundle {
  public:
    explicit TemporaryBundle(const std::string& folder) : path(folder + "/.droplet-XXXXXX") {
        if (!::mkdtemp(path.data()))
            error = errno;
    }
    ~TemporaryBundle() {
        std::error_code ignored;
        if (error == 0 && isOurs)
            std::filesystem::remove_all(path, ignored);
    }
    TemporaryBundle(const TemporaryBundle&) = delete;
    TemporaryBundle& operator=(const TemporaryBundle&) = delete;

    /// What lies there now is no concern of this object.
    void release() { isOurs = false; }

    std::string path;
    int error = 0;

  private:
    bool isOurs = true;
};

Error fill(const std::string& path, const PropertyDictionary& settings) {
    std::error_code error;
    std::filesystem::copy(
        DropletBundle::templateFolder(), path,
        std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing, error);
    if (error)
        return failure(path, error.message());
    // Not for the eyes of this user alone, as the folders that have just been made in it.
    struct stat made {};
    if (::stat((path + "/Contents").c_str(), &made) != 0 || ::chmod(path.c_str(), made.st_mode & 0777) != 0)
        return failure(path, errno);
    return DropletBundleWriter::saveDropletSettings(settings, DropletBundle(path).settingsPath());
}

/// A path of a program that has been replaced while it ran.
std::string presentProgram(std::string path) {
    constexpr std::string_view mark = " (deleted)";
    if (path.ends_with(mark) && FileSystem::sharedInstance().isAbsent(path))
        path.resize(path.size() - mark.size());
    return path;
}

} // namespace

DropletBundleWriter::DropletBundleWriter(std::string programPath, bool setsMarks)
    : program(presentProgram(std::move(programPath))), setsTrustMarks(setsMarks) {}

std::optional<std::string> DropletBundleWriter::writeDropletWithDictionary(const PropertyDictionary& settings,
                                                                           const std::string& path) const {
    const DropletBundle bundle(path);
    if (!DropletLauncher(bundle, program).mayBeWritten())
        return failure(bundle.launcherPath(), "there is another file in the launcher's place");
    if (Error error = writeBundle(settings, bundle))
        return error;
    return writeLauncher(bundle);
}

Error DropletBundleWriter::writeBundle(const PropertyDictionary& settings,
                                       const DropletBundle& bundle) const {
    const bool replaces = !FileSystem::sharedInstance().isAbsent(bundle.path());
    if (replaces && !(bundle.isDroplet() && bundle.holdsOnlyItsOwn()))
        return failure(bundle.path(), "what is there is no droplet, or holds other files too");
    TemporaryBundle temporary(bundle.enclosingFolder());
    if (temporary.error != 0)
        return failure(temporary.path, temporary.error);
    if (Error error = fill(temporary.path, settings))
        return error;
    if (!replaces) {
        if (const int error = FileSystem::sharedInstance().renameNoReplace(temporary.path, bundle.path()))
            return failure(bundle.path(), error);
        temporary.release();
        return std::nullopt;
    }
    if (const int error = FileSystem::sharedInstance().exchangeNames(temporary.path, bundle.path()))
        return failure(bundle.path(), error);
    // Something may have come into the old one meanwhile; that is not removed with it.
    temporary.release();
    if (!DropletBundle(temporary.path).remove())
        return failure(temporary.path, "the former droplet could not be removed");
    return std::nullopt;
}

Error DropletBundleWriter::writeLauncher(const DropletBundle& bundle) const {
    const DropletLauncher launcher(bundle, program);
    if (Error error = launcher.write())
        return error;
    if (setsTrustMarks)
        launcher.setTrustMarks();
    DropletScript(bundle, program).write();
    return std::nullopt;
}

std::optional<std::string> DropletBundleWriter::upgrade(const PropertyDictionary& settings,
                                                        const DropletBundle& droplet) const {
    const DropletBundle temporary(droplet.enclosingFolder() + "/Temp Dummy Droplet.app");
    if (Error error = writeBundle(settings, temporary))
        return error;
    if (!droplet.remove()) {
        static_cast<void>(temporary.remove());
        return failure(droplet.path(), "the former droplet could not be removed");
    }
    if (const int error = FileSystem::sharedInstance().renameNoReplace(temporary.path(), droplet.path()))
        return failure(droplet.path(), error);
    return writeLauncher(droplet);
}

std::optional<std::string> DropletBundleWriter::saveDropletSettings(const PropertyDictionary& settings,
                                                                    const std::string& toPath) {
    const auto result = PropertyList::writeAtomically(settings, toPath);
    if (const auto* error = std::get_if<PropertyListError>(&result))
        return failure(toPath, error->message);
    return std::nullopt;
}

} // namespace tavrin
