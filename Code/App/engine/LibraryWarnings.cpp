#include "engine/LibraryWarnings.h"

#include "engine/PathParts.h"
#include "engine/UserQuestions.h"
#include "support/Text.h"

namespace tavrin {

LibraryWarnings::LibraryWarnings(bool warnInsideITunesLibrary, bool warnInsideIPhotoLibrary)
    : iTunes{TextSearch(u"/iTunes", CaseSensitivity::insensitive), warnInsideITunesLibrary},
      iPhoto{TextSearch(u"/iPhoto Library", CaseSensitivity::insensitive), warnInsideIPhotoLibrary} {}

bool LibraryWarnings::check(const std::string& newFolder, std::string_view component,
                            UserQuestions& questions) {
    if (!iTunes.shouldWarn && !iPhoto.shouldWarn)
        return true;
    if (!hasLooked || folder != newFolder) {
        folder = newFolder;
        hasLooked = true;
        iTunes.folderIsInside = iTunes.marker.first(text::fromBytes(folder)).has_value();
        iPhoto.folderIsInside = iPhoto.marker.first(text::fromBytes(folder)).has_value();
    }
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

bool LibraryWarnings::isInside(const Library& library, std::string_view component) const {
    if (!library.shouldWarn || library.folderIsInside)
        return library.shouldWarn;
    // The markers begin with the only slash in them, so beyond the folder they can only begin the component.
    const auto first = static_cast<unsigned char>(component.empty() ? 0 : component.front());
    const bool mayBegin = first == 'i' || first == 'I' || first >= 0x80;
    return mayBegin && library.marker.first(text::fromBytes(joinedPath(folder, component))).has_value();
}

} // namespace tavrin
