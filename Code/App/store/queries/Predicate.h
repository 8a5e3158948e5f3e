#pragma once

#include "store/rows/NodeKey.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// A pass marker "00" to "99" as a number; `unmarked` stands for "never set".
using PassMarker = std::uint8_t;
inline constexpr PassMarker unmarked = 255;

/// The conditions of a fetch: a conjunction of tests on attributes, evaluated on rows. "differs" includes
/// "was never set". A small value; compares equal when it asks the same.
class Predicate {
  public:
    enum class Operation : std::uint8_t { equals, differs, beginsWith };
    /// Booleans, markers and numbers as integer, rows by id, texts as the bytes of the file system.
    using Operand = std::variant<bool, std::int64_t, RowId, std::string>;
    struct Test {
        NodeKey key;
        Operation operation;
        Operand operand;
        bool operator==(const Test&) const = default;
    };

    static Predicate always() { return {}; }
    static Predicate never();
    static Predicate isTrue(NodeKey key) { return test({key, Operation::equals, true}); }
    static Predicate isFalse(NodeKey key) { return test({key, Operation::equals, false}); }
    static Predicate equals(NodeKey key, Operand operand) {
        return test({key, Operation::equals, std::move(operand)});
    }
    /// "stageFlag != marker" (or the secondary marker).
    static Predicate notMarked(PassMarker marker, NodeKey key = NodeKey::stageFlag) {
        return test({key, Operation::differs, std::int64_t{marker}});
    }
    static Predicate hasParent(RowId row) { return test({NodeKey::parent, Operation::equals, row}); }
    static Predicate test(Test test);

    /// Both conditions together.
    [[nodiscard]] Predicate with(const Predicate& other) const;

    [[nodiscard]] const std::vector<Test>& tests() const { return conditions; }
    [[nodiscard]] bool matchesNothing() const { return impossible; }
    bool operator==(const Predicate&) const = default;

  private:
    std::vector<Test> conditions;
    bool impossible = false;
};

/// One key of a sort order.
struct SortDescriptor {
    NodeKey key;
    bool ascending = true;
    bool operator==(const SortDescriptor&) const = default;
};

/// Which rows a fetch yields: `node` means those of both sub-entities.
enum class FetchEntity : std::uint8_t { node, file, ghostNode };

/// A fetch from the rows. Without a sort order rows come by id, that is, in reading order; behind every sort
/// order the last key is `manualOrder`. Limit 0 means all.
struct FetchRequest {
    FetchEntity entity = FetchEntity::file;
    Predicate predicate;
    std::vector<SortDescriptor> order;
    std::size_t limit = 0;
};

} // namespace tavrin
