#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tavrin::text {

/// The edges of all composed character sequences of a text, 0 and the length included, into a reused
/// buffer. An empty text has the one edge 0.
void sequenceEdges(std::u16string_view text, std::vector<std::size_t>& edges);

} // namespace tavrin::text
