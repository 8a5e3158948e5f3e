#pragma once

#include "tags/TagItem.h"

#include <vector>

namespace tavrin {

/// All rows of the tag library, in the order in which they are shown.
[[nodiscard]] std::vector<TagItem> makeTagTable();

} // namespace tavrin
