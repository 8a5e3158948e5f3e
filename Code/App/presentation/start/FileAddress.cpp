#include "presentation/start/FileAddress.h"

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

} // namespace tavrin
