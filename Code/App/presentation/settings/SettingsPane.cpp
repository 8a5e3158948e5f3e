#include "presentation/settings/SettingsPane.h"

#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/WindowCommands.h"
#include "presentation/settings/ActionChooser.h"
#include "presentation/settings/AdvancedOptions.h"
#include "presentation/settings/FragmentSelector.h"
#include "presentation/settings/ParameterEditors.h"
#include "presentation/settings/ParameterPanel.h"
#include "presentation/settings/StackedView.h"
#include "presentation/tags/PatternEditor.h"
#include "presentation/tags/TagLibraryView.h"
#include "shell/MainController.h"
#include "support/values/ValueTransformers.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>
#include <utility>

namespace tavrin {

namespace {

constexpr int margin = 16;
constexpr int gap = 8;
constexpr int leastWidth = 300;

/// Widgets that stay together in the column.
QWidget* makeSection(std::initializer_list<QWidget*> widgets) {
    auto* section = new QWidget;
    auto* layout = new QVBoxLayout(section);
    layout->setContentsMargins(margin, 0, margin, gap);
    layout->setSpacing(gap);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return section;
}

FragmentSelector::Size selectorSizeFor(const BaseRenameAction& action) {
    if (!action.hasLongParameterList())
        return FragmentSelector::Size::large;
    return action.usesMiniButtons() ? FragmentSelector::Size::small : FragmentSelector::Size::medium;
}

} // namespace

SettingsPane::SettingsPane(const WindowServices& shared, WindowCommands& commands,
                           const PreviewPane& shownList)
    : services(shared), list(shownList), stepLabel(new QLabel(tr("What to do"))),
      addStepButton(makeToolButton("addStepButton", Glyph::add, tr("Add another step (Ctrl+N)"))),
      helpButton(makeToolButton("actionHelpButton", Glyph::help, tr("Help on this action (Shift+F1)"))),
      chooser(new ActionChooser(services)), column(new QScrollArea), advanced(new AdvancedOptions(services)) {
    setObjectName("settingsPane");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 12, 0, 8);
    layout->setSpacing(8);
    auto* head = new QVBoxLayout;
    head->setContentsMargins(margin, 0, margin, 0);
    head->setSpacing(8);
    layout->addLayout(head);
    head->addWidget(chooser);
    head->insertWidget(0, makeHeadRow(commands)); // which comes later in the order of the Tab key
    head->addWidget(makeLine());
    column->setObjectName("parameterView");
    column->setWidgetResizable(true);
    column->setFrameShape(QFrame::NoFrame);
    column->setFocusPolicy(Qt::NoFocus);
    column->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(column, 1);
    auto* foot = new QVBoxLayout;
    foot->setContentsMargins(margin, 0, margin, 0);
    foot->setSpacing(8);
    foot->addWidget(makeLine());
    foot->addWidget(advanced);
    layout->addLayout(foot);
    connect(commands.findAction, &QAction::triggered, chooser, &ActionChooser::findAction);
    // A new step begins as a copy, so what comes next is another action.
    connect(commands.addAction, &QAction::triggered, chooser, &ActionChooser::findAction);
    connect(commands.showHelpOnAction, &QAction::triggered, this, &SettingsPane::showHelpOnAction);
}

QWidget* SettingsPane::makeHeadRow(WindowCommands& commands) {
    headRow = new QWidget;
    auto* layout = new QHBoxLayout(headRow);
    layout->setContentsMargins(0, 0, 0, 0);
    stepLabel->setObjectName("stepLabel");
    stepLabel->setWordWrap(true);
    QFont bold = stepLabel->font();
    bold.setWeight(QFont::DemiBold);
    stepLabel->setFont(bold);
    addStepButton->setText(tr("Add Step"));
    addStepButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QToolButton* reset =
        makeToolButton("resetToDefaultsButton", Glyph::reset, tr("Reset to defaults (Ctrl+R)"));
    performs(*addStepButton, *commands.addAction);
    performs(*reset, *commands.resetToDefaults);
    performs(*helpButton, *commands.showHelpOnAction);
    layout->addWidget(stepLabel, 1);
    for (QToolButton* button : {addStepButton, reset, helpButton})
        layout->addWidget(button);
    return headRow;
}

/// Where there is no room for all of it the button does without its caption.
void SettingsPane::arrangeHead() {
    const QFontMetrics metrics = stepLabel->fontMetrics();
    int wanted = metrics.horizontalAdvance(stepLabel->text());
    addStepButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (const QToolButton* button : headRow->findChildren<QToolButton*>(Qt::FindDirectChildrenOnly))
        if (!button->isHidden())
            wanted += headRow->layout()->spacing() + button->sizeHint().width();
    if (wanted > width() - 2 * margin)
        addStepButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
}

void SettingsPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrangeHead();
}

QWidget* SettingsPane::makeColumn(BaseRenameAction& action) {
    auto* stack = new StackedView;
    panel = new ParameterPanel(action, services);
    stack->addViewAtBottom(makeSection({panel}));
    if (action.usesTagLibrary()) {
        const auto height = static_cast<int>(action.preferredTagLibraryDisplayHeight());
        auto* tags = new TagLibraryView(services, list);
        stack->addFlexiView(makeSection({tags}), height + gap);
        if (auto* pattern = panel->findChild<PatternEditor*>())
            connect(tags, &TagLibraryView::tagTaken, pattern, &PatternEditor::insert);
    }
    if (action.isFragmentSelectionSupported())
        stack->addViewAtBottom(
            makeSection({makeLine(), new FragmentSelector(action, selectorSizeFor(action))}));
    return stack;
}

/// What is made anew comes in the order of the Tab key where its place is, not behind the rest of the window.
void SettingsPane::putIntoTabOrder(const QWidget& content) const {
    QWidget* previous = helpButton;
    for (QWidget* widget : content.findChildren<QWidget*>()) {
        const bool isStop = widget->focusPolicy() & Qt::TabFocus && !widget->focusProxy();
        if (!isStop || widget->window() != content.window()) // menus and lists that pop up
            continue;
        QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

void SettingsPane::showAction(BaseRenameAction& action) {
    // The former panel may be at work right now, and its action may be gone: it is put away, not deleted.
    if (QWidget* former = column->takeWidget()) {
        former->blockSignals(true);
        former->hide();
        former->setParent(nullptr);
        former->deleteLater();
    }
    shownAction = action.actionName();
    QWidget* content = makeColumn(action);
    column->setWidget(content);
    putIntoTabOrder(*content);
    // What the panel needs at least is not scrolled sideways: the pane grows.
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    setMinimumWidth(std::max({leastWidth, content->minimumSizeHint().width() + scrollBar,
                              advanced->minimumSizeHint().width() + 2 * margin}));
    if (chooser->takeWasFoundBySearch())
        focusFirstField();
}

void SettingsPane::focusFirstField() {
    QWidget* field = panel ? panel->firstField() : nullptr;
    if (!field)
        return;
    field->setFocus(Qt::OtherFocusReason);
    if (auto* line = qobject_cast<QLineEdit*>(field))
        line->selectAll();
}

/// Typing begins with the first field.
void SettingsPane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(wasShown, true))
        focusFirstField();
}

void SettingsPane::stepsChanged() {
    const CompositeRenameAction& composite = services.controller.compositeAction();
    const bool isOnly = ExactlyOneItemTransformer::transformedValue(composite.count());
    stepLabel->setText(
        isOnly ? tr("What to do")
               : tr("Step %1 of %2").arg(composite.getCurrentActionIndexAsInt() + 1).arg(composite.count()));
    addStepButton->setVisible(isOnly);
    arrangeHead();
    chooser->refresh();
}

void SettingsPane::showHelpOnAction() {
    const CompositeRenameAction& composite = services.controller.compositeAction();
    const std::string anchor(composite.getCurrentAction().helpAnchor());
    services.controller.showHelpAnchor(anchor.empty() ? "action:" + shownAction : anchor);
}

void SettingsPane::previewFinished() {
    if (panel && panel->isVisible())
        panel->refreshNotes();
}

void SettingsPane::enterDropletEditMode() { advanced->enterDropletEditMode(); }

} // namespace tavrin
