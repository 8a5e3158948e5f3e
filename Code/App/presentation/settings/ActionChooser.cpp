#include "presentation/settings/ActionChooser.h"

#include "actions/ActionList.h"
#include "actions/CategoryManager.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/ActionSearchField.h"
#include "presentation/settings/WidePopUpBox.h"
#include "shell/MainController.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

namespace tavrin {

namespace {

QComboBox* makeBox(const char* name, const char* accessibleName) {
    auto* box = new WidePopUpBox;
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    box->setMaxVisibleItems(30);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(6);
    return box;
}

} // namespace

ActionChooser::ActionChooser(WindowServices shared, QWidget* parent)
    : QWidget(parent), services(shared), search(new ActionSearchField(services.actionList)),
      categoryPopUpButton(makeBox("categoryPopUpButton", "Category")),
      actionPopUpButton(makeBox("actionPopUpButton", "Action")) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(search);
    auto* boxes = new QHBoxLayout;
    boxes->setSpacing(8);
    boxes->addWidget(categoryPopUpButton, 2);
    boxes->addWidget(actionPopUpButton, 3);
    layout->addLayout(boxes);
    search->setFoundHandler([this](std::int32_t menuIndex) {
        wasFoundBySearch = true;
        choose(menuIndex);
    });
    std::int32_t category = 0;
    for (const std::u16string& title : services.actionList.categoryPopUpMenuItems()) {
        if (title.empty())
            categoryPopUpButton->insertSeparator(categoryPopUpButton->count());
        else
            categoryPopUpButton->addItem(toQString(title), category++);
    }
    connect(categoryPopUpButton, &QComboBox::activated, this, [this](int row) {
        const auto first =
            CategoryManager::defaultActionForCategory(categoryPopUpButton->itemData(row).toInt());
        if (first)
            choose(*first);
    });
    connect(actionPopUpButton, &QComboBox::activated, this,
            [this](int row) { choose(actionPopUpButton->itemData(row).toInt()); });
}

ActionChooser::~ActionChooser() = default;

void ActionChooser::choose(std::int32_t menuIndex) {
    if (services.controller.compositeAction().transientActionIndex() != menuIndex)
        services.controller.actionListCommands().chooseAction(menuIndex);
    else
        services.controller.actionListCommands().switchAction();
}

void ActionChooser::refresh() {
    const auto index = services.controller.compositeAction().transientActionIndex();
    const auto category = CategoryManager::categoryForAction(index);
    if (!index || !category) {
        categoryPopUpButton->setCurrentIndex(-1);
        actionPopUpButton->setCurrentIndex(-1);
        return;
    }
    categoryPopUpButton->setCurrentIndex(categoryPopUpButton->findData(*category));
    fillActions(*category);
    actionPopUpButton->setCurrentIndex(actionPopUpButton->findData(*index));
}

void ActionChooser::fillActions(std::int32_t category) {
    if (category == std::exchange(shownCategory, category))
        return;
    actionPopUpButton->clear();
    const auto& indexes =
        services.actionList.categoryToActionMapping().at(static_cast<std::size_t>(category));
    for (const std::int32_t index : indexes) {
        const auto& label = services.actionList.popUpMenuItems().at(static_cast<std::size_t>(index));
        if (!label.empty())
            actionPopUpButton->addItem(toQString(label), index);
    }
}

void ActionChooser::findAction() { search->setFocus(Qt::ShortcutFocusReason); }

bool ActionChooser::takeWasFoundBySearch() { return std::exchange(wasFoundBySearch, false); }

} // namespace tavrin
