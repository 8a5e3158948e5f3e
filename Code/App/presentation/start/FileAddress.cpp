#include "presentation/start/FileAddress.h"

#include <QMimeData>
#include <QUrl>

namespace tavrin {

QByteArray FileAddress::ofPath(const std::string& path) {
    return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/");
}

std::optional<std::string> FileAddress::path(QByteArray address) {
    address = address.trimmed();
    if (!address.startsWith("file:"))
        return std::nullopt;
    QByteArray rest = address.mid(5);
    if (rest.startsWith("//")) {
        const qsizetype end = rest.indexOf('/', 2); // of the host, which is this machine
        rest = end < 0 ? QByteArray() : rest.mid(end);
    }
    const QByteArray path = QByteArray::fromPercentEncoding(rest);
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    return path.toStdString();
}

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
