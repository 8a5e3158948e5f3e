#include "presentation/preview/TypeIcons.h"

#include "presentation/GlyphIcon.h"

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
    const std::size_t dot = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    const bool hasExtension = dot != path.npos && (slash == path.npos || dot > slash + 1);
    const QString extension = isFolder       ? QString("/")
                              : hasExtension ? QString::fromUtf8(path.c_str() + dot + 1).toLower()
                                             : QString();
    auto found = known.find(extension);
    if (found == known.end())
        found = known.insert(extension, lookedUp(extension, isFolder));
    return *found;
}

} // namespace tavrin
