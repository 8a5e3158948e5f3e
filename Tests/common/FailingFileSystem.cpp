#include "common/FailingFileSystem.h"

#include "platform/files/FolderEntries.h"

namespace tavrin::test {

namespace {

/// A folder of the real file system, counted like the calls by path.
class FailingOpenFolder : public OpenFolder {
  public:
    FailingOpenFolder(FailingFileSystem& counter, std::string folderPath,
                      std::unique_ptr<OpenFolder> realFolder)
        : system(counter), path(std::move(folderPath)), real(std::move(realFolder)) {}

    int status(const std::string& name, FileStatus& into) override {
        return system.look({FileCall::status, path, name}, into,
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
        return system.pass({FileCall::reserve, path, name}, [&] { return real->reserve(known(name), kind); });
    }
    int remove(const std::string& name, FileStatus::Kind kind) override {
        return system.pass({FileCall::remove, path, name}, [&] { return real->remove(known(name), kind); });
    }
    int entries(FolderEntries& into) override {
        return system.pass({FileCall::entries, path}, [&] { return real->entries(into); });
    }
    int volume(VolumeFacts& into) override {
        const int error = real->volume(into);
        into.ignoresCase |= system.ignoresCase;
        into.isRemote |= system.isRemote;
        return error;
    }
    bool liesAt(const std::string& place) override { return real->liesAt(place); }

  private:
    /// The spelling of the item that a folder that ignores case would find.
    std::string known(const std::string& name) {
        FolderEntries entries;
        if (system.ignoresCase && real->entries(entries) == 0) {
            for (const FolderEntry entry : entries) {
                if (text::equalIgnoringCase(text::fromBytes(entry.name), text::fromBytes(name)))
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
        return system.pass({FileCall::write, path}, [&] { return real->append(bytes); });
    }
    int sync() override {
        return system.admit({FileCall::sync, path}); // nothing of a test is to outlive the machine
    }

  private:
    FailingFileSystem& system;
    std::string path;
    std::unique_ptr<AppendFile> real;
};

} // namespace

void FailingFileSystem::failCall(std::size_t number, int error) {
    const std::lock_guard lock(mutex);
    failingCall = calls + number;
    failingError = error;
}

void FailingFileSystem::failKind(FileCall call, int error, std::optional<std::size_t> number) {
    const std::lock_guard lock(mutex);
    Kind& kind = kinds[call];
    kind.error = error;
    kind.failing = number ? std::optional(kind.count + *number) : std::nullopt;
}

void FailingFileSystem::reset() {
    const std::lock_guard lock(mutex);
    kinds.clear();
    calls = failingCall = failures = 0;
}

std::size_t FailingFileSystem::callCount(FileCall first, FileCall last) const {
    const std::lock_guard lock(mutex);
    std::size_t sum = 0;
    for (auto kind = kinds.lower_bound(first); kind != kinds.upper_bound(last); ++kind)
        sum += kind->second.count;
    return sum;
}

std::size_t FailingFileSystem::failureCount() const {
    const std::lock_guard lock(mutex);
    return failures;
}

int FailingFileSystem::admit(const FileEvent& event) {
    int error = before(event);
    const bool movesBoth = event.call == FileCall::exchange || event.call == FileCall::replace;
    if (event.changesNames() && (locked.contains(event.name) || (movesBoth && locked.contains(event.to))))
        error = EPERM;
    const std::lock_guard lock(mutex);
    Kind& kind = kinds[event.call];
    ++kind.count;
    ++calls;
    if (calls == failingCall)
        error = failingError;
    if (kind.error != 0 && kind.count == kind.failing.value_or(kind.count))
        error = kind.error;
    failures += error != 0 ? 1 : 0;
    return error;
}

int FailingFileSystem::openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) {
    std::unique_ptr<OpenFolder> folder;
    const int error = pass({FileCall::openFolder, path}, [&] { return real.openFolder(path, folder); });
    if (error == 0)
        into = std::make_unique<FailingOpenFolder>(*this, path, std::move(folder));
    return error;
}

int FailingFileSystem::makeAppendFile(const std::string& path, std::unique_ptr<AppendFile>& into) {
    std::unique_ptr<AppendFile> file;
    const int error = pass({FileCall::write, path}, [&] { return real.makeAppendFile(path, file); });
    if (error == 0)
        into = std::make_unique<FailingAppendFile>(*this, path, std::move(file));
    return error;
}

} // namespace tavrin::test
