#include "presentation/Appearance.h"

#include "presentation/WindowColours.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>
#include <clocale>

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

/// Whether the user wants dark windows: the setting that desktops share through their portal
/// (org.freedesktop.portal.Settings, "color-scheme"). Without a portal the answer is no. Main thread.
class DarkSetting final : public QObject {
    Q_OBJECT

  public:
    explicit DarkSetting(QObject* parent);

    [[nodiscard]] static bool isOn();

  signals:
    void changed(bool isOn);

  private slots:
    void settingChanged(const QString& ofGroup, const QString& ofKey, const QDBusVariant& value) {
        if (ofGroup == group && ofKey == key)
            emit changed(isDark(value.variant()));
    }
};

DarkSetting::DarkSetting(QObject* parent) : QObject(parent) {
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

namespace {

void drawFrame(QPainter& painter, const QRect& place, const QStyleOption& option) {
    const bool isFocused =
        option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Enabled);
    if (!WindowColours::isDark(option.palette) || isFocused)
        return;
    constexpr double radius = 2;
    QColor colour = option.palette.color(QPalette::PlaceholderText);
    colour.setAlphaF(option.state.testFlag(QStyle::State_Enabled) ? 0.6F : 0.3F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

} // namespace

/// The plain style draws the frames of fields and check boxes darker than their ground, which in a dark
/// palette leaves nothing to be seen of them: here they are drawn once more, light. In light palettes it
/// changes nothing.
class FieldFrames final : public QProxyStyle {
  public:
    FieldFrames() : QProxyStyle("fusion") {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

void FieldFrames::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit || element == PE_IndicatorCheckBox || element == PE_Frame)
        drawFrame(*painter, option->rect, *option);
}

void FieldFrames::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox)
        drawFrame(*painter, option->rect, *option);
}

namespace {

void applyDesktopsWish() {
    // A desktop with a look of its own loads a style of its own, and changes it by itself.
    if (QApplication::style()->name().compare("fusion", Qt::CaseInsensitive) != 0)
        return;
    appearance::applyOwnPalette(DarkSetting::isOn());
    const auto* setting = new DarkSetting(qApp);
    QObject::connect(setting, &DarkSetting::changed, qApp, &appearance::applyOwnPalette);
}

} // namespace

void appearance::setUpNames() {
    // Numbers in files are free of the locale, which Qt has just set.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName("tavrin");
    QApplication::setDesktopFileName("net.calderwick.tavrin");
}

void appearance::setUpLooks() {
    QApplication::setApplicationDisplayName("Tavrin");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(
        QIcon::fromTheme("net.calderwick.tavrin", QIcon(":/icons/net.calderwick.tavrin.svg")));
    applyDesktopsWish();
}

void appearance::applyOwnPalette(bool dark) {
    if (!dynamic_cast<FieldFrames*>(QApplication::style()))
        QApplication::setStyle(new FieldFrames); // the application owns it
    QApplication::setPalette(WindowColours::palette(dark));
}

} // namespace tavrin

#include "Appearance.moc"
