#include "presentation/Appearance.h"

#include "presentation/GlyphIcon.h"
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
#include <algorithm>
#include <array>
#include <clocale>
#include <optional>

namespace tavrin {

namespace {

constexpr int patience = 200; // milliseconds
constexpr unsigned prefersDark = 1;

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* settings = "org.freedesktop.portal.Settings";
constexpr const char* group = "org.freedesktop.appearance";
constexpr const char* key = "color-scheme";

constexpr const char* fileChooser = "org.freedesktop.portal.FileChooser";
constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";
/// Those that bring dialogs of their own, by which they are told apart.
constexpr std::array desktopsWithDialogs{"kde",      "gnome", "unity", "xfce",
                                         "cinnamon", "mate",  "lxqt",  "deepin"};

/// Some portals wrap the value twice.
QVariant valueWithin(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

bool isDark(const QVariant& value) { return valueWithin(value).toUInt() == prefersDark; }

/// What the portal answers to a call with two texts; invalid where it is not there, or takes too long.
QVariant askPortal(const char* interface, const char* method, const char* first, const char* second) {
    if (!QDBusConnection::sessionBus().isConnected())
        return {};
    QDBusMessage call = QDBusMessage::createMethodCall(portal, portalPath, interface, method);
    call << QString(first) << QString(second);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
    const bool isAnswer = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
    return isAnswer ? reply.arguments().front() : QVariant();
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

bool DarkSetting::isOn() { return isDark(askPortal(settings, "Read", group, key)); }

namespace {

/// `strength`: of the lines, from 0 to 1.
void drawFrame(QPainter& painter, const QRect& place, const QStyleOption& option, float strength) {
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    constexpr double radius = 2;
    QColor colour = option.palette.color(QPalette::PlaceholderText);
    colour.setAlphaF(isEnabled ? strength : strength / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

void drawFieldFrame(QPainter& painter, const QStyleOption& option) {
    constexpr float strength = 0.6F;
    const bool isFocused =
        option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Enabled);
    if (WindowColours::isDark(option.palette) && !isFocused)
        drawFrame(painter, option.rect, option, strength);
}

/// An empty box has nothing but its frame to be seen by.
void drawBoxFrame(QPainter& painter, const QStyleOption& option) {
    constexpr float strength = 0.9F;
    drawFrame(painter, option.rect, option, strength);
}

} // namespace

/// What the plain style lacks. It draws the frames of fields and check boxes darker than their ground, which
/// in a dark palette leaves nothing to be seen of them, and of boxes little in a light one: here they are
/// drawn once more. Its pictures
/// are of another time, and stand on the buttons of dialogs: those buttons go without, all else gets our
/// drawings.
class PlainStyle final : public QProxyStyle {
  public:
    PlainStyle() : QProxyStyle("fusion") {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, returned);
    }
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option,
                       const QWidget* widget) const override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

namespace {

std::optional<Glyph> glyphFor(QStyle::StandardPixmap picture) {
    switch (picture) {
    case QStyle::SP_MessageBoxInformation:
        return Glyph::info;
    case QStyle::SP_MessageBoxQuestion:
        return Glyph::help;
    case QStyle::SP_MessageBoxWarning:
    case QStyle::SP_MessageBoxCritical:
        return Glyph::problem;
    case QStyle::SP_LineEditClearButton:
    case QStyle::SP_TitleBarCloseButton:
        return Glyph::close;
    case QStyle::SP_FileDialogToParent:
        return Glyph::up;
    case QStyle::SP_FileDialogNewFolder:
        return Glyph::folders;
    case QStyle::SP_FileIcon:
        return Glyph::fileItem;
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirOpenIcon:
    case QStyle::SP_DirHomeIcon:
        return Glyph::folderItem;
    case QStyle::SP_BrowserReload:
        return Glyph::reset;
    default: // of a long list, which the style itself knows
        return std::nullopt;
    }
}

} // namespace

QIcon PlainStyle::standardIcon(StandardPixmap picture, const QStyleOption* option,
                               const QWidget* widget) const {
    const auto glyph = glyphFor(picture);
    return glyph ? GlyphIcon::of(*glyph) : QProxyStyle::standardIcon(picture, option, widget);
}

void PlainStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit || element == PE_Frame)
        drawFieldFrame(*painter, *option);
    else if (element == PE_IndicatorCheckBox)
        drawBoxFrame(*painter, *option);
}

void PlainStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox)
        drawFieldFrame(*painter, *option);
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

/// Whether the portal's file dialogs can be had: its third version is the first that chooses folders.
bool hasPortalsFileDialogs() {
    constexpr unsigned leastVersion = 3;
    const QVariant version = askPortal("org.freedesktop.DBus.Properties", "Get", fileChooser, "version");
    return valueWithin(version).toUInt() >= leastVersion;
}

bool isThemeOurs = false;

} // namespace

void appearance::preferPortal() {
    const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP").toLower();
    const bool hasDialogs = std::ranges::any_of(
        desktopsWithDialogs, [&desktop](const char* each) { return desktop.contains(each); });
    isThemeOurs = !hasDialogs && !qEnvironmentVariableIsSet(themeVariable);
    if (isThemeOurs)
        qputenv(themeVariable, "xdgdesktopportal");
}

void appearance::setUpNames() {
    // Numbers in files are free of the locale, which Qt has just set.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName("tavrin");
    QApplication::setDesktopFileName("net.calderwick.tavrin");
    if (!isThemeOurs)
        return;
    // Programs that are started from here choose for themselves.
    qunsetenv(themeVariable);
    if (!hasPortalsFileDialogs())
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void appearance::setUpLooks() {
    QApplication::setApplicationDisplayName("Tavrin");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(
        QIcon::fromTheme("net.calderwick.tavrin", QIcon(":/icons/net.calderwick.tavrin.svg")));
    applyDesktopsWish();
}

void appearance::applyOwnPalette(bool dark) {
    if (!dynamic_cast<PlainStyle*>(QApplication::style()))
        QApplication::setStyle(new PlainStyle); // the application owns it
    QApplication::setPalette(WindowColours::palette(dark));
}

} // namespace tavrin

#include "Appearance.moc"
