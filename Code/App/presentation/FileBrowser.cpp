#include "presentation/FileBrowser.h"

#include "support/text/PathParts.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QUrl>

namespace tavrin {

namespace {

/// The address of a path: its bytes escaped one by one, so that names that are not UTF-8 stay whole.
QUrl addressOf(const std::string& path) {
    const QByteArray escaped = QByteArray::fromStdString(path).toPercentEncoding("/");
    return QUrl::fromEncoded("file://" + escaped, QUrl::StrictMode);
}

void openAddress(const QUrl& address) {
    if (!QDesktopServices::openUrl(address))
        QApplication::beep();
}

} // namespace

void FileBrowser::reveal(const std::string& path) {
    const std::string folder(PathParts(path).folder);
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                       "org.freedesktop.FileManager1", "ShowItems");
    call << QStringList{QString::fromLatin1(addressOf(path).toEncoded())} << QString();
    if (!QDBusConnection::sessionBus().isConnected()) {
        openAddress(addressOf(folder));
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
        const QDBusPendingReply<> reply = *watcher;
        if (reply.isError())
            openAddress(addressOf(folder));
        watcher->deleteLater();
    });
}

void FileBrowser::open(const std::string& path) { openAddress(addressOf(path)); }

} // namespace tavrin
