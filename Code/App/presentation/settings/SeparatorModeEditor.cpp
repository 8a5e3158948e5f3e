#include "presentation/settings/SeparatorModeEditor.h"

#include "actions/BaseRenameAction.h"
#include "presentation/settings/WidePopUpBox.h"

#include <QHBoxLayout>

namespace tavrin {

namespace {

/// Modes 0 to 5 put the date first, 6 to 11 the time, each with these texts between the two.
constexpr int textsBetween = 6;

QComboBox* makeBox(const char* name, const char* accessibleName, const QStringList& rows) {
    auto* box = new WidePopUpBox;
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(7);
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    box->addItems(rows);
    return box;
}

} // namespace

SeparatorModeEditor::SeparatorModeEditor(BaseRenameAction& action)
    : orderBox(makeBox("separatorModeOrder", "Order of date and time", {"Date first", "Time first"})),
      betweenBox(makeBox(
          "separatorModeBetween", "Between date and time",
          {"a blank between", "nothing between", "- between", "_ between", "/ between", ". between"})),
      binding(action, "separatorMode",
              [this](const std::optional<PropertyValue>& value) { show(value ? intValue(*value) : 0); }) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(orderBox, 2);
    layout->addWidget(betweenBox, 3);
    setFocusProxy(orderBox);
    connect(orderBox, &QComboBox::activated, this, [this] { write(); });
    connect(betweenBox, &QComboBox::activated, this, [this] { write(); });
}

void SeparatorModeEditor::show(int mode) {
    const bool isKnown = mode >= 0 && mode < 2 * textsBetween;
    orderBox->setCurrentIndex(isKnown ? mode / textsBetween : -1);
    betweenBox->setCurrentIndex(isKnown ? mode % textsBetween : -1);
}

void SeparatorModeEditor::write() {
    binding.write(std::max(0, orderBox->currentIndex()) * textsBetween +
                  std::max(0, betweenBox->currentIndex()));
}

} // namespace tavrin
