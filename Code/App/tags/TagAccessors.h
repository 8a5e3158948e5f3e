#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

class TaggedFile;

/// The text of one piece of metadata of a file; absent when the file lacks it.
using TagText = std::optional<std::u16string>;
using TagAccessor = std::function<TagText(TaggedFile&)>;

/// The accessor of a name such as "imageWidth", "trackNumZeroPadded" or "modDate0Hour12". Throws
/// std::logic_error for a name that there is not.
[[nodiscard]] TagAccessor tagAccessor(std::string_view name);

/// The accessor with its text changed; no text stays none.
[[nodiscard]] TagAccessor changed(TagAccessor accessor, std::u16string (*change)(std::u16string_view text));

} // namespace tavrin
