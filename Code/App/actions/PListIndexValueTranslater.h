#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

/// Moves a stored menu index between two versions of a list.
struct PListIndexValueTranslater {
    /// Looks the index up in the first property list of the resources (names without ".plist") and gives the
    /// index of the same entry in the second; -1 when there is no such entry or list.
    static std::int32_t translateIndex(std::int32_t index, const std::string& fromPList,
                                       const std::string& toPList);
};

} // namespace tavrin
