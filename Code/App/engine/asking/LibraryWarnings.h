#pragma once

#include "support/text/TextSearch.h"

#include <string>
#include <string_view>

namespace tavrin {

class UserQuestions;

/// Warns once in a run before anything inside a media library is renamed.
class LibraryWarnings {
  public:
    LibraryWarnings(bool warnInsideITunesLibrary, bool warnInsideIPhotoLibrary);

    /// Asks where the item's path draws a warning; false when the run is to stop.
    bool check(const std::string& folder, std::string_view component, UserQuestions& questions);

    /// Whether `check` would ask now.
    [[nodiscard]] bool wouldAsk(const std::string& folder, std::string_view component);

  private:
    /// One library, and the text that its paths hold.
    struct Library {
        std::string_view name;
        TextSearch marker; ///< the name behind a slash
        bool shouldWarn;
        bool folderIsInside = false;
    };

    void lookAt(const std::string& newFolder);
    [[nodiscard]] static bool holdsMarker(const Library& library, const std::string& path);
    [[nodiscard]] bool isInside(const Library& library, std::string_view component) const;

    Library iTunes;
    Library iPhoto;
    std::string folder;
    bool hasLooked = false;
};

} // namespace tavrin
