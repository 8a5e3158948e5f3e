#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavrin {

/// One release that a feed tells of. Texts are UTF-8; what the feed leaves out is empty.
struct UpdateFeedItem {
    std::string title;
    std::string version;      ///< what is compared
    std::string shortVersion; ///< what is shown in its place
    std::string minimumSystemVersion;
    std::string link;
    std::string releaseNotesLink;
};

struct UpdateFeedError {
    std::string message; ///< with the line; part of a sentence
};

/// Reads the feed of an update framework: RSS whose items carry the version in elements or in the attributes
/// of their enclosure. Elements of other kinds are passed over. Refuses document types, so that no entity can
/// grow, more than 4 MiB, 1000 items, 64 levels and 16 KiB for one text. Items come in the feed's order.
struct UpdateFeedReader {
    static constexpr std::size_t sizeLimit = std::size_t{4} << 20;
    using Result = std::variant<std::vector<UpdateFeedItem>, UpdateFeedError>;

    [[nodiscard]] static Result read(std::string_view bytes);
};

} // namespace tavrin
