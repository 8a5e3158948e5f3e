#include "store/contexts/StoreContext.h"
#include "store/contexts/StoreContextImpl.h"
#include "support/text/Text.h"

#include <algorithm>
#include <cstring>
#include <utility>

// The rows of a context: attributes, texts, inserts, deletions.

namespace tavrin {

namespace {

std::string joined(std::string_view folder, std::string_view component) {
    std::string path(folder);
    if (path.empty() || path.back() != '/')
        path += '/';
    if (component != "/")
        path += component;
    return path;
}

std::u16string unitsOf(std::string_view bytes) {
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(units.data()));
    return units;
}

std::string_view bytesOf(std::u16string_view units) {
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

/// Whether the text, as bytes, is the name that the component shows.
bool isShownAs(std::string_view text, std::string_view component) {
    return text.size() == component.size() &&
           std::equal(text.begin(), text.end(), component.begin(),
                      [](char shown, char stored) { return shown == (stored == ':' ? '/' : stored); });
}

} // namespace

bool StoreContext::exists(RowId id) { return id != noRow && impl->summary(id) != rowSummary::none; }

const NodeRow& StoreContext::row(RowId id) {
    if (const RowBlock* block = impl->presentBlock(id))
        return block->rows[RowBlock::index(id)];
    if (const RowImages::Image* image = impl->image(id))
        return image->row;
    return impl->blockOf(id).rows[RowBlock::index(id)];
}

bool StoreContext::treatAsFolder(RowId id) { return (impl->summary(id) & rowSummary::treatAsFolder) != 0; }

bool StoreContext::isLeftOut(RowId id) { return (impl->summary(id) & rowSummary::leftOut) != 0; }

NodeRow& StoreContext::change(RowId id) {
    RowBlock& block = impl->blockOf(id);
    const std::size_t index = RowBlock::index(id);
    NodeRow& row = block.rows[index];
    if ((block.changes[index] & (RowBlock::attributes | RowBlock::inserted)) == 0)
        block.originals.emplace_back(static_cast<std::uint8_t>(index), row);
    impl->note(block, id, RowBlock::attributes);
    return row;
}

std::string_view StoreContext::component(RowId id) {
    if (impl->presentBlock(id) == nullptr) {
        if (const RowImages::Image* image = impl->image(id))
            return impl->images.component(*image);
    }
    return impl->blockWithNames(id).names.get(RowBlock::index(id)).bytes;
}

void StoreContext::name(RowId id, std::u16string& into) {
    text::fromBytes(component(id), into);
    text::replaceUnit(into, u':', u'/');
}

std::u16string StoreContext::name(RowId id) {
    std::u16string result;
    name(id, result);
    return result;
}

void StoreContext::finalName(RowId id, std::u16string& into) {
    const auto present = impl->finalText(id);
    if (!present)
        return name(id, into);
    const TextRegion::Text text = *present;
    if (text.isWide)
        into = unitsOf(text.bytes);
    else
        text::fromBytes(text.bytes, into);
}

std::u16string StoreContext::finalName(RowId id) {
    std::u16string result;
    finalName(id, result);
    return result;
}

StoreContext::HeldName StoreContext::heldFinalName(RowId id) {
    const auto present = impl->finalText(id);
    if (!present)
        return {true, true, {}};
    return {false, !present->isWide, present->isWide ? std::string_view() : present->bytes};
}

void StoreContext::setFinalName(RowId id, std::u16string_view text) {
    impl->blockWithNames(id);
    RowBlock& block = impl->blockWithFinals(id);
    const std::size_t index = RowBlock::index(id);
    std::string& bytes = impl->scratch;
    if (!text::toBytes(text, bytes)) {
        block.finals.set(index, {bytesOf(text), true});
    } else if (isShownAs(bytes, block.names.get(index).bytes)) {
        return setFinalNameToName(id);
    } else {
        const TextRegion::Text present = block.finals.get(index);
        if (block.finals.has(index) && !present.isWide && present.bytes == bytes)
            return;
        block.finals.set(index, {bytes, false});
    }
    impl->note(block, id, RowBlock::finalName);
}

void StoreContext::setFinalNameToName(RowId id) {
    RowBlock& block = impl->blockWithFinals(id);
    const std::size_t index = RowBlock::index(id);
    if (!block.finals.has(index))
        return;
    block.finals.clear(index);
    impl->note(block, id, RowBlock::finalName);
}

std::string StoreContext::fullPath(RowId id) {
    std::string path;
    fullPath(id, path);
    return path;
}

void StoreContext::fullPath(RowId id, std::string& into) {
    const NodeRow& read = row(id);
    if (read.entity == NodeEntity::none) {
        into.clear();
        return;
    }
    if (read.parent == noRow) {
        into = impl->folderPath(id);
        return;
    }
    const std::string& folder = impl->folderPath(read.parent);
    const std::string_view last = component(id);
    into.assign(folder);
    if (into.empty() || into.back() != '/')
        into += '/';
    if (last != "/")
        into += last;
}

std::string StoreContext::parentPath(RowId id) {
    const RowId parent = row(id).parent;
    return parent == noRow ? std::string() : impl->folderPath(parent);
}

PassMarker StoreContext::stageFlag(RowId id) {
    if (!impl->staged.marks.empty()) {
        if (const auto mark = impl->staged.marks.find(id); mark != impl->staged.marks.end())
            return mark->second;
    }
    if (impl->presentBlock(id) == nullptr) {
        if (impl->image(id) != nullptr)
            return impl->storedStageFlag(id);
    }
    return impl->blockOf(id).stageFlags[RowBlock::index(id)];
}

PassMarker StoreContext::Impl::storedStageFlag(RowId id) { return store.access()->stageFlags[id]; }

std::optional<TextRegion::Text> StoreContext::Impl::finalText(RowId id) {
    if (presentBlock(id) == nullptr) {
        if (const RowImages::Image* found = image(id))
            return found->hasFinal ? std::optional(images.finalName(*found)) : std::nullopt;
    }
    const RowBlock& block = blockWithFinals(id);
    const std::size_t index = RowBlock::index(id);
    return block.finals.has(index) ? std::optional(block.finals.get(index)) : std::nullopt;
}

void StoreContext::setStageFlag(RowId id, PassMarker marker) {
    if (impl->presentBlock(id) == nullptr && impl->image(id) != nullptr) {
        impl->staged.marks[id] = marker;
        return;
    }
    impl->staged.marks.erase(id);
    RowBlock& block = impl->blockOf(id);
    block.stageFlags[RowBlock::index(id)] = marker;
    impl->note(block, id, RowBlock::stageFlag);
}

void StoreContext::setSecondaryStageFlag(RowId id, PassMarker marker) {
    RowBlock& block = impl->blockOf(id);
    block.secondaryStageFlags[RowBlock::index(id)] = marker;
    impl->note(block, id, RowBlock::secondaryStageFlag);
}

namespace {

/// Each column as its length and its code units.
std::string encoded(const StoreContext::RegexColumns& columns) {
    std::string bytes;
    for (const std::u16string& column : columns) {
        const auto length = static_cast<std::uint32_t>(column.size());
        bytes.append(reinterpret_cast<const char*>(&length), sizeof length).append(bytesOf(column));
    }
    return bytes;
}

StoreContext::RegexColumns decoded(std::string_view bytes) {
    StoreContext::RegexColumns columns;
    for (std::u16string& column : columns) {
        std::uint32_t length = 0;
        if (bytes.size() < sizeof length)
            break;
        std::memcpy(&length, bytes.data(), sizeof length);
        bytes.remove_prefix(sizeof length);
        column = unitsOf(bytes.substr(0, length * sizeof(char16_t)));
        bytes.remove_prefix(std::min(bytes.size(), length * sizeof(char16_t)));
    }
    return columns;
}

} // namespace

std::optional<StoreContext::RegexColumns> StoreContext::regexColumns(RowId id) {
    if (const auto found = impl->staged.regexColumns.find(id); found != impl->staged.regexColumns.end())
        return decoded(found->second);
    const auto columnsOf = [](std::string_view columns) {
        return columns.empty() ? std::nullopt : std::optional(decoded(columns));
    };
    if (const RowImages::Image* image = impl->image(id))
        return columnsOf(impl->images.regex(*image));
    const ItemStore::Access inside = impl->store.access();
    SegmentTable& segments = inside->segments;
    if (!segments.hasRegex(Segment::number(id)))
        return std::nullopt;
    return columnsOf(segments.use(Segment::number(id)).regexAt(Segment::index(id)));
}

void StoreContext::setRegexColumns(RowId id, const RegexColumns& columns) {
    impl->staged.regexColumns.insert_or_assign(id, encoded(columns));
    impl->note(impl->blockWithFinals(id), id, RowBlock::finalName);
}

std::optional<PropertyData> StoreContext::tagData(RowId id) {
    if (const auto found = impl->staged.tagData.find(id); found != impl->staged.tagData.end())
        return found->second;
    return impl->store.access()->tags.get(id);
}

void StoreContext::setTagData(RowId id, PropertyData data) {
    impl->staged.tagBytes += data.bytes.size();
    impl->staged.tagData.insert_or_assign(id, std::move(data));
}

RowId StoreContext::Impl::insert(const NodeRow& row, std::string_view component) {
    if (nextReserved == endReserved) {
        nextReserved = store.access()->reserveBlock();
        endReserved = nextReserved + static_cast<RowId>(RowBlock::capacity);
        if (nextReserved == noRow)
            ++nextReserved;
    }
    const RowId id = nextReserved++;
    blockWithNames(id);
    RowBlock& block = blockWithFinals(id);
    const std::size_t index = RowBlock::index(id);
    block.rows[index] = row;
    block.names.set(index, {component, false});
    note(block, id, RowBlock::inserted);
    return id;
}

RowId StoreContext::insertFile(RowId parent, std::string_view component, bool root, bool treatAsFolder,
                               std::int32_t manualOrder, const SeenItem& seen) {
    NodeRow row;
    row.entity = NodeEntity::file;
    row.parent = parent;
    row.root = root;
    row.treatAsFolder = treatAsFolder;
    row.manualOrder = manualOrder;
    row.setIdentity(seen.identity);
    row.kind = seen.kind;
    const RowId id = impl->insert(row, component);
    if (treatAsFolder) {
        std::string path = joined(impl->folderPath(parent), component);
        impl->staged.foldersByPath.try_emplace(path, id);
        impl->staged.folderPaths.emplace(id, std::move(path));
    }
    return id;
}

RowId StoreContext::insertGhostNode(std::string_view path, const FileIdentity& identity, RowId parent) {
    NodeRow row;
    row.parent = parent;
    row.entity = NodeEntity::ghostNode;
    row.treatAsFolder = true;
    row.setIdentity(identity);
    row.kind = FileStatus::Kind::folder;
    const RowId id = impl->insert(row, componentOf(path));
    impl->staged.foldersByPath.try_emplace(std::string(path), id);
    impl->staged.folderPaths.emplace(id, path);
    return id;
}

void StoreContext::deleteRow(RowId id) {
    if (!exists(id))
        return;
    RowBlock& block = impl->blockOf(id);
    impl->note(block, id, RowBlock::deleted);
    impl->staged.deletedTrees.push_back(id);
}

std::size_t StoreContext::deleteNodes(std::size_t limit) {
    RowId next = impl->staged.deletedNodes.empty() ? noRow : impl->staged.deletedNodes.back() + 1;
    std::size_t count = 0;
    const ItemStore::Access inside = impl->store.access();
    if (next == noRow)
        next = impl->firstDeletable;
    for (; next < inside->summaries.size() && count < limit; ++next) {
        if (!inside->exists(next))
            continue;
        impl->staged.deletedNodes.push_back(next);
        ++count;
    }
    impl->firstDeletable = count == 0 ? noRow : next;
    return count;
}

} // namespace tavrin
