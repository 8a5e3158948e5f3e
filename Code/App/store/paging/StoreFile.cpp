#include "store/paging/StoreFile.h"

#include "store/paging/StoreError.h"

#include <fmt/core.h>
#include <sqlite3.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

constexpr const char* schema = R"(
PRAGMA page_size = 65536;
PRAGMA locking_mode = EXCLUSIVE;
PRAGMA journal_mode = MEMORY;
PRAGMA synchronous = OFF;
PRAGMA cache_size = -1024;
PRAGMA temp_store = MEMORY;
PRAGMA mmap_size = 0;
CREATE TABLE blob (id INTEGER PRIMARY KEY, content BLOB NOT NULL);
)";

/// A prepared statement; reset when the use of it ends.
class Statement {
  public:
    Statement(sqlite3* database, const char* sql) {
        if (sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
            SQLITE_OK)
            throw StoreError(sqlite3_errmsg(database));
    }
    ~Statement() { sqlite3_finalize(statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(int index, std::int64_t value) {
        sqlite3_bind_int64(statement, index, value);
        return *this;
    }
    Statement& bind(int index, std::string_view bytes) {
        sqlite3_bind_blob64(statement, index, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC);
        return *this;
    }
    /// SQLITE_ROW, SQLITE_DONE or an error.
    int step() { return sqlite3_step(statement); }
    /// Runs a statement without rows; whether it worked.
    bool run() {
        const int result = step();
        reset();
        return result == SQLITE_DONE;
    }
    [[nodiscard]] std::string_view blob() const {
        const void* bytes = sqlite3_column_blob(statement, 0);
        return {static_cast<const char*>(bytes),
                static_cast<std::size_t>(sqlite3_column_bytes(statement, 0))};
    }
    void reset() {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }

  private:
    sqlite3_stmt* statement = nullptr;
};

struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// The process that made "tvrn9.db.<process>.<random>", if the name has that form.
std::optional<pid_t> makerOf(std::string_view name) {
    if (!name.starts_with(StoreFile::fileName))
        return std::nullopt;
    name.remove_prefix(StoreFile::fileName.size());
    pid_t process = 0;
    if (!name.starts_with('.'))
        return std::nullopt;
    const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), process);
    if (error != std::errc{} || end == name.data() + name.size() || *end != '.' || process <= 0)
        return std::nullopt;
    return process;
}

} // namespace

struct StoreFile::Connection {
    Connection(const std::string& made, const std::string& vfs)
        : database(opened(made, vfs)), begin(database.get(), "BEGIN"), commit(database.get(), "COMMIT"),
          rollback(database.get(), "ROLLBACK"),
          put(database.get(), "INSERT OR REPLACE INTO blob (id, content) VALUES (?1, ?2)"),
          get(database.get(), "SELECT content FROM blob WHERE id = ?1"),
          remove(database.get(), "DELETE FROM blob WHERE id BETWEEN ?1 AND ?2") {}

    static std::unique_ptr<sqlite3, Closer> opened(const std::string& made, const std::string& vfs) {
        sqlite3* database = nullptr;
        const int result =
            sqlite3_open_v2(made.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                            vfs.empty() ? nullptr : vfs.c_str());
        std::unique_ptr<sqlite3, Closer> owned(database);
        if (result != SQLITE_OK || sqlite3_exec(database, schema, nullptr, nullptr, nullptr) != SQLITE_OK)
            throw StoreError(database ? sqlite3_errmsg(database) : "out of memory");
        return owned;
    }

    [[nodiscard]] std::string error() const { return sqlite3_errmsg(database.get()); }

    std::unique_ptr<sqlite3, Closer> database;
    Statement begin, commit, rollback, put, get, remove;
    std::string path;
    struct stat identity {};
};

StoreFile::StoreFile(std::string newFolder, std::string newVfs, RefusalHandler handler)
    : folder(std::move(newFolder)), vfs(std::move(newVfs)), refused(std::move(handler)) {}

StoreFile::~StoreFile() {
    struct stat found {};
    if (connection && ::lstat(connection->path.c_str(), &found) == 0 &&
        found.st_ino == connection->identity.st_ino && found.st_dev == connection->identity.st_dev)
        ::unlink(connection->path.c_str());
}

std::optional<std::string> StoreFile::path() const {
    return connection ? std::optional(connection->path) : std::nullopt;
}

void StoreFile::open() {
    std::random_device random;
    const std::string path = fmt::format("{}/{}", folder, fileName);
    const std::string made = fmt::format("{}.{}.{:08x}", path, ::getpid(), random());
    // Exclusively, so that nobody else can have opened it.
    const int descriptor = ::open(made.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw StoreError(fmt::format("{}: {}", path, std::strerror(errno)));
    struct stat identity {};
    ::fstat(descriptor, &identity);
    ::close(descriptor);
    try {
        connection = std::make_unique<Connection>(made, vfs);
        if (std::rename(made.c_str(), path.c_str()) != 0)
            throw StoreError(std::strerror(errno));
    } catch (const StoreError& error) {
        connection.reset();
        ::unlink(made.c_str());
        throw StoreError(fmt::format("{}: {}", path, error.what()));
    }
    connection->path = path;
    connection->identity = identity;
}

bool StoreFile::write(const std::function<void(const Put&)>& fill) {
    if (hasRefused)
        return false;
    std::string reason;
    try {
        if (!connection)
            open();
        bool works = connection->begin.run();
        const bool hasBegun = works;
        if (works)
            fill([&](std::int64_t number, std::string_view bytes) {
                works = works && connection->put.bind(1, number).bind(2, bytes).run();
            });
        if (works && connection->commit.run())
            return true;
        reason = connection->error();
        if (hasBegun)
            connection->rollback.run();
    } catch (const StoreError& error) {
        reason = error.what();
    }
    hasRefused = true;
    if (refused)
        refused(reason);
    return false;
}

bool StoreFile::read(std::int64_t number, const std::function<bool(std::string_view)>& take) {
    if (!connection)
        return false;
    Statement& get = connection->get;
    const int result = get.bind(1, number).step();
    const bool isGood = result == SQLITE_DONE || (result == SQLITE_ROW && take(get.blob()));
    const std::string reason = isGood ? "" : result == SQLITE_ROW ? "damaged" : connection->error();
    get.reset();
    if (!isGood)
        throw StoreError(reason);
    return result == SQLITE_ROW;
}

void StoreFile::forget(std::int64_t first, std::int64_t last) {
    // A blob that stays behind is never read again, so a failure costs only its place in the file.
    if (connection)
        connection->remove.bind(1, first).bind(2, last).run();
}

std::optional<std::string> StoreFile::obstacleIn(const std::string& folder) {
    if (::access((folder + "/.").c_str(), W_OK | X_OK) == 0)
        return std::nullopt;
    return fmt::format("{}: {}", folder, std::strerror(errno));
}

void StoreFile::sweepLeftovers(const std::string& folder) {
    DIR* directory = ::opendir(folder.c_str());
    if (directory == nullptr)
        return;
    while (const dirent* entry = ::readdir(directory)) {
        const auto process = makerOf(entry->d_name);
        if (entry->d_name == fileName || (process && ::kill(*process, 0) != 0 && errno == ESRCH))
            ::unlinkat(::dirfd(directory), entry->d_name, 0);
    }
    ::closedir(directory);
}

} // namespace tavrin
