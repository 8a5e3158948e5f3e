#include "presentation/DroppedFiles.h"

#include "presentation/start/FileAddress.h"

#include <QMimeData>
#include <QUrl>

namespace tavrin {

bool DroppedFiles::areIn(const QMimeData& data) { return data.hasUrls(); }

std::vector<std::string> DroppedFiles::paths(const QMimeData& data) {
    std::vector<std::string> paths;
    // The list of addresses itself, not what Qt makes of it: its texts would lose bytes that are not UTF-8.
    for (const QByteArray& line : data.data("text/uri-list").split('\n')) {
        if (line.startsWith('#'))
            continue;
        if (auto path = FileAddress::path(line))
            paths.push_back(std::move(*path));
    }
    return paths;
}

} // namespace tavrin
