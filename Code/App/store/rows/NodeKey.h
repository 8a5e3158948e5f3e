#pragma once

#include "store/rows/NodeRow.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <variant>

namespace tavrin {

/// The attributes of rows that sort orders, predicates and commits name.
enum class NodeKey : std::uint8_t {
    name,
    smartName,
    random,
    modDate,
    crDate,
    exif,
    size,
    manualOrder,
    treatAsFolder,
    root,
    diff,
    sortingInformationLoaded, ///< all of them
    depth,
    canBeRenamedIndependently,
    mustBeSwapped,
    cannotBeRenamedBefore,
    mustBeRenamedBefore,
    madeDistinct,
    inode,
    device,
    leftOut, ///< which is a part of what names the row
    problem,
    problemDetail,
    finalName,
    folder, ///< by its path
    parent, ///< the folder in the order of reading
};

/// What a change of an attribute can void: an order, a filtered list, names on show, or the rename plan.
/// A row keeps its own name for life, so an order by names is voided by new rows alone.
enum class ColumnClass : std::uint8_t { none = 0, values = 1, filter = 2, naming = 4, plan = 8, order = 16 };

/// Where an attribute lies in the row; nowhere for what is derived from names, folder and id.
using NodeMember =
    std::variant<std::monostate, bool NodeRow::*, std::uint16_t NodeRow::*, std::int32_t NodeRow::*,
                 std::uint32_t NodeRow::*, std::uint64_t NodeRow::*, double NodeRow::*,
                 NameProblem NodeRow::*, NamedBy NodeRow::*, RowValues NodeRow::*>;

/// All that is known of an attribute: sorting, filtering and committing read this table.
struct NodeAttribute {
    NodeKey key;
    ColumnClass columnClass;
    NodeMember member = {};
    std::uint8_t summaryBit = 0; ///< predicates can only ask for what has one
};

inline constexpr std::array nodeAttributes{
    NodeAttribute{NodeKey::name, ColumnClass::none},
    NodeAttribute{NodeKey::smartName, ColumnClass::none},
    NodeAttribute{NodeKey::random, ColumnClass::none},
    NodeAttribute{NodeKey::modDate, ColumnClass::values, &NodeRow::modDate},
    NodeAttribute{NodeKey::crDate, ColumnClass::values, &NodeRow::crDate},
    NodeAttribute{NodeKey::exif, ColumnClass::values, &NodeRow::exif},
    NodeAttribute{NodeKey::size, ColumnClass::values, &NodeRow::size},
    NodeAttribute{NodeKey::manualOrder, ColumnClass::order, &NodeRow::manualOrder},
    NodeAttribute{NodeKey::treatAsFolder, ColumnClass::filter, &NodeRow::treatAsFolder,
                  rowSummary::treatAsFolder},
    NodeAttribute{NodeKey::root, ColumnClass::filter, &NodeRow::root, rowSummary::root},
    NodeAttribute{NodeKey::diff, ColumnClass::naming, &NodeRow::diff, rowSummary::diff},
    NodeAttribute{NodeKey::sortingInformationLoaded, ColumnClass::none, &NodeRow::loaded,
                  rowSummary::sortingInformationLoaded},
    NodeAttribute{NodeKey::depth, ColumnClass::plan, &NodeRow::depth},
    NodeAttribute{NodeKey::canBeRenamedIndependently, ColumnClass::plan, &NodeRow::canBeRenamedIndependently},
    NodeAttribute{NodeKey::mustBeSwapped, ColumnClass::plan, &NodeRow::mustBeSwapped},
    NodeAttribute{NodeKey::cannotBeRenamedBefore, ColumnClass::plan, &NodeRow::cannotBeRenamedBefore},
    NodeAttribute{NodeKey::mustBeRenamedBefore, ColumnClass::plan, &NodeRow::mustBeRenamedBefore},
    NodeAttribute{NodeKey::madeDistinct, ColumnClass::naming, &NodeRow::madeDistinct},
    NodeAttribute{NodeKey::inode, ColumnClass::none, &NodeRow::inode},
    NodeAttribute{NodeKey::device, ColumnClass::none, &NodeRow::device},
    NodeAttribute{NodeKey::leftOut, ColumnClass::naming, &NodeRow::namedBy, rowSummary::leftOut},
    NodeAttribute{NodeKey::problem, ColumnClass::naming, &NodeRow::problem, rowSummary::problem},
    NodeAttribute{NodeKey::problemDetail, ColumnClass::naming, &NodeRow::problemDetail},
    NodeAttribute{NodeKey::finalName, ColumnClass::naming},
    NodeAttribute{NodeKey::folder, ColumnClass::none},
    NodeAttribute{NodeKey::parent, ColumnClass::none},
};

constexpr const NodeAttribute& attribute(NodeKey key) {
    return nodeAttributes[static_cast<std::size_t>(key)];
}

/// Calls `visit` with each member that a context can change and its column class.
template <typename Visit> constexpr void forEachMember(Visit visit) {
    const auto visitAt = [&]<std::size_t at>() {
        constexpr const NodeAttribute& one = nodeAttributes[at];
        static_assert(one.key == NodeKey{at}, "the table is in the order of the keys");
        if constexpr (one.member.index() != 0)
            visit(std::get<one.member.index()>(one.member), one.columnClass);
    };
    [&]<std::size_t... at>(std::index_sequence<at...>) { (visitAt.template operator()<at>(), ...); }
    (std::make_index_sequence<nodeAttributes.size()>());
}

} // namespace tavrin
