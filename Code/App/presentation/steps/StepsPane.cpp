#include "presentation/steps/StepsPane.h"

namespace tavrin {

struct StepsPane::Parts {};

StepsPane::StepsPane(WindowServices, QWidget* parent) : QWidget(parent) { setObjectName("stepsPane"); }
StepsPane::~StepsPane() = default;
void StepsPane::stepsChanged() {}

} // namespace tavrin
