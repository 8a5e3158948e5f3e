#pragma once

#include <QObject>
#include <functional>

class QDBusVariant;

namespace tavrin {

/// Whether the user wants dark windows: the setting that desktops share through their portal
/// (org.freedesktop.portal.Settings, "color-scheme"). Without a portal the answer is no. Main thread.
class DarkSetting final : public QObject {
    Q_OBJECT

  public:
    /// Calls `whenChanged` with every new answer as long as this object lives.
    explicit DarkSetting(std::function<void(bool)> whenChanged);

    [[nodiscard]] static bool isOn();

  private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

  private:
    std::function<void(bool)> changed;
};

} // namespace tavrin
