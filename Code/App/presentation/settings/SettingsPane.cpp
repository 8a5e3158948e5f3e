#include "presentation/settings/SettingsPane.h"

#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/settings/ActionChooser.h"
#include "presentation/settings/AdvancedOptions.h"
#include "presentation/settings/FragmentSelector.h"
#include "presentation/settings/ParameterPanel.h"
#include "presentation/settings/SectionHead.h"
#include "presentation/settings/StackedView.h"
#include "presentation/tags/TagLibraryView.h"
#include "shell/commands/MainController.h"
#include "support/values/ValueTransformers.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>

namespace tavrin {

namespace {

constexpr int margin = 16;
constexpr int gap = 8;
constexpr int leastWidth = 300;

QToolButton* makeButton(const char* name, Glyph glyph, const char* tip) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(GlyphIcon::of(glyph));
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

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
        return FragmentSelector::Size::withCaptions;
    return action.usesMiniButtons() ? FragmentSelector::Size::box : FragmentSelector::Size::withoutCaptions;
}

} // namespace

struct SettingsPane::Parts {
    explicit Parts(WindowServices shared) : services(shared) {}

    QWidget* makeHeadRow();
    /// Everything about one action, made anew for each.
    QWidget* makeColumn(BaseRenameAction& action);
    void putIntoTabOrder(const QWidget& content) const;

    const WindowServices services;
    QLabel* stepLabel = nullptr;
    QToolButton* addStepButton = nullptr;
    QToolButton* lastOfHead = nullptr;
    ActionChooser* chooser = nullptr;
    QScrollArea* column = nullptr;
    AdvancedOptions* advanced = nullptr;
    QPointer<ParameterPanel> panel;
    std::string shownAction;
    bool wasShown = false;
};

QWidget* SettingsPane::Parts::makeHeadRow() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    stepLabel = new QLabel("What to do");
    stepLabel->setObjectName("stepLabel");
    QFont bold = stepLabel->font();
    bold.setWeight(QFont::DemiBold);
    stepLabel->setFont(bold);
    addStepButton = makeButton("addStepButton", Glyph::add, "Add another step (Ctrl+N)");
    addStepButton->setText("Add Step");
    addStepButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    QToolButton* reset = makeButton("resetToDefaultsButton", Glyph::reset, "Reset to defaults (Ctrl+R)");
    QToolButton* help = makeButton("actionHelpButton", Glyph::help, "Help on this action (Shift+F1)");
    lastOfHead = help;
    layout->addWidget(stepLabel, 1);
    for (QToolButton* button : {addStepButton, reset, help})
        layout->addWidget(button);
    ActionListCommands& commands = services.controller.actionListCommands();
    QObject::connect(addStepButton, &QToolButton::clicked, row, [this, &commands] {
        commands.addAction();
        if (!services.controller.globalSettings().values().shouldShowMultistepDrawer)
            services.controller.showMultistepDrawer();
    });
    QObject::connect(reset, &QToolButton::clicked, row, [&commands] { commands.resetToDefaults(); });
    return row;
}

QWidget* SettingsPane::Parts::makeColumn(BaseRenameAction& action) {
    auto* stack = new StackedView;
    panel = new ParameterPanel(action, services);
    stack->addViewAtBottom(makeSection({panel}));
    if (action.usesTagLibrary()) {
        const auto height = static_cast<int>(action.preferredTagLibraryDisplayHeight());
        stack->addFlexiView(makeSection({new TagLibraryView(services)}), height + gap);
    }
    if (action.isFragmentSelectionSupported())
        stack->addViewAtBottom(makeSection(
            {makeSectionHead("Apply to"), new FragmentSelector(action, selectorSizeFor(action))}));
    return stack;
}

/// What is made anew comes in the order of the Tab key where its place is, not behind the rest of the window.
void SettingsPane::Parts::putIntoTabOrder(const QWidget& content) const {
    QWidget* previous = lastOfHead;
    for (QWidget* widget : content.findChildren<QWidget*>()) {
        const bool isStop = widget->focusPolicy() & Qt::TabFocus && !widget->focusProxy();
        if (!isStop || widget->window() != content.window()) // menus and lists that pop up
            continue;
        QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

SettingsPane::SettingsPane(WindowServices services, QWidget* parent)
    : QWidget(parent), parts(std::make_unique<Parts>(services)) {
    setObjectName("settingsPane");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 12, 0, 8);
    layout->setSpacing(8);
    auto* head = new QVBoxLayout;
    head->setContentsMargins(margin, 0, margin, 0);
    head->setSpacing(8);
    parts->chooser = new ActionChooser(services, this);
    head->addWidget(parts->makeHeadRow());
    head->addWidget(parts->chooser);
    head->addWidget(makeLine());
    layout->addLayout(head);
    parts->column = new QScrollArea;
    parts->column->setObjectName("parameterView");
    parts->column->setWidgetResizable(true);
    parts->column->setFrameShape(QFrame::NoFrame);
    parts->column->setFocusPolicy(Qt::NoFocus);
    parts->column->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(parts->column, 1);
    parts->advanced = new AdvancedOptions(services, this);
    auto* foot = new QVBoxLayout;
    foot->setContentsMargins(margin, 0, margin, 0);
    foot->setSpacing(8);
    foot->addWidget(makeLine());
    foot->addWidget(parts->advanced);
    layout->addLayout(foot);
    connect(findChild<QToolButton*>("actionHelpButton"), &QToolButton::clicked, this,
            [this] { showHelpOnAction(); });
}

SettingsPane::~SettingsPane() = default;

void SettingsPane::showAction(BaseRenameAction& action) {
    // The former panel may be at work right now, and its action may be gone: it is put away, not deleted.
    if (QWidget* former = parts->column->takeWidget()) {
        former->blockSignals(true);
        former->hide();
        former->setParent(nullptr);
        former->deleteLater();
    }
    parts->shownAction = action.actionName();
    QWidget* content = parts->makeColumn(action);
    parts->column->setWidget(content);
    parts->putIntoTabOrder(*content);
    // What the panel needs at least is not scrolled sideways: the pane grows.
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    setMinimumWidth(std::max(leastWidth, content->minimumSizeHint().width() + scrollBar));
    if (parts->chooser->takeWasFoundBySearch())
        focusFirstField();
}

void SettingsPane::focusFirstField() {
    QWidget* field = parts->panel ? parts->panel->firstField() : nullptr;
    if (!field)
        return;
    field->setFocus(Qt::OtherFocusReason);
    if (auto* line = qobject_cast<QLineEdit*>(field))
        line->selectAll();
}

/// Typing begins with the first field.
void SettingsPane::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(parts->wasShown, true))
        focusFirstField();
}

void SettingsPane::stepsChanged() {
    const CompositeRenameAction& composite = parts->services.controller.compositeAction();
    const bool isOnly = ExactlyOneItemTransformer::transformedValue(composite.count());
    parts->stepLabel->setText(isOnly ? QString("What to do")
                                     : QString("Step %1 of %2")
                                           .arg(composite.getCurrentActionIndexAsInt() + 1)
                                           .arg(composite.count()));
    parts->addStepButton->setVisible(isOnly);
    parts->chooser->refresh();
}

void SettingsPane::findAction() { parts->chooser->findAction(); }

void SettingsPane::showHelpOnAction() {
    const CompositeRenameAction& composite = parts->services.controller.compositeAction();
    const std::string anchor(composite.getCurrentAction().helpAnchor());
    parts->services.controller.showHelpAnchor(anchor.empty() ? "action:" + parts->shownAction : anchor);
}

void SettingsPane::enterDropletEditMode() { parts->advanced->enterDropletEditMode(); }

} // namespace tavrin
