#pragma once

#include "store/EngineControl.h"
#include "store/ProcessingError.h"
#include "store/Segment.h"
#include "store/SourceItem.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The SQLite file behind a store. It is made anew under a name of its own, moved over "tvrn9.db" and never
/// opened by path again, so that a second instance of the program has another file. One connection,
/// exclusive; a segment's parts are blobs, and SQL never sees a name as text. Not thread-safe: the store's
/// lock guards it.
class StoreFile {
  public:
    /// Throws StoreError with a sentence for the user when the file cannot be made.
    StoreFile(const std::string& folder, const std::string& vfs);
    ~StoreFile();
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;

    [[nodiscard]] const std::string& path() const { return filePath; }

    /// Fills the segment; throws StoreError when it cannot be read.
    void readSegment(std::uint32_t number, Segment& into);
    /// Writes the dirty parts of the segments in one transaction and clears their marks; the error's text on
    /// failure, with nothing written.
    struct NumberedSegment {
        std::uint32_t number;
        Segment* segment;
    };
    [[nodiscard]] std::optional<std::string> writeSegments(const std::vector<NumberedSegment>& segments);
    void forgetSegment(std::uint32_t number);

    /// Replaces the content of the small tables.
    [[nodiscard]] std::optional<std::string> writeControl(const EngineControl& control);
    [[nodiscard]] std::optional<std::string> writeSourceItems(const std::vector<SourceItem>& items);
    [[nodiscard]] std::optional<std::string> writeErrors(const std::deque<ProcessingError>& errors);

    /// Scratch blobs of a sorted work list.
    [[nodiscard]] std::optional<std::string> writeScratch(std::int64_t number, std::string_view bytes);
    std::string readScratch(std::int64_t number);
    void clearScratch();

    static constexpr std::string_view fileName = "tvrn9.db";

  private:
    struct Connection;
    std::string filePath;
    std::unique_ptr<Connection> connection;
};

} // namespace tavrin
