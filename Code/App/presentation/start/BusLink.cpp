#include "presentation/start/BusLink.h"

#include "presentation/start/FileAddress.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>

namespace tavrin {

namespace {

const char* const serviceName = "net.calderwick.tavrin";
const char* const objectPath = "/net/calderwick/tavrin";
const char* const interfaceName = "org.freedesktop.Application";

constexpr int patience = 15000; // milliseconds, the start of the window included
constexpr int mostTries = 20;
/// A bus refuses messages above its limit, which is at least twice this.
constexpr qsizetype bytesPerMessage = 16 * 1024 * 1024;

/// What lets a window come to the front: the mark of the user's click on what started this program.
QVariantMap platformData() {
    QVariantMap data;
    if (const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN"); !token.isEmpty())
        data["activation-token"] = QString::fromLatin1(token);
    if (const QByteArray id = qgetenv("DESKTOP_STARTUP_ID"); !id.isEmpty())
        data["desktop-startup-id"] = QString::fromLatin1(id);
    return data;
}

void takeOver(const QVariantMap& data) {
    const QByteArray token = data.value("activation-token").toString().toLatin1();
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token);
}

/// The paths as lists of addresses, none too long for a message.
std::vector<QStringList> messagesOf(const std::vector<std::string>& paths) {
    std::vector<QStringList> messages;
    qsizetype bytes = bytesPerMessage;
    for (const std::string& path : paths) {
        const QString address = QString::fromLatin1(FileAddress::ofPath(path));
        if (bytes + address.size() > bytesPerMessage) {
            messages.emplace_back();
            bytes = 0;
        }
        bytes += address.size();
        messages.back().append(address);
    }
    return messages;
}

} // namespace

BusLink::BusLink(const QDBusConnection& connection) : bus(connection) {}

BusLink::~BusLink() {
    if (!isWindow)
        return;
    bus.unregisterService(serviceName);
    bus.unregisterObject(objectPath);
}

WindowLink::Role BusLink::join(const std::vector<std::string>& paths) {
    // First the object, so that who finds the name always finds it too.
    bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    for (int attempt = 0; attempt < mostTries; ++attempt) {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
            bus.interface()->registerService(serviceName, QDBusConnectionInterface::DontQueueService,
                                             QDBusConnectionInterface::DontAllowReplacement);
        if (!reply.isValid())
            break;
        isWindow = reply.value() == QDBusConnectionInterface::ServiceRegistered;
        if (isWindow)
            return Role::window;
        if (const std::optional<bool> isTaken = handOver(paths)) {
            bus.unregisterObject(objectPath);
            return *isTaken ? Role::handedOver : Role::unanswered;
        }
    }
    bus.unregisterObject(objectPath);
    return Role::unanswered;
}

std::optional<bool> BusLink::handOver(const std::vector<std::string>& paths) {
    const auto call = [this](const char* method) {
        return QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, method);
    };
    std::vector<QDBusMessage> messages;
    for (const QStringList& addresses : messagesOf(paths))
        messages.push_back(call("Open") << addresses << platformData());
    if (messages.empty())
        messages.push_back(call("Activate") << platformData());
    for (QDBusMessage& message : messages) {
        message.setAutoStartService(false);
        const QDBusMessage reply = bus.call(message, QDBus::Block, patience);
        if (reply.type() == QDBusMessage::ReplyMessage)
            continue;
        // Its process may have ended between the two questions.
        if (!bus.interface()->isServiceRegistered(serviceName).value())
            return std::nullopt;
        return false;
    }
    return true;
}

void BusLink::Activate(const QVariantMap& data) {
    takeOver(data);
    deliver({});
}

void BusLink::Open(const QStringList& addresses, const QVariantMap& data) {
    takeOver(data);
    std::vector<std::string> paths;
    for (const QString& address : addresses)
        if (auto path = FileAddress::path(address.toUtf8()))
            paths.push_back(std::move(*path));
    deliver(paths);
}

void BusLink::ActivateAction(const QString&, const QVariantList&, const QVariantMap& data) { Activate(data); }

} // namespace tavrin
