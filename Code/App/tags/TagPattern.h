#pragma once

#include "tags/TagAccessors.h"

#include <string>
#include <vector>

namespace tavrin {

/// A pattern of tags and text, cut so that it need not be read again for each file. Made by
/// TagLibraryHelper, and usable without it.
struct TagPattern {
    /// A text as it stands, or a tag.
    struct Piece {
        std::u16string text;
        TagAccessor tag; ///< null for a text
    };
    std::vector<Piece> pieces;
};

} // namespace tavrin
