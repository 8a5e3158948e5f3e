#include "presentation/WindowColours.h"

#include <QPalette>

namespace tavrin {

namespace {

const WindowColours light{
    .addedTint = QColor(0xD9F2DF),
    .addedText = QColor(0x0A5524),
    .removedTint = QColor(0xFBE0DE),
    .removedText = QColor(0x8E1B16),
    .errorTint = QColor(0xFCE1DF),
    .errorText = QColor(0xA11B14),
    .warningTint = QColor(0xFFF0C7),
    .warningText = QColor(0x6E4500),
    .infoTint = QColor(0xDFECFD),
    .infoText = QColor(0x0E4A94),
    .accent = QColor(0x0B6F7A),
    .errorMark = QColor(0xA11B14),
};

const WindowColours dark{
    .addedTint = QColor(0x16402A),
    .addedText = QColor(0x9BE8B3),
    .removedTint = QColor(0x4A2322),
    .removedText = QColor(0xFFB9B3),
    .errorTint = QColor(0x4F2220),
    .errorText = QColor(0xFFB4AD),
    .warningTint = QColor(0x42340F),
    .warningText = QColor(0xFFD98A),
    .infoTint = QColor(0x15355A),
    .infoText = QColor(0xA6CEFF),
    .accent = QColor(0x45BFCB),
    .errorMark = QColor(0xFFB4AD),
};

} // namespace

bool WindowColours::isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

const WindowColours& WindowColours::of(const QPalette& palette) { return isDark(palette) ? dark : light; }

bool WindowColours::isOwn(const QPalette& palette) {
    const QPalette own = WindowColours::palette(isDark(palette));
    return palette.color(QPalette::Window) == own.color(QPalette::Window) &&
           palette.color(QPalette::Highlight) == own.color(QPalette::Highlight);
}

QColor WindowColours::accentOf(const QPalette& palette) { return palette.color(QPalette::Link); }

QColor WindowColours::chosenGround(const QPalette& palette) {
    constexpr float share = 0.2F;
    const QColor ground = palette.color(QPalette::Base);
    const QColor accent = accentOf(palette);
    const auto mixed = [](float of, float with) { return of + (with - of) * share; };
    return QColor::fromRgbF(mixed(ground.redF(), accent.redF()), mixed(ground.greenF(), accent.greenF()),
                            mixed(ground.blueF(), accent.blueF()));
}

QPalette WindowColours::palette(bool isDark) {
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, QRgb lightColour, QRgb darkColour) {
        palette.setColor(role, QColor(isDark ? darkColour : lightColour));
    };
    set(QPalette::Window, 0xF3F5F7, 0x20252B);
    set(QPalette::Base, 0xFFFFFF, 0x181C21);
    set(QPalette::AlternateBase, 0xF7F9FA, 0x1C2127);
    set(QPalette::Button, 0xF3F5F7, 0x2A3037);
    set(QPalette::ToolTipBase, 0xFFFFFF, 0x2A3037);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, 0x1A2027, 0xE7EBEF);
    set(QPalette::PlaceholderText, 0x5A6572, 0x9DA8B4);
    set(QPalette::Light, 0xFFFFFF, 0x3A434D);
    set(QPalette::Midlight, 0xE6EAEE, 0x323A43);
    set(QPalette::Mid, 0xD3D9E0, 0x3A434D);
    set(QPalette::Dark, 0xB4BCC6, 0x14181C);
    set(QPalette::Highlight, 0x0B6F7A, 0x146772);
    set(QPalette::HighlightedText, 0xFFFFFF, 0xFFFFFF);
    set(QPalette::Link, 0x0B6F7A, 0x45BFCB);
    set(QPalette::BrightText, 0xA11B14, 0xFFB4AD);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, QColor(isDark ? 0x6F7A86 : 0x98A2AE));
    return palette;
}

} // namespace tavrin
