#include "presentation/preview/TypeIcons.h"

#include "presentation/GlyphIcon.h"
#include "support/text/PathParts.h"

#include <QHash>
#include <QMimeDatabase>

namespace tavrin {

namespace {

QIcon lookedUp(const QString& extension, bool isFolder) {
    if (isFolder)
        return QIcon::fromTheme("folder", GlyphIcon::of(Glyph::folderItem, QPalette::PlaceholderText));
    const QMimeDatabase types;
    const QMimeType type = types.mimeTypeForFile("x." + extension, QMimeDatabase::MatchExtension);
    const QIcon generic =
        QIcon::fromTheme(type.genericIconName(), GlyphIcon::of(Glyph::fileItem, QPalette::PlaceholderText));
    return QIcon::fromTheme(type.iconName(), generic);
}

} // namespace

QIcon TypeIcons::iconFor(const std::string& path, bool isFolder) {
    static QHash<QString, QIcon> known;
    const std::string_view ending = extensionOf(path);
    const QString extension =
        isFolder ? QString("/") : QString::fromUtf8(ending.data(), std::ssize(ending)).toLower();
    auto found = known.find(extension);
    if (found == known.end())
        found = known.insert(extension, lookedUp(extension, isFolder));
    return *found;
}

} // namespace tavrin
