#pragma once

#include "store/rows/NodeRow.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

enum class RunOutcome : std::uint8_t { open, inHand, done, failed, leftOut };

/// What has become of each item of the run that is under way, or of the last one: a byte a row, which a
/// display reads for the rows that it paints. Of failures it also has the reasons. It is kept until the next
/// run begins; rows that came later have no outcome.
class RunOutcomes {
  public:
    struct Failure {
        std::string path;      ///< in bytes, as the run found the item
        std::u16string wanted; ///< the name that it was to get
        std::string title;
        std::string message; ///< the whole of it, UTF-8
        std::string reason;  ///< the same in few words
    };
    static constexpr std::size_t mostFailures = 10000; ///< that are kept; all are counted

    // --- The run's thread ---
    /// A new run over rows of which some are planned. Of a run whose rows are not those of the list
    /// `rowsOfList` has for each row of the list, by its id, the row of the run for the same item, or
    /// `noRow`.
    void begin(std::vector<bool> isPlanned, std::optional<std::vector<RowId>> rowsOfList);
    /// One relaxed store; rows beyond the end are left alone.
    void set(RowId row, RunOutcome outcome) {
        if (row < current->end)
            current->bytes[row].store(outcome, std::memory_order_relaxed);
    }
    void fail(RowId row, Failure failure);
    /// Whether the run that ends was stopped before it had come to all items.
    void end(bool byStop) { stopped = byStop; }

    // --- Any thread ---
    /// A look at the outcomes that stays true while the next run begins.
    class View {
      public:
        /// Of a row of the list.
        [[nodiscard]] RunOutcome of(RowId row) const;
        /// Whether the item of a row of the list is one that the run is to rename.
        [[nodiscard]] bool isPlanned(RowId row) const;

      private:
        friend class RunOutcomes;
        struct Table {
            RowId end = 0;
            std::unique_ptr<std::atomic<RunOutcome>[]> bytes;
            std::vector<bool> isPlanned;
            std::optional<std::vector<RowId>> rowsOfList;
        };
        /// The run's own row.
        [[nodiscard]] RowId rowOfRun(RowId row) const;

        std::shared_ptr<const Table> table;
    };
    [[nodiscard]] View view() const;
    /// Rows that did not get their names.
    [[nodiscard]] std::size_t failedRows() const { return failedCount.load(std::memory_order_relaxed); }
    /// Whether the last run was stopped.
    [[nodiscard]] bool wasStopped() const { return stopped; }
    /// Those from this one on, in the order in which they came.
    [[nodiscard]] std::vector<Failure> failuresFrom(std::size_t first) const;

  private:
    mutable std::mutex mutex;
    std::shared_ptr<View::Table> current =
        std::make_shared<View::Table>(); // under the mutex, but read by the
                                         // run's thread, which writes it
    std::vector<Failure> failures;       // under the mutex
    std::atomic<std::size_t> failedCount{0};
    std::atomic<bool> stopped{false};
};

} // namespace tavrin
