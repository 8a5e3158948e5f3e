#pragma once

#include "store/Segment.h"
#include "store/StoreFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The segments of a store: all in memory without a file, the most recently used within a budget with one.
/// Not thread-safe: the store's lock guards it.
class SegmentTable {
  public:
    /// `file` is not owned and null without one; the budget is in bytes.
    SegmentTable(StoreFile* newFile, std::size_t newBudget) : file(newFile), budget(newBudget) {}

    /// While one lives nothing is evicted, so that segments stay where they are.
    class Hold {
      public:
        explicit Hold(SegmentTable& held) : table(held) { ++table.holds; }
        ~Hold() { --table.holds; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

      private:
        SegmentTable& table;
    };

    /// The segment, read from the file where needed. Throws StoreError when it cannot be read, and for one
    /// that does not exist. Valid until the next call.
    Segment& use(std::uint32_t number);
    /// Makes an empty segment where there is none.
    void create(std::uint32_t number);
    [[nodiscard]] bool exists(std::uint32_t number) const;
    void drop(std::uint32_t number);

    /// Writes and evicts the segments used longest ago until the budget holds; the error's text when the file
    /// refuses.
    [[nodiscard]] std::optional<std::string> makeRoom();
    /// Takes this many bytes out of the budget for other things.
    void setReserve(std::size_t bytes) { reserve = bytes; }
    /// Writes all dirty segments.
    [[nodiscard]] std::optional<std::string> flush();
    /// Goes on without the file: what is not in memory is gone.
    void leaveFile();
    /// Whether rows may be paged out.
    [[nodiscard]] bool isPaged() const { return file != nullptr; }
    /// Whether all rows together exceed the budget, so that access out of order costs reads of the file.
    [[nodiscard]] bool exceedsBudget() const;

  private:
    struct Entry {
        std::unique_ptr<Segment> resident;
        bool exists = false;
    };
    [[nodiscard]] std::size_t residentBytes() const;
    [[nodiscard]] std::optional<std::string> writeDirty(const std::vector<std::uint32_t>& numbers);
    std::vector<std::uint32_t> residentByAge() const;

    StoreFile* file;
    std::size_t budget;
    std::unique_ptr<Segment> freshSegment();
    void keepSpare(std::unique_ptr<Segment> segment);

    std::vector<Entry> entries;
    std::vector<std::unique_ptr<Segment>> spares; ///< so that paging does not tear the heap to pieces
    std::size_t existing = 0;
    std::uint64_t clock = 0;
    int holds = 0;
    std::size_t reserve = 0;
};

} // namespace tavrin
