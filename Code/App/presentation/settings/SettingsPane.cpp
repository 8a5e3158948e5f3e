#include "presentation/settings/SettingsPane.h"

namespace tavrin {

struct SettingsPane::Parts {};

SettingsPane::SettingsPane(WindowServices, QWidget* parent) : QWidget(parent) {
    setObjectName("settingsPane");
}
SettingsPane::~SettingsPane() = default;
void SettingsPane::showAction(BaseRenameAction&) {}
void SettingsPane::stepsChanged() {}
void SettingsPane::findAction() {}
void SettingsPane::showHelpOnAction() {}
void SettingsPane::enterDropletEditMode() {}

} // namespace tavrin
