#include "engine/asking/LibraryWarnings.h"

#include "engine/asking/UserQuestions.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

/// Whether a component with this first byte can begin with one of the markers, in whatever case.
constexpr bool mayBeginMarker(char first) { return first == 'i' || first == 'I' || (first & 0x80) != 0; }

} // namespace

LibraryWarnings::LibraryWarnings(bool warnInsideITunesLibrary, bool warnInsideIPhotoLibrary)
    : iTunes{TextSearch(u"/iTunes", CaseSensitivity::insensitive), warnInsideITunesLibrary},
      iPhoto{TextSearch(u"/iPhoto Library", CaseSensitivity::insensitive), warnInsideIPhotoLibrary} {}

bool LibraryWarnings::check(const std::string& newFolder, std::string_view component,
                            UserQuestions& questions) {
    if (!iTunes.shouldWarn && !iPhoto.shouldWarn)
        return true;
    lookAt(newFolder);
    bool goesOn = true;
    if (isInside(iPhoto, component)) {
        goesOn = questions.showIPhotoWarningDialog();
        iPhoto.shouldWarn = !goesOn;
    }
    // The second warning comes even when the first has ended the run.
    if (isInside(iTunes, component)) {
        const bool mayGoOn = questions.showITunesWarningDialog();
        iTunes.shouldWarn = !mayGoOn;
        goesOn = goesOn && mayGoOn;
    }
    return goesOn;
}

bool LibraryWarnings::wouldAsk(const std::string& newFolder, std::string_view component) {
    if (!iTunes.shouldWarn && !iPhoto.shouldWarn)
        return false;
    lookAt(newFolder);
    return isInside(iPhoto, component) || isInside(iTunes, component);
}

void LibraryWarnings::lookAt(const std::string& newFolder) {
    if (hasLooked && folder == newFolder)
        return;
    folder = newFolder;
    hasLooked = true;
    for (Library* library : {&iTunes, &iPhoto})
        library->folderIsInside = holdsMarker(*library, folder);
}

bool LibraryWarnings::isInside(const Library& library, std::string_view component) const {
    if (!library.shouldWarn || library.folderIsInside)
        return library.shouldWarn;
    // The markers begin with the only slash in them, so beyond the folder they can only begin the component.
    return !component.empty() && mayBeginMarker(component.front()) &&
           holdsMarker(library, joinedPath(folder, component));
}

bool LibraryWarnings::holdsMarker(const Library& library, const std::string& path) {
    bool mayHold = false;
    for (std::size_t i = 1; i < path.size(); ++i)
        mayHold |= path[i - 1] == '/' && mayBeginMarker(path[i]);
    return mayHold && library.marker.first(text::fromBytes(path)).has_value();
}

} // namespace tavrin
