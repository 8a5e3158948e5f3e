#pragma once

#include "engine/naming/NameProblems.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/Predicate.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavrin {

class StoreOwner;

/// The list behind the preview table: the rows of the main context under a predicate, in a sort order.
/// `fetch` brings it up to date, at no cost while neither rows nor order nor predicate have changed; the work
/// is done when the rows are next looked at. Main thread.
class PreviewList {
  public:
    struct Row {
        RowId id = noRow;
        std::u16string name;
        std::u16string finalName;
        std::string fullPath; ///< in bytes
        bool diff = false;
        bool treatAsFolder = false;
        bool root = false;
        bool madeDistinct = false;
        bool isPinned = false;  ///< its final name is one by hand
        bool isLeftOut = false; ///< it takes no part
        NameProblem problem = NameProblem::none;
        ProblemNote note;           ///< of the problem, or of something to be known
        std::string problemMessage; ///< UTF-8; empty without one
        std::optional<StoreContext::RegexColumns> regex;
    };

    explicit PreviewList(StoreOwner& owner) : store(owner) {}

    void setFetchPredicate(Predicate newPredicate) { predicate = std::move(newPredicate); }
    void setSortDescriptors(std::vector<SortDescriptor> newOrder) { order = std::move(newOrder); }
    [[nodiscard]] const std::vector<SortDescriptor>& sortDescriptors() const { return order; }
    /// What the rows will be fetched by.
    [[nodiscard]] FetchRequest request() const { return {FetchEntity::file, predicate, order, 0}; }
    void fetch() { isFetchPending = true; }
    /// Shows these rows, which are on their way into the store in this order, until the release.
    void hold(std::vector<RowId> arranged);
    void release() { isHeld = false; }
    /// Whether anybody has ever asked for rows; a program without a window never does.
    [[nodiscard]] bool isLookedAt() const { return hasBeenAsked; }

    /// The ids of all rows in order.
    [[nodiscard]] const std::vector<RowId>& arrangedObjects();
    [[nodiscard]] std::size_t count() { return arrangedObjects().size(); }
    [[nodiscard]] bool isEmpty() { return arrangedObjects().empty(); }
    /// The row at a place; absent past the end, and for one that a run has deleted meanwhile.
    [[nodiscard]] std::optional<Row> rowAt(std::size_t index);
    [[nodiscard]] std::optional<Row> rowWithId(RowId id);

    /// Several rows at once; one that a run has deleted meanwhile has no id.
    [[nodiscard]] std::vector<Row> rowsWithIds(std::span<const RowId> ids);
    /// The path of a row in bytes; absent when it is gone.
    [[nodiscard]] std::optional<std::string> pathOf(RowId id);
    /// Whether one of these rows was added by itself, not with its folder.
    [[nodiscard]] bool isAnyRoot(std::span<const RowId> ids);
    /// Those of the rows that will change, in the same order.
    [[nodiscard]] std::vector<RowId> changingRows();
    /// The same in ascending order of their ids, which is the quickest to read them in.
    [[nodiscard]] std::vector<RowId> changingIds();
    /// Those that the rename will refuse, or leave out, in ascending order of their ids.
    [[nodiscard]] std::vector<RowId> problemIds();
    /// The row at a path, whether it is among these or not.
    [[nodiscard]] RowId rowWithPath(const std::string& path);

    /// How often rows have been fetched; for tests of what a refetch costs.
    [[nodiscard]] std::uint64_t fetchCount() const { return fetches; }

  private:
    /// What the rows in hand are an answer to.
    struct Question {
        std::uint64_t generation = 0;
        std::uint64_t version = 0; ///< of the rows
        Predicate predicate;
        std::vector<SortDescriptor> order;
        bool operator==(const Question&) const = default;
    };

    void bringUpToDate();
    /// Reads under the context's lock; nothing when the store fails.
    template <typename Read> auto read(Read&& what) -> decltype(what(std::declval<StoreContext&>()));
    [[nodiscard]] static std::optional<Row> rowOf(StoreContext& context, RowId id);

    StoreOwner& store;
    Predicate predicate = Predicate::always();
    std::vector<SortDescriptor> order;
    bool isFetchPending = false;
    bool isHeld = false;
    bool hasBeenAsked = false;
    std::vector<RowId> rows;
    std::optional<Question> answered;
    std::uint64_t fetches = 0;
};

} // namespace tavrin
