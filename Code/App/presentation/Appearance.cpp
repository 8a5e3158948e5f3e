#include "presentation/Appearance.h"

#include "presentation/FieldFrames.h"
#include "presentation/WindowColours.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <QStyle>

namespace tavrin {

namespace {

constexpr int patience = 200; // milliseconds
constexpr unsigned prefersDark = 1;

/// The setting that desktops share through their portal.
bool desktopPrefersDark() {
    if (!QDBusConnection::sessionBus().isConnected())
        return false;
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Settings", "Read");
    call << QString("org.freedesktop.appearance") << QString("color-scheme");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return false;
    QVariant value = reply.arguments().front();
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == prefersDark;
}

} // namespace

void Appearance::apply() {
    // A desktop with a look of its own loads a style of its own.
    if (QApplication::style()->name().compare("fusion", Qt::CaseInsensitive) == 0)
        applyOwnPalette(desktopPrefersDark());
}

void Appearance::applyOwnPalette(bool dark) {
    if (!dynamic_cast<FieldFrames*>(QApplication::style()))
        QApplication::setStyle(new FieldFrames); // the application owns it
    QApplication::setPalette(WindowColours::palette(dark));
}

} // namespace tavrin
