#include "store/paging/ItemStore.h"

#include "store/paging/ItemStoreImpl.h"

#include <fmt/core.h>

#include <atomic>
#include <random>
#include <utility>

namespace tavrin {

namespace {

std::optional<std::string> obstacle(const ItemStore::Options& options) {
    return options.kind == ItemStore::Kind::file ? StoreFile::obstacleIn(options.folder) : std::nullopt;
}

std::uint64_t nextSerial() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

std::uint64_t freshSecret() {
    std::random_device random;
    return (std::uint64_t{random()} << 32) | random();
}

} // namespace

ItemStore::Impl::Impl(Options options)
    : serial(nextSerial()), openError(obstacle(options)), kind(openError ? Kind::memory : options.kind),
      file(kind == Kind::file
               ? std::make_unique<StoreFile>(options.folder, options.vfs, std::move(options.fileRefused))
               : nullptr),
      segments(file.get(), options.residentBudget), tags(file.get(), options.residentBudget / 4),
      secret(freshSecret()) {
    if (file)
        StoreFile::sweepLeftovers(options.folder);
}

RowId ItemStore::Impl::reserveBlock() {
    const std::size_t used = summaries.size();
    const std::size_t firstFree = (used + RowBlock::capacity - 1) / RowBlock::capacity * RowBlock::capacity;
    const std::size_t end = firstFree + RowBlock::capacity;
    summaries.resize(end, rowSummary::none);
    stageFlags.resize(end, unmarked);
    secondaryStageFlags.resize(end, unmarked);
    return static_cast<RowId>(firstFree);
}

bool ItemStore::Impl::migrateToMemory() {
    if (kind == Kind::memory)
        return false;
    segments.leaveFile();
    tags.leaveFile();
    file.reset();
    kind = Kind::memory;
    return true;
}

ItemStore::ItemStore(Options options) : impl(std::make_unique<Impl>(std::move(options))) {}

ItemStore::~ItemStore() = default;

ItemStore::Kind ItemStore::kind() const { return impl->kind; }

std::uint64_t ItemStore::serial() const { return impl->serial; }

std::string ItemStore::type() const { return kind() == Kind::file ? "SQLite" : "InMemory"; }

std::string ItemStore::description() const {
    const Access inside = access();
    const auto path = inside->file ? inside->file->path() : std::nullopt;
    return path ? fmt::format("{} at {}", type(), *path) : type();
}

const std::optional<std::string>& ItemStore::openError() const { return impl->openError; }

std::uint64_t ItemStore::deletionVersion() const { return impl->deletionVersion; }

bool ItemStore::migrateToMemory() { return access()->migrateToMemory(); }

void ItemStore::setDidSaveHandler(std::function<void(const StoreChanges&)> handler) {
    access()->didSave = std::move(handler);
}

} // namespace tavrin
