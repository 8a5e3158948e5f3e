#include "store/Segment.h"

#include <cstring>
#include <type_traits>

namespace tavrin {

static_assert(std::is_trivially_copyable_v<NodeRow>, "rows are paged as plain bytes");

std::string Segment::blob(Part part) const {
    std::string bytes;
    switch (part) {
    case rowPart:
        bytes.assign(reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(NodeRow));
        break;
    case namePart:
        names.appendBlob(bytes);
        break;
    case finalPart:
        finals.appendBlob(bytes);
        break;
    }
    return bytes;
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
