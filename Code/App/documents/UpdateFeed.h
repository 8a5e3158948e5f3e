#pragma once

#include "platform/desktop/UpdateFeedReader.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

class UserDefaults;

/// Where the feed of updates lies, as the user gave it: a path, a file address or a web address.
struct UpdateFeed {
    /// The user default with the location. There is none at first: then nothing asks for updates.
    static constexpr std::string_view locationKey = "SUFeedURL";

    enum class Place { none, file, web, unknown };
    Place place = Place::none;
    std::string location; ///< the path in bytes, or the web address

    /// Blanks around it do not count. Unknown are addresses of other kinds and paths that are not absolute.
    [[nodiscard]] static UpdateFeed at(std::string_view location);
    [[nodiscard]] static UpdateFeed ofDefaults(const UserDefaults& defaults);

    /// The bytes of a file that is no larger than a feed may be, or why they can't be read.
    [[nodiscard]] static std::variant<std::string, UpdateFeedError> readFile(const std::string& path);
    /// The page that tells of a release; absent unless it lies on the web.
    [[nodiscard]] static std::optional<std::string> pageOf(const UpdateFeedItem& item);
};

} // namespace tavrin
