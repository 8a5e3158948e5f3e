#include "presentation/DroppedFiles.h"

#include <QMimeData>
#include <QUrl>

namespace tavrin {

bool DroppedFiles::areIn(const QMimeData& data) { return data.hasUrls(); }

std::vector<std::string> DroppedFiles::paths(const QMimeData& data) {
    std::vector<std::string> paths;
    // The list of addresses itself, not what Qt makes of it: its texts would lose bytes that are not UTF-8.
    for (QByteArray line : data.data("text/uri-list").split('\n')) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith('#') || !line.startsWith("file:"))
            continue;
        QByteArray rest = line.mid(5);
        if (rest.startsWith("//"))
            rest = rest.mid(std::max<qsizetype>(rest.indexOf('/', 2), 0)); // a host, which is this machine
        const QByteArray path = QByteArray::fromPercentEncoding(rest);
        if (path.startsWith('/') && !path.contains('\0'))
            paths.push_back(path.toStdString());
    }
    return paths;
}

} // namespace tavrin
