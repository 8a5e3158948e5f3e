#include "presentation/settings/ActionChooser.h"

#include "actions/ActionList.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/ActionSearchField.h"
#include "presentation/settings/ParameterEditors.h"
#include "shell/MainController.h"

#include <QBoxLayout>
#include <QLabel>
#include <utility>

namespace tavrin {

namespace {

constexpr int spacing = 8;

/// A combo box is spoken by the name of its label alone where readers are asked over a bus, so it has one,
/// which needs no place.
QComboBox* makeBox(QWidget* parent, const char* name, const QString& accessibleName) {
    auto* box = new WidePopUpBox;
    box->setObjectName(name);
    box->setAccessibleName(accessibleName);
    auto* label = new QLabel(accessibleName, parent);
    label->setBuddy(box);
    label->hide();
    box->setMaxVisibleItems(30);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(6);
    return box;
}

} // namespace

ActionChooser::ActionChooser(const WindowServices& shared)
    : services(shared), search(new ActionSearchField(services.actionList)),
      categoryPopUpButton(makeBox(this, "categoryPopUpButton", tr("Category"))),
      actionPopUpButton(makeBox(this, "actionPopUpButton", tr("Action"))),
      all(new QBoxLayout(QBoxLayout::TopToBottom, this)), boxes(new QBoxLayout(QBoxLayout::LeftToRight)) {
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(spacing);
    all->addWidget(search, 3);
    boxes->setSpacing(spacing);
    boxes->addWidget(categoryPopUpButton, 2);
    boxes->addWidget(actionPopUpButton, 3);
    all->addLayout(boxes, 5);
    connect(search, &ActionSearchField::found, this, [this](std::int32_t menuIndex) {
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
        const auto first = services.actionList.getFirstActionIndexForCategoryIndex(
            categoryPopUpButton->itemData(row).toInt());
        if (first)
            choose(*first);
    });
    connect(actionPopUpButton, &QComboBox::activated, this,
            [this](int row) { choose(actionPopUpButton->itemData(row).toInt()); });
}

/// All in one row in a wide and low pane, the boxes below each other where their labels would be cut.
void ActionChooser::arrange() {
    const auto widthFor = [](const QComboBox* box) {
        constexpr int frameAndArrow = 40;
        return box->fontMetrics().horizontalAdvance(box->currentText()) + frameAndArrow;
    };
    const int category = widthFor(categoryPopUpButton);
    const int action = widthFor(actionPopUpButton);
    const bool fits = category + spacing + action <= width();
    const bool isWide = width() >= 2 * (category + action);
    all->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    boxes->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    categoryPopUpButton->setMinimumWidth(fits ? category : 0);
    actionPopUpButton->setMinimumWidth(fits ? action : 0);
}

void ActionChooser::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// What the boxes ask for at this moment must not keep the pane from becoming narrower.
QSize ActionChooser::minimumSizeHint() const { return {0, QWidget::minimumSizeHint().height()}; }

void ActionChooser::choose(std::int32_t menuIndex) {
    if (services.controller.compositeAction().transientActionIndex() != menuIndex)
        services.controller.actionListCommands().chooseAction(menuIndex);
    else
        services.controller.actionListCommands().switchAction();
}

void ActionChooser::refresh() {
    const auto index = services.controller.compositeAction().transientActionIndex();
    const auto category =
        index ? services.actionList.translateActionIndexToCategoryIndex(*index) : std::nullopt;
    if (!index || !category) {
        categoryPopUpButton->setCurrentIndex(-1);
        actionPopUpButton->setCurrentIndex(-1);
        return;
    }
    categoryPopUpButton->setCurrentIndex(categoryPopUpButton->findData(*category));
    fillActions(*category);
    actionPopUpButton->setCurrentIndex(actionPopUpButton->findData(*index));
    arrange();
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
