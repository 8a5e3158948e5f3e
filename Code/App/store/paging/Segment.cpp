#include "store/paging/Segment.h"

#include <cstring>
#include <type_traits>

namespace tavrin {

static_assert(std::is_trivially_copyable_v<NodeRow>, "rows are paged as plain bytes");

std::string_view Segment::blob(Part part, std::string& scratch) const {
    if (part == rowPart)
        return {reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(NodeRow)};
    scratch.clear();
    (part == namePart ? names : part == finalPart ? finals : regex).appendBlob(scratch);
    return scratch;
}

void Segment::clear() {
    rows.assign(capacity, NodeRow{});
    names.clearAll();
    finals.clearAll();
    regex = TextRegion();
    dirty = {};
}

bool Segment::readBlob(Part part, std::string_view bytes) {
    if (part != rowPart)
        return (part == namePart ? names : part == finalPart ? finals : regex).readBlob(bytes, capacity);
    if (bytes.size() != capacity * sizeof(NodeRow))
        return false;
    std::memcpy(static_cast<void*>(rows.data()), bytes.data(), bytes.size());
    return true;
}

std::size_t Segment::footprint() const {
    return rows.capacity() * sizeof(NodeRow) + names.footprint() + finals.footprint() + regex.footprint();
}

void Segment::setRegex(std::size_t index, std::string_view columns) {
    if (!hasRegex())
        regex = TextRegion(capacity);
    regex.set(index, {columns, false});
    dirty[regexPart] = true;
}

} // namespace tavrin
