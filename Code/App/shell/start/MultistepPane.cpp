#include "shell/start/MultistepPane.h"

#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/FrontEnd.h"

#include <algorithm>

namespace tavrin {

namespace {
constexpr const char* positionKey = "actionListSeparatorPosition";
}

void MultistepPane::restore() {
    moveDivider(0);
    if (services.settings.shouldShowMultistepDrawer())
        moveDivider(storedPosition());
}

void MultistepPane::showMultistepDrawer() {
    const bool isShown = services.settings.shouldShowMultistepDrawer() != 0;
    moveDivider(isShown ? 0 : storedPosition());
    services.settings.setShowMultistepDrawer(isShown ? 0 : 1);
}

bool MultistepPane::canCollapse() const { return services.composite.count() == 1; }

void MultistepPane::splitViewDidResizeSubviews(bool isCollapsed, double width) {
    if (flagSuspendSplitViewPositionSaving)
        return;
    const bool isShown = services.settings.shouldShowMultistepDrawer() != 0;
    if (isShown == isCollapsed)
        services.settings.setShowMultistepDrawer(isCollapsed ? 0 : 1);
    if (!isCollapsed)
        services.defaults.setObject(positionKey, std::max(width, minimumWidth));
}

void MultistepPane::moveDivider(double position) {
    flagSuspendSplitViewPositionSaving = true;
    services.frontEnd.setDividerPosition(position);
    flagSuspendSplitViewPositionSaving = false;
}

double MultistepPane::storedPosition() const { return services.defaults.floatForKey(positionKey); }

} // namespace tavrin
