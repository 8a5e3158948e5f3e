#include "presentation/Appearance.h"

#include "presentation/DarkSetting.h"
#include "presentation/FieldFrames.h"
#include "presentation/WindowColours.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

namespace tavrin {

void Appearance::apply() {
    // A desktop with a look of its own loads a style of its own, and changes it by itself.
    if (QApplication::style()->name().compare("fusion", Qt::CaseInsensitive) != 0)
        return;
    applyOwnPalette(DarkSetting::isOn());
    auto* setting = new DarkSetting(&Appearance::applyOwnPalette);
    setting->setParent(qApp);
}

void Appearance::applyOwnPalette(bool dark) {
    if (!dynamic_cast<FieldFrames*>(QApplication::style()))
        QApplication::setStyle(new FieldFrames); // the application owns it
    QApplication::setPalette(WindowColours::palette(dark));
}

} // namespace tavrin
