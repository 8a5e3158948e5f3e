#include "engine/asking/LibraryWarnings.h"

#include "engine/asking/UserQuestions.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

/// False where the bytes do not begin with this text of ASCII, in whatever case and form.
bool mayBegin(std::string_view bytes, std::string_view with) {
    constexpr char caseBit = 0x20; // of letters, which all but blanks of the markers are
    for (std::size_t i = 0; i < with.size(); ++i) {
        if (i == bytes.size())
            return false;
        if ((bytes[i] & 0x80) != 0)
            return true;
        if ((bytes[i] | caseBit) != (with[i] | caseBit))
            return false;
    }
    return true;
}

} // namespace

LibraryWarnings::LibraryWarnings(bool warnInsideITunesLibrary, bool warnInsideIPhotoLibrary)
    : iTunes{"iTunes", TextSearch(u"/iTunes", CaseSensitivity::insensitive), warnInsideITunesLibrary},
      iPhoto{"iPhoto Library", TextSearch(u"/iPhoto Library", CaseSensitivity::insensitive),
             warnInsideIPhotoLibrary} {}

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
    return mayBegin(component, library.name) && holdsMarker(library, joinedPath("/", component));
}

bool LibraryWarnings::holdsMarker(const Library& library, const std::string& path) {
    bool mayHold = false;
    for (std::size_t i = 1; i < path.size(); ++i)
        mayHold |= path[i - 1] == '/' && mayBegin(std::string_view(path).substr(i), library.name);
    return mayHold && library.marker.first(text::fromBytes(path)).has_value();
}

} // namespace tavrin
