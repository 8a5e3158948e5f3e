#include "platform/metadata/FileMetadata.h"

#include <fmt/format.h>

namespace tavrin {

std::string unreadMetadataOf(std::size_t files) {
    return fmt::format("The metadata of {} {} could not be read", files, files == 1 ? "file" : "files");
}

} // namespace tavrin
