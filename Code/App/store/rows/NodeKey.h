#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tavrin {

/// The attributes and relationships of `Node` and `File` rows, by which predicates and sort orders name them.
enum class NodeKey : std::uint8_t {
    fullPath,
    name,
    treatAsFolder,
    stageFlag,
    secondaryStageFlag,
    depth,
    parent,
    children,
    finalName,
    diff,
    root,
    parentPath,
    manualOrder,
    modDate,
    crDate,
    exif,
    size,
    smartName,
    random,
    sortingInformationLoaded,
    tagData,
    regex1,
    regex2,
    regex3,
    regex4,
    regex5,
    regex6,
    canBeRenamedIndependently,
    mustBeSwapped,
    cannotBeRenamedBefore,
    mustBeRenamedBefore,
};

/// Types of attributes as key-value access sees them.
enum class AttributeType : std::uint8_t { string, boolean, integer, real, data, row, rows };

/// What a change of an attribute can void: an order, a filtered list, names on show, or the rename plan.
enum class ColumnClass : std::uint8_t { none = 0, sort = 1, filter = 2, naming = 4, plan = 8 };

/// One row of the schema: everything generic reads this table, code that knows the entity uses members.
struct NodeAttribute {
    NodeKey key;
    std::string_view name;
    AttributeType type;
    ColumnClass columnClass;
    bool ofFileOnly;
};

inline constexpr std::array<NodeAttribute, 31> nodeAttributes{{
    {NodeKey::fullPath, "fullPath", AttributeType::string, ColumnClass::none, false},
    {NodeKey::name, "name", AttributeType::string, ColumnClass::sort, false},
    {NodeKey::treatAsFolder, "treatAsFolder", AttributeType::boolean, ColumnClass::filter, false},
    {NodeKey::stageFlag, "stageFlag", AttributeType::string, ColumnClass::none, false},
    {NodeKey::secondaryStageFlag, "secondaryStageFlag", AttributeType::string, ColumnClass::none, false},
    {NodeKey::depth, "depth", AttributeType::integer, ColumnClass::plan, false},
    {NodeKey::parent, "parent", AttributeType::row, ColumnClass::none, false},
    {NodeKey::children, "children", AttributeType::rows, ColumnClass::none, false},
    {NodeKey::finalName, "finalName", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::diff, "diff", AttributeType::boolean, ColumnClass::naming, true},
    {NodeKey::root, "root", AttributeType::boolean, ColumnClass::filter, true},
    {NodeKey::parentPath, "parentPath", AttributeType::string, ColumnClass::none, true},
    {NodeKey::manualOrder, "manualOrder", AttributeType::integer, ColumnClass::sort, true},
    {NodeKey::modDate, "modDate", AttributeType::real, ColumnClass::sort, true},
    {NodeKey::crDate, "crDate", AttributeType::real, ColumnClass::sort, true},
    {NodeKey::exif, "exif", AttributeType::real, ColumnClass::sort, true},
    {NodeKey::size, "size", AttributeType::string, ColumnClass::sort, true},
    {NodeKey::smartName, "smartName", AttributeType::string, ColumnClass::sort, true},
    {NodeKey::random, "random", AttributeType::string, ColumnClass::sort, true},
    {NodeKey::sortingInformationLoaded, "sortingInformationLoaded", AttributeType::boolean, ColumnClass::none,
     true},
    {NodeKey::tagData, "tagData", AttributeType::data, ColumnClass::none, true},
    {NodeKey::regex1, "regex1", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::regex2, "regex2", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::regex3, "regex3", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::regex4, "regex4", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::regex5, "regex5", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::regex6, "regex6", AttributeType::string, ColumnClass::naming, true},
    {NodeKey::canBeRenamedIndependently, "canBeRenamedIndependently", AttributeType::boolean,
     ColumnClass::plan, true},
    {NodeKey::mustBeSwapped, "mustBeSwapped", AttributeType::boolean, ColumnClass::plan, true},
    {NodeKey::cannotBeRenamedBefore, "cannotBeRenamedBefore", AttributeType::row, ColumnClass::plan, true},
    {NodeKey::mustBeRenamedBefore, "mustBeRenamedBefore", AttributeType::row, ColumnClass::plan, true},
}};

/// The schema row of a key.
constexpr const NodeAttribute& attribute(NodeKey key) {
    return nodeAttributes[static_cast<std::size_t>(key)];
}

/// The key that bears this name, if any.
constexpr std::optional<NodeKey> nodeKeyNamed(std::string_view name) {
    for (const NodeAttribute& row : nodeAttributes) {
        if (row.name == name)
            return row.key;
    }
    return std::nullopt;
}

} // namespace tavrin
