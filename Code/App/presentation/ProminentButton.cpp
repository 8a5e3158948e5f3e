#include "presentation/ProminentButton.h"

#include "presentation/WindowColours.h"

#include <QApplication>
#include <QEvent>

namespace tavrin {

ProminentButton::ProminentButton(const QString& label) : QPushButton(label) { applyColours(); }

void ProminentButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    // Colours set here are told as a change too.
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColours();
}

void ProminentButton::applyColours() {
    const QPalette common = QApplication::palette();
    QPalette own;
    if (WindowColours::isOwn(common)) {
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            own.setColor(group, QPalette::Button, common.color(QPalette::Highlight));
            own.setColor(group, QPalette::ButtonText, common.color(QPalette::HighlightedText));
        }
    }
    setPalette(own);
}

} // namespace tavrin
