#include "common/FailingFileSystem.h"

#include <numeric>

namespace tavrin::test {

namespace {

std::size_t indexOf(FileCall call) { return static_cast<std::size_t>(call); }

/// A folder of the real file system, counted like the calls by path.
class FailingOpenFolder : public OpenFolder {
  public:
    FailingOpenFolder(FailingFileSystem& counter, std::unique_ptr<OpenFolder> realFolder)
        : system(counter), real(std::move(realFolder)) {}

    int status(const std::string& name, FileStatus& into) override {
        const int error = system.admit(FileCall::status);
        return error != 0 ? error : real->status(name, into);
    }
    int renameNoReplace(const std::string& from, const std::string& to) override {
        const int error = system.admit(FileCall::rename);
        return error != 0 ? error : real->renameNoReplace(from, to);
    }
    int entries(FolderEntries& into) override {
        const int error = system.admit(FileCall::entries);
        return error != 0 ? error : real->entries(into);
    }
    int volume(VolumeStatus& into) override {
        const int error = system.admit(FileCall::status);
        return error != 0 ? error : real->volume(into);
    }

  private:
    FailingFileSystem& system;
    std::unique_ptr<OpenFolder> real;
};

class FailingAppendFile : public AppendFile {
  public:
    FailingAppendFile(FailingFileSystem& counter, std::unique_ptr<AppendFile> realFile)
        : system(counter), real(std::move(realFile)) {}

    int append(std::string_view bytes) override {
        const int error = system.admit(FileCall::write);
        return error != 0 ? error : real->append(bytes);
    }
    int sync() override {
        const int error = system.admit(FileCall::sync);
        return error != 0 ? error : real->sync();
    }

  private:
    FailingFileSystem& system;
    std::unique_ptr<AppendFile> real;
};

} // namespace

FailingFileSystem::FailingFileSystem(FileSystem& realSystem) : real(realSystem) {
    FileSystem::setSharedInstance(this);
}

FailingFileSystem::~FailingFileSystem() { FileSystem::setSharedInstance(nullptr); }

void FailingFileSystem::failCall(std::size_t number, int error) {
    const std::lock_guard lock(mutex);
    seen = 0;
    failingCall = number;
    failingError = error;
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

std::size_t FailingFileSystem::failureCount() const {
    const std::lock_guard lock(mutex);
    return failures;
}

int FailingFileSystem::admit(FileCall call) {
    const std::lock_guard lock(mutex);
    ++counts.at(indexOf(call));
    int error = ++seen == failingCall ? failingError : 0;
    KindFailure& kind = kindFailures.at(indexOf(call));
    if (kind.error != 0 && (!kind.number || ++kind.seen == *kind.number))
        error = kind.error;
    failures += error != 0 ? 1 : 0;
    return error;
}

int FailingFileSystem::openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) {
    if (const int error = admit(FileCall::openFolder))
        return error;
    std::unique_ptr<OpenFolder> folder;
    if (const int error = real.openFolder(path, folder))
        return error;
    into = std::make_unique<FailingOpenFolder>(*this, std::move(folder));
    return 0;
}

int FailingFileSystem::status(const std::string& path, FileStatus& into) {
    const int error = admit(FileCall::status);
    return error != 0 ? error : real.status(path, into);
}

int FailingFileSystem::followedStatus(const std::string& path, FileStatus& into) {
    const int error = admit(FileCall::status);
    return error != 0 ? error : real.followedStatus(path, into);
}

int FailingFileSystem::renameNoReplace(const std::string& from, const std::string& to) {
    const int error = admit(FileCall::rename);
    return error != 0 ? error : real.renameNoReplace(from, to);
}

int FailingFileSystem::removeFile(const std::string& path) {
    const int error = admit(FileCall::remove);
    return error != 0 ? error : real.removeFile(path);
}

int FailingFileSystem::removeEmptyFolder(const std::string& path) {
    const int error = admit(FileCall::remove);
    return error != 0 ? error : real.removeEmptyFolder(path);
}

int FailingFileSystem::makeFolders(const std::string& path) {
    const int error = admit(FileCall::makeFolders);
    return error != 0 ? error : real.makeFolders(path);
}

int FailingFileSystem::writeFileAtomically(const std::string& path, std::string_view content) {
    const int error = admit(FileCall::write);
    return error != 0 ? error : real.writeFileAtomically(path, content);
}

int FailingFileSystem::makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) {
    if (const int error = admit(FileCall::write))
        return error;
    std::unique_ptr<AppendFile> file;
    if (const int error = real.makeAppendFile(path, file))
        return error;
    into = std::make_unique<FailingAppendFile>(*this, std::move(file));
    return 0;
}

int FailingFileSystem::readFile(const std::string& path, std::string& into, std::size_t limit) {
    const int error = admit(FileCall::read);
    return error != 0 ? error : real.readFile(path, into, limit);
}

} // namespace tavrin::test
