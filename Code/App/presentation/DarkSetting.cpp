#include "presentation/DarkSetting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace tavrin {

namespace {

constexpr int patience = 200; // milliseconds
constexpr unsigned prefersDark = 1;

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* settings = "org.freedesktop.portal.Settings";
constexpr const char* group = "org.freedesktop.appearance";
constexpr const char* key = "color-scheme";

/// Some portals wrap the value twice.
bool isDark(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == prefersDark;
}

} // namespace

DarkSetting::DarkSetting(std::function<void(bool)> whenChanged) : changed(std::move(whenChanged)) {
    QDBusConnection::sessionBus().connect(portal, portalPath, settings, "SettingChanged", this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
}

bool DarkSetting::isOn() {
    if (!QDBusConnection::sessionBus().isConnected())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(portal, portalPath, settings, "Read");
    call << QString(group) << QString(key);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
           isDark(reply.arguments().front());
}

void DarkSetting::settingChanged(const QString& ofGroup, const QString& ofKey, const QDBusVariant& value) {
    if (ofGroup == group && ofKey == key)
        changed(isDark(value.variant()));
}

} // namespace tavrin
