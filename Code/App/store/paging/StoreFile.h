#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The SQLite file behind a store: numbered blobs that do not fit into memory, and nothing else. It is made
/// by the first write, under a name of its own, and moved over "tvrn9.db"; it is never opened by path again,
/// so a second instance of the program has another file. One connection, exclusive. Not thread-safe: the
/// store's lock guards it.
class StoreFile {
  public:
    /// Told the system's reason when a write is refused, once, under the store's lock: to be passed on only.
    using RefusalHandler = std::function<void(const std::string& reason)>;

    /// Touches nothing yet.
    StoreFile(std::string folder, std::string vfs, RefusalHandler refused);
    /// Removes the file, unless its place is another instance's by now.
    ~StoreFile();
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;

    /// Where it lies; absent as long as there is none.
    [[nodiscard]] std::optional<std::string> path() const;

    using Put = std::function<void(std::int64_t number, std::string_view bytes)>;
    /// Writes what `fill` puts, in one transaction. False, with nothing written, when the file cannot be
    /// made or refuses, and ever after: what it holds stays readable.
    [[nodiscard]] bool write(const std::function<void(const Put& put)>& fill);
    [[nodiscard]] bool takesMore() const { return !hasRefused; }
    /// Hands out the blob of that number; false when there is none. `take` returns false for bytes that
    /// cannot be right. Throws StoreError for those, and when the file cannot be read.
    bool read(std::int64_t number, const std::function<bool(std::string_view bytes)>& take);
    void forget(std::int64_t first, std::int64_t last);

    static constexpr std::string_view fileName = "tvrn9.db";
    /// Why no file could be made in the folder, if so.
    [[nodiscard]] static std::optional<std::string> obstacleIn(const std::string& folder);
    /// Removes what earlier processes have left in the folder. A file that is still in use has only its name
    /// removed.
    static void sweepLeftovers(const std::string& folder);

  private:
    struct Connection;
    void open();

    const std::string folder;
    const std::string vfs;
    const RefusalHandler refused;
    std::unique_ptr<Connection> connection;
    bool hasRefused = false;
};

} // namespace tavrin
