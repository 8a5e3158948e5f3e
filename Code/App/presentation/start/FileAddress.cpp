#include "presentation/start/FileAddress.h"

#include <algorithm>

namespace tavrin {

QByteArray FileAddress::ofPath(const std::string& path) {
    return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/");
}

std::optional<std::string> FileAddress::path(QByteArray address) {
    address = address.trimmed();
    if (!address.startsWith("file:"))
        return std::nullopt;
    QByteArray rest = address.mid(5);
    if (rest.startsWith("//"))
        rest = rest.mid(std::max<qsizetype>(rest.indexOf('/', 2), 0)); // a host, which is this machine
    const QByteArray path = QByteArray::fromPercentEncoding(rest);
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    return path.toStdString();
}

} // namespace tavrin
