#include "presentation/start/WindowLink.h"

#include "presentation/start/BusLink.h"
#include "presentation/start/SocketLink.h"

#include <QStandardPaths>

namespace tavrin {

std::unique_ptr<WindowLink> WindowLink::forThisSession() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected())
        return std::make_unique<BusLink>(bus);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        return nullptr;
    return std::make_unique<SocketLink>(folder.toLocal8Bit().toStdString());
}

} // namespace tavrin
