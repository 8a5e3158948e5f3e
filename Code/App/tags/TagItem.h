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

/// One row of the tag library.
struct TagItem {
    std::u16string name;     ///< with its angle brackets, as it stands in patterns; case counts
    std::string description; ///< for the list of tags
    TagAccessor transformValue;
    std::string_view category; ///< "image", "camera", "exif_date", "file_date" or "music"

    /// The text of the tag for a file; absent when the file lacks it.
    [[nodiscard]] TagText extractStringFromFile(TaggedFile& file) const { return transformValue(file); }
};

} // namespace tavrin
