#include "presentation/preview/DropletBanner.h"

#include "presentation/PaletteWatch.h"
#include "presentation/WindowColours.h"

#include <QEvent>
#include <QGuiApplication>

namespace tavrin {

DropletBanner::DropletBanner()
    : QLabel(tr("You are editing a droplet. Files you add here only show the effect.")) {
    setObjectName("dropletBanner");
    setAutoFillBackground(true);
    setWordWrap(true);
    setMargin(8);
    applyColours();
    whenPaletteChanges(this, [this] { applyColours(); });
}

void DropletBanner::applyColours() {
    // Its own palette is tinted, so it does not tell what the desktop's has become.
    const WindowColours& colours = WindowColours::of(QGuiApplication::palette());
    QPalette tinted;
    tinted.setColor(QPalette::Window, colours.infoTint);
    tinted.setColor(QPalette::WindowText, colours.infoText);
    setPalette(tinted);
}

} // namespace tavrin
