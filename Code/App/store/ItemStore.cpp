#include "store/ItemStore.h"

#include "store/ItemStoreImpl.h"
#include "store/StoreError.h"

#include <fmt/core.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <dirent.h>
#include <random>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

std::unique_ptr<StoreFile> openFile(const ItemStore::Options& options, std::optional<std::string>& error) {
    if (options.kind == ItemStore::Kind::memory)
        return nullptr;
    try {
        ItemStore::sweepLeftovers(options.folder);
        return std::make_unique<StoreFile>(options.folder, options.vfs);
    } catch (const StoreError& failure) {
        error = failure.what();
        return nullptr;
    }
}

std::uint64_t freshSecret() {
    std::random_device random;
    return (std::uint64_t{random()} << 32) | random();
}

/// The process that made "tvrn9.db.<process>.<random>", if the name has that form.
std::optional<pid_t> makerOf(std::string_view name) {
    std::string prefix(StoreFile::fileName);
    prefix += '.';
    if (!name.starts_with(prefix))
        return std::nullopt;
    name.remove_prefix(prefix.size());
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    if (error != std::errc{} || end == name.data() + name.size() || *end != '.' || process <= 0)
        return std::nullopt;
    return process;
}

} // namespace

ItemStore::Impl::Impl(Options newOptions)
    : options(std::move(newOptions)), kind(options.kind), file(openFile(options, openError)),
      segments(file.get(), options.residentBudget), secret(freshSecret()) {}

void ItemStore::Impl::requireBackEnd() const {
    if (openError)
        throw StoreError(*openError);
}

RowId ItemStore::Impl::reserveBlock() {
    const std::size_t used = summaries.size();
    const std::size_t firstFree = (used + RowBlock::capacity - 1) / RowBlock::capacity * RowBlock::capacity;
    const std::size_t end = firstFree + RowBlock::capacity;
    summaries.resize(end, 0);
    stageFlags.resize(end, 0xFF);
    secondaryStageFlags.resize(end, 0xFF);
    return static_cast<RowId>(firstFree);
}

bool ItemStore::Impl::migrateToMemory() {
    if (kind == Kind::memory)
        return false;
    segments.leaveFile();
    file.reset();
    openError.reset();
    kind = Kind::memory;
    return true;
}

std::optional<std::string> ItemStore::Impl::flush() {
    if (!file)
        return std::nullopt;
    if (auto failure = segments.flush())
        return failure;
    const auto write = [](bool& isWritten, auto operation) -> std::optional<std::string> {
        if (isWritten)
            return std::nullopt;
        auto failure = operation();
        isWritten = !failure;
        return failure;
    };
    if (auto failure = write(controlIsWritten, [&] { return file->writeControl(control); }))
        return failure;
    if (auto failure =
            write(sourceItemsAreWritten, [&] { return file->writeSourceItems(sourceItems.inOrderAdded()); }))
        return failure;
    return write(errorsAreWritten, [&] { return file->writeErrors(errors); });
}

ItemStore::ItemStore(Options options) : impl(std::make_unique<Impl>(std::move(options))) {}

ItemStore::~ItemStore() = default;

ItemStore::Kind ItemStore::kind() const { return impl->kind; }

std::string ItemStore::type() const { return kind() == Kind::file ? "SQLite" : "InMemory"; }

std::string ItemStore::description() const {
    std::scoped_lock lock(impl->mutex);
    return impl->file ? fmt::format("SQLite at {}", impl->file->path()) : type();
}

std::optional<std::string> ItemStore::openError() const {
    std::scoped_lock lock(impl->mutex);
    return impl->openError;
}

bool ItemStore::migrateToMemory() {
    std::scoped_lock lock(impl->mutex);
    return impl->migrateToMemory();
}

void ItemStore::setDidSaveHandler(std::function<void(const StoreChanges&)> handler) {
    std::scoped_lock lock(impl->mutex);
    impl->didSave = std::move(handler);
}

void ItemStore::sweepLeftovers(const std::string& folder) {
    DIR* directory = ::opendir(folder.c_str());
    if (directory == nullptr)
        return;
    while (const dirent* entry = ::readdir(directory)) {
        const auto process = makerOf(entry->d_name);
        if (process && ::kill(*process, 0) != 0 && errno == ESRCH)
            ::unlinkat(::dirfd(directory), entry->d_name, 0);
    }
    ::closedir(directory);
}

} // namespace tavrin
