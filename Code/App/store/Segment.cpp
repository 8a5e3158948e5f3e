#include "store/Segment.h"

#include <cstring>
#include <type_traits>

namespace tavrin {

static_assert(std::is_trivially_copyable_v<NodeRow>, "rows are paged as plain bytes");

std::string_view Segment::blob(Part part, std::string& scratch) const {
    scratch.clear();
    switch (part) {
    case rowPart:
        return {reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(NodeRow)};
    case namePart:
        names.appendBlob(scratch);
        break;
    case finalPart:
        finals.appendBlob(scratch);
        break;
    }
    return scratch;
}

void Segment::clear() {
    rows.assign(capacity, NodeRow{});
    names.clearAll();
    finals.clearAll();
    dirty = {};
}

bool Segment::readBlob(Part part, std::string_view bytes) {
    switch (part) {
    case rowPart:
        if (bytes.size() != capacity * sizeof(NodeRow))
            return false;
        std::memcpy(static_cast<void*>(rows.data()), bytes.data(), bytes.size());
        return true;
    case namePart:
        return names.readBlob(bytes, capacity);
    case finalPart:
        return finals.readBlob(bytes, capacity);
    }
    return false;
}

std::size_t Segment::footprint() const {
    return rows.capacity() * sizeof(NodeRow) + names.footprint() + finals.footprint();
}

} // namespace tavrin
