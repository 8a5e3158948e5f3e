#include "presentation/help/HelpWindow.h"

namespace tavrin {

struct HelpWindow::Parts {};

HelpWindow::HelpWindow() { setObjectName("helpWindow"); }
HelpWindow::~HelpWindow() = default;
void HelpWindow::showAnchor(std::string_view) {}

} // namespace tavrin
