#pragma once

#include "support/values/PropertyValue.h"

#include <cstddef>
#include <string>

namespace tavrin {

/// What came of asking for the metadata of a file.
struct FileMetadata {
    PropertyDictionary tags = {}; ///< texts by key; empty for a file that has none, too
    std::string failure = {};     ///< why they could not be read, as a part of a sentence; else empty
};

/// "The metadata of 2 files could not be read", for a reason to follow.
[[nodiscard]] std::string unreadMetadataOf(std::size_t files);

} // namespace tavrin
