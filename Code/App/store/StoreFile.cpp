#include "store/StoreFile.h"

#include "store/StoreError.h"

#include <fmt/core.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <unistd.h>

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
CREATE TABLE segment (id INTEGER PRIMARY KEY, content BLOB NOT NULL);
CREATE TABLE scratch (id INTEGER PRIMARY KEY, content BLOB NOT NULL);
CREATE TABLE control (key TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE source_item (id INTEGER PRIMARY KEY, path BLOB NOT NULL, treat_as_folder INTEGER NOT NULL,
                          read_in_root INTEGER NOT NULL, read_in_subfolders INTEGER NOT NULL);
CREATE TABLE processing_error (id INTEGER PRIMARY KEY, title TEXT NOT NULL, message TEXT NOT NULL,
                               path BLOB NOT NULL);
)";

constexpr const char* writeSegmentPart = "INSERT OR REPLACE INTO segment (id, content) VALUES (?1, ?2)";
constexpr const char* readSegmentPart = "SELECT content FROM segment WHERE id = ?1";
constexpr const char* deleteSegment = "DELETE FROM segment WHERE id BETWEEN ?1 AND ?2";
constexpr const char* writeScratchBlob = "INSERT OR REPLACE INTO scratch (id, content) VALUES (?1, ?2)";
constexpr const char* readScratchBlob = "SELECT content FROM scratch WHERE id = ?1";
constexpr const char* writeControlValue = "INSERT OR REPLACE INTO control (key, value) VALUES (?1, ?2)";
constexpr const char* writeSourceItem = "INSERT INTO source_item (path, treat_as_folder, read_in_root, "
                                        "read_in_subfolders) VALUES (?1, ?2, ?3, ?4)";
constexpr const char* writeError = "INSERT INTO processing_error (title, message, path) VALUES (?1, ?2, ?3)";

std::int64_t partId(std::uint32_t number, Segment::Part part) { return std::int64_t{number} * 4 + part; }

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
    Statement& bindBlob(int index, std::string_view bytes) {
        sqlite3_bind_blob64(statement, index, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC);
        return *this;
    }
    Statement& bindText(int index, std::string_view text) {
        sqlite3_bind_text64(statement, index, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                            SQLITE_UTF8);
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
    [[nodiscard]] std::string_view blob(int column) const {
        const void* bytes = sqlite3_column_blob(statement, column);
        return {static_cast<const char*>(bytes),
                static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
    }
    void reset() {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }

  private:
    sqlite3_stmt* statement = nullptr;
};

std::string uniqueName(const std::string& folder) {
    std::random_device random;
    return fmt::format("{}/{}.{}.{:08x}", folder, StoreFile::fileName, ::getpid(), random());
}

/// Makes the empty file so that nobody else can have opened it.
void createExclusively(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw StoreError(
            fmt::format("The item store could not be created at {}: {}", path, std::strerror(errno)));
    ::close(descriptor);
}

} // namespace

struct StoreFile::Connection {
    Connection(const std::string& path, const std::string& vfs) {
        const int result =
            sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                            vfs.empty() ? nullptr : vfs.c_str());
        if (result != SQLITE_OK || sqlite3_exec(database, schema, nullptr, nullptr, nullptr) != SQLITE_OK) {
            const std::string reason = database ? sqlite3_errmsg(database) : "out of memory";
            sqlite3_close(database);
            throw StoreError(fmt::format("The item store could not be created at {}: {}", path, reason));
        }
        try {
            prepare();
        } catch (...) {
            statements.reset();
            sqlite3_close(database);
            throw;
        }
    }
    ~Connection() {
        statements.reset();
        sqlite3_close(database);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    struct Statements {
        explicit Statements(sqlite3* database)
            : begin(database, "BEGIN"), commit(database, "COMMIT"), rollback(database, "ROLLBACK"),
              writePart(database, writeSegmentPart), readPart(database, readSegmentPart),
              forget(database, deleteSegment), putScratch(database, writeScratchBlob),
              getScratch(database, readScratchBlob), clearScratch(database, "DELETE FROM scratch"),
              putControl(database, writeControlValue), clearItems(database, "DELETE FROM source_item"),
              putItem(database, writeSourceItem), clearErrors(database, "DELETE FROM processing_error"),
              putError(database, writeError) {}
        Statement begin, commit, rollback, writePart, readPart, forget, putScratch, getScratch, clearScratch,
            putControl, clearItems, putItem, clearErrors, putError;
    };
    void prepare() { statements = std::make_unique<Statements>(database); }

    [[nodiscard]] std::string error() const { return sqlite3_errmsg(database); }

    /// Runs `work` in one transaction; on failure everything is rolled back and the error's text returned.
    template <typename Work> std::optional<std::string> transaction(Work work) {
        if (!statements->begin.run())
            return error();
        if (work() && statements->commit.run())
            return std::nullopt;
        const std::string reason = error();
        statements->rollback.run();
        return reason;
    }

    sqlite3* database = nullptr;
    std::unique_ptr<Statements> statements;
    std::string scratch;
};

StoreFile::StoreFile(const std::string& folder, const std::string& vfs) {
    const std::string made = uniqueName(folder);
    createExclusively(made);
    try {
        connection = std::make_unique<Connection>(made, vfs);
    } catch (const StoreError&) {
        ::unlink(made.c_str());
        throw;
    }
    filePath = fmt::format("{}/{}", folder, fileName);
    if (std::rename(made.c_str(), filePath.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        connection.reset();
        ::unlink(made.c_str());
        throw StoreError(fmt::format("The item store could not be moved to {}: {}", filePath, reason));
    }
}

StoreFile::~StoreFile() = default;

void StoreFile::readSegment(std::uint32_t number, Segment& into) {
    Statement& read = connection->statements->readPart;
    for (const Segment::Part part : {Segment::rowPart, Segment::namePart, Segment::finalPart}) {
        const bool found = read.bind(1, partId(number, part)).step() == SQLITE_ROW;
        const std::string reason = found ? "" : connection->error();
        const bool isWhole = found && into.readBlob(part, read.blob(0));
        read.reset();
        if (!isWhole)
            throw StoreError(fmt::format("segment {} of the item store could not be read: {}", number,
                                         found ? "damaged" : reason));
    }
}

std::optional<std::string> StoreFile::writeSegments(const std::vector<NumberedSegment>& segments) {
    Statement& write = connection->statements->writePart;
    std::string& scratch = connection->scratch;
    auto failure = connection->transaction([&] {
        for (const auto& [number, segment] : segments) {
            for (const Segment::Part part : {Segment::rowPart, Segment::namePart, Segment::finalPart}) {
                if (!segment->dirty[part])
                    continue;
                if (!write.bind(1, partId(number, part)).bindBlob(2, segment->blob(part, scratch)).run())
                    return false;
            }
        }
        return true;
    });
    if (!failure) {
        for (const NumberedSegment& written : segments)
            written.segment->dirty = {};
    }
    return failure;
}

void StoreFile::forgetSegment(std::uint32_t number) {
    // A blob that stays behind is never read again, so a failure costs only its place in the file.
    connection->statements->forget.bind(1, partId(number, Segment::rowPart))
        .bind(2, partId(number, Segment::finalPart))
        .run();
}

std::optional<std::string> StoreFile::writeControl(const EngineControl& control) {
    const std::pair<const char*, std::int64_t> values[] = {
        {"totalNumberOfFiles", control.totalNumberOfFiles},
        {"totalNumberOfFilesSelectedOrNot", control.totalNumberOfFilesSelectedOrNot},
        {"numberOfFilesThatNeedRenaming", control.numberOfFilesThatNeedRenaming},
        {"numberOfFolders", control.numberOfFolders},
        {"numberOfActuallyRenamedFiles", control.numberOfActuallyRenamedFiles},
        {"totalNumberOfNodes", control.totalNumberOfNodes},
        {"needToRedoConflictResolution", control.needToRedoConflictResolution},
    };
    return connection->transaction([&] {
        for (const auto& [key, value] : values) {
            if (!connection->statements->putControl.bindText(1, key).bind(2, value).run())
                return false;
        }
        return true;
    });
}

std::optional<std::string> StoreFile::writeSourceItems(const std::vector<SourceItem>& items) {
    return connection->transaction([&] {
        if (!connection->statements->clearItems.run())
            return false;
        for (const SourceItem& item : items) {
            if (!connection->statements->putItem.bindBlob(1, item.path)
                     .bind(2, item.treatAsFolder)
                     .bind(3, item.readInRoot)
                     .bind(4, item.readInSubfolders)
                     .run())
                return false;
        }
        return true;
    });
}

std::optional<std::string> StoreFile::writeErrors(const std::deque<ProcessingError>& errors) {
    return connection->transaction([&] {
        if (!connection->statements->clearErrors.run())
            return false;
        for (const ProcessingError& error : errors) {
            if (!connection->statements->putError.bindText(1, error.title)
                     .bindText(2, error.message)
                     .bindBlob(3, error.path)
                     .run())
                return false;
        }
        return true;
    });
}

std::optional<std::string> StoreFile::writeScratch(std::int64_t number, std::string_view bytes) {
    return connection->transaction(
        [&] { return connection->statements->putScratch.bind(1, number).bindBlob(2, bytes).run(); });
}

std::string StoreFile::readScratch(std::int64_t number) {
    Statement& read = connection->statements->getScratch;
    if (read.bind(1, number).step() != SQLITE_ROW) {
        const std::string reason = connection->error();
        read.reset();
        throw StoreError(fmt::format("the sorted list of the item store could not be read: {}", reason));
    }
    std::string bytes(read.blob(0));
    read.reset();
    return bytes;
}

void StoreFile::clearScratch() { connection->statements->clearScratch.run(); }

} // namespace tavrin
