#pragma once

#include "presentation/start/WindowLink.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace tavrin {

/// The window under its name on the session bus, where desktops can open files in it too.
class BusLink final : public QObject, public WindowLink {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit BusLink(const QDBusConnection& connection);
    ~BusLink() override;

    [[nodiscard]] Role join(const std::vector<std::string>& paths) override;

  public slots:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& addresses, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);

  private:
    /// Whether the owner of the name has taken the paths; absent when there is no owner any more.
    [[nodiscard]] std::optional<bool> handOver(const std::vector<std::string>& paths);

    QDBusConnection bus;
    bool isWindow = false;
};

} // namespace tavrin
