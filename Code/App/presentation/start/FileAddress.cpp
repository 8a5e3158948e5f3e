#include "presentation/start/FileAddress.h"

#include <QMimeData>
#include <ranges>
#include <string_view>

namespace tavrin {

QByteArray FileAddress::ofPath(const std::string& path) {
    return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/");
}

std::optional<std::string> FileAddress::path(QByteArrayView address) {
    QByteArrayView rest = address.trimmed();
    if (!rest.startsWith("file:"))
        return std::nullopt;
    rest = rest.sliced(5);
    if (rest.startsWith("//")) {
        const qsizetype end = rest.indexOf('/', 2); // of the host, which is this machine
        rest = end < 0 ? QByteArrayView() : rest.sliced(end);
    }
    const QByteArray path =
        QByteArray::fromPercentEncoding(QByteArray::fromRawData(rest.data(), rest.size()));
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    return path.toStdString();
}

bool DroppedFiles::areIn(const QMimeData& data) { return data.hasUrls(); }

std::vector<std::string> DroppedFiles::paths(const QMimeData& data) {
    std::vector<std::string> paths;
    // The list of addresses itself, not what Qt makes of it: its texts would lose bytes that are not UTF-8.
    const QByteArray list = data.data("text/uri-list");
    for (const auto line : std::views::split(std::string_view(list), '\n')) {
        const QByteArrayView address(line.begin(), line.end());
        if (auto path = address.startsWith('#') ? std::nullopt : FileAddress::path(address))
            paths.push_back(std::move(*path));
    }
    return paths;
}

} // namespace tavrin
