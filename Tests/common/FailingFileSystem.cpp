#include "common/FailingFileSystem.h"

#include "platform/files/FolderEntries.h"

#include <cerrno>
#include <numeric>
#include <strings.h>

namespace tavrin::test {

namespace {

std::size_t indexOf(FileCall call) { return static_cast<std::size_t>(call); }

/// A folder of the real file system, counted like the calls by path.
class FailingOpenFolder : public OpenFolder {
  public:
    FailingOpenFolder(FailingFileSystem& counter, std::string folderPath,
                      std::unique_ptr<OpenFolder> realFolder)
        : system(counter), path(std::move(folderPath)), real(std::move(realFolder)) {}

    int status(const std::string& name, FileStatus& into) override {
        return system.pass({FileCall::status, path, name, {}},
                           [&] { return real->status(known(name), into); });
    }
    int renameNoReplace(const std::string& from, const std::string& to) override {
        if (const int error = system.admit({FileCall::rename, path, from, to}))
            return error;
        FileStatus taken;
        if (system.ignoresCase && real->status(known(to), taken) == 0)
            return EEXIST;
        return real->renameNoReplace(known(from), to);
    }
    int exchange(const std::string& a, const std::string& b) override {
        return system.pass({FileCall::exchange, path, a, b},
                           [&] { return real->exchange(known(a), known(b)); });
    }
    int renameReplacing(const std::string& from, const std::string& to) override {
        return system.pass({FileCall::replace, path, from, to},
                           [&] { return real->renameReplacing(known(from), known(to)); });
    }
    int link(const std::string& from, const std::string& to) override {
        return system.pass({FileCall::link, path, from, to},
                           [&] { return real->link(known(from), known(to)); });
    }
    int reserve(const std::string& name, FileStatus::Kind kind) override {
        return system.pass({FileCall::reserve, path, name, {}},
                           [&] { return real->reserve(known(name), kind); });
    }
    int remove(const std::string& name, FileStatus::Kind kind) override {
        return system.pass({FileCall::remove, path, name, {}},
                           [&] { return real->remove(known(name), kind); });
    }
    int entries(FolderEntries& into) override {
        return system.pass({FileCall::entries, path, {}, {}}, [&] { return real->entries(into); });
    }
    int volume(VolumeFacts& into) override { return real->volume(into); }
    bool liesAt(const std::string& place) override { return real->liesAt(place); }

  private:
    /// The spelling of the item that a folder that ignores case would find.
    std::string known(const std::string& name) {
        FolderEntries entries;
        if (system.ignoresCase && real->entries(entries) == 0) {
            for (const FolderEntry entry : entries) {
                if (::strcasecmp(std::string(entry.name).c_str(), name.c_str()) == 0)
                    return std::string(entry.name);
            }
        }
        return name;
    }

    FailingFileSystem& system;
    std::string path;
    std::unique_ptr<OpenFolder> real;
};

class FailingAppendFile : public AppendFile {
  public:
    FailingAppendFile(FailingFileSystem& counter, std::string filePath, std::unique_ptr<AppendFile> realFile)
        : system(counter), path(std::move(filePath)), real(std::move(realFile)) {}

    int append(std::string_view bytes) override {
        return system.pass({FileCall::write, path, {}, {}}, [&] { return real->append(bytes); });
    }
    int sync() override {
        return system.admit({FileCall::sync, path, {}, {}}); // nothing of a test is to outlive the machine
    }

  private:
    FailingFileSystem& system;
    std::string path;
    std::unique_ptr<AppendFile> real;
};

} // namespace

FailingFileSystem::FailingFileSystem(FileSystem& realSystem) : real(realSystem) {
    FileSystem::setSharedInstance(this);
}

FailingFileSystem::~FailingFileSystem() { FileSystem::setSharedInstance(nullptr); }

void FailingFileSystem::failCall(std::size_t number, int error, bool andAllAfter) {
    const std::lock_guard lock(mutex);
    seen = 0;
    failingCall = number;
    failingError = error;
    failsOn = andAllAfter;
}

void FailingFileSystem::failKind(FileCall call, int error, std::optional<std::size_t> number) {
    const std::lock_guard lock(mutex);
    kindFailures.at(indexOf(call)) = {error, number, 0};
}

void FailingFileSystem::reset() {
    const std::lock_guard lock(mutex);
    counts.fill(0);
    kindFailures.fill({});
    seen = 0;
    failingCall = 0;
    failsOn = false;
    failures = 0;
}

std::size_t FailingFileSystem::callCount() const {
    const std::lock_guard lock(mutex);
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

std::size_t FailingFileSystem::callCount(FileCall call) const {
    const std::lock_guard lock(mutex);
    return counts.at(indexOf(call));
}

std::size_t FailingFileSystem::nameChangeCount() const {
    const std::lock_guard lock(mutex);
    return std::accumulate(counts.begin() + static_cast<std::ptrdiff_t>(indexOf(FileCall::rename)),
                           counts.end(), std::size_t{0});
}

std::size_t FailingFileSystem::failureCount() const {
    const std::lock_guard lock(mutex);
    return failures;
}

int FailingFileSystem::admit(const FileEvent& event) {
    int error = before(event);
    const std::lock_guard lock(mutex);
    ++counts.at(indexOf(event.call));
    ++seen;
    if (failingCall != 0 && (failsOn ? seen >= failingCall : seen == failingCall))
        error = failingError;
    KindFailure& kind = kindFailures.at(indexOf(event.call));
    if (kind.error != 0 && (!kind.number || ++kind.seen == *kind.number))
        error = kind.error;
    failures += error != 0 ? 1 : 0;
    return error;
}

int FailingFileSystem::openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) {
    if (const int error = admit({FileCall::openFolder, path, {}, {}}))
        return error;
    std::unique_ptr<OpenFolder> folder;
    if (const int error = real.openFolder(path, folder))
        return error;
    into = std::make_unique<FailingOpenFolder>(*this, path, std::move(folder));
    return 0;
}

int FailingFileSystem::status(const std::string& path, FileStatus& into) {
    return pass({FileCall::status, path, {}, {}}, [&] { return real.status(path, into); });
}

int FailingFileSystem::followedStatus(const std::string& path, FileStatus& into) {
    return pass({FileCall::status, path, {}, {}}, [&] { return real.followedStatus(path, into); });
}

int FailingFileSystem::removeFile(const std::string& path) {
    return pass({FileCall::removeFile, path, {}, {}}, [&] { return real.removeFile(path); });
}

int FailingFileSystem::makeFolders(const std::string& path) {
    return pass({FileCall::makeFolders, path, {}, {}}, [&] { return real.makeFolders(path); });
}

int FailingFileSystem::writeFileAtomically(const std::string& path, std::string_view content) {
    return pass({FileCall::write, path, {}, {}}, [&] { return real.writeFileAtomically(path, content); });
}

int FailingFileSystem::makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) {
    if (const int error = admit({FileCall::write, path, {}, {}}))
        return error;
    std::unique_ptr<AppendFile> file;
    if (const int error = real.makeAppendFile(path, file))
        return error;
    into = std::make_unique<FailingAppendFile>(*this, path, std::move(file));
    return 0;
}

int FailingFileSystem::readFile(const std::string& path, std::string& into, std::size_t limit) {
    return pass({FileCall::read, path, {}, {}}, [&] { return real.readFile(path, into, limit); });
}

} // namespace tavrin::test
