#include "presentation/run/TaskbarProgress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QVariantMap>

namespace tavrin {

namespace {

constexpr const char* path = "/com/canonical/unity/launcherentry/tavrin";
constexpr const char* interface = "com.canonical.Unity.LauncherEntry";

} // namespace

void TaskbarProgress::show(std::optional<int> newPercent) {
    if (newPercent == percent)
        return;
    percent = newPercent;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    QDBusMessage update = QDBusMessage::createSignal(path, interface, "Update");
    update << "application://" + QGuiApplication::desktopFileName() + ".desktop"
           << QVariantMap{{"progress", percent.value_or(0) / 100.0},
                          {"progress-visible", percent.has_value()}};
    bus.send(update);
}

} // namespace tavrin
