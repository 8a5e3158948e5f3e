#include "presentation/settings/ParameterPanel.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"
#include "presentation/settings/ParameterBinding.h"
#include "presentation/settings/ParameterEditors.h"
#include "shell/MainController.h"

#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <string>

namespace tavrin {

/// Widgets that show only while a number has a certain value.
struct ParameterPanel::Condition {
    std::string key;
    std::int32_t value;
    std::vector<QWidget*> widgets;
};

namespace {

/// Controls that need the whole width.
bool isWide(const ParameterDescription& parameter) {
    return parameter.kind == ParameterKind::pattern || parameter.kind == ParameterKind::file;
}

bool labelsItself(const ParameterDescription& parameter) { return parameter.kind == ParameterKind::checkbox; }

QLabel* makeHead(std::string_view text) {
    auto* head = new QLabel(toQString(text));
    QFont font = head->font();
    font.setWeight(QFont::DemiBold);
    head->setFont(font);
    head->setContentsMargins(0, 12, 0, 0);
    return head;
}

} // namespace

ParameterPanel::ParameterPanel(BaseRenameAction& shownAction, const WindowServices& shared)
    : action(shownAction), services(shared), form(new QFormLayout(this)) {
    setObjectName("parameterPanel");
    form->setContentsMargins(0, 0, 0, 0);
    form->setVerticalSpacing(8);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    addPatternMenu();
    for (const PanelRow& row : panelRowsOf(action))
        addRow(row);
    addRemark();
    addHelpLink();
    applyConditions();
}

ParameterPanel::~ParameterPanel() = default;

void ParameterPanel::addRow(const PanelRow& row) {
    if (!row.head.empty())
        form->addRow(makeHead(row.head));
    std::vector<QWidget*> editors;
    for (const ParameterDescription* parameter : row.parameters)
        editors.push_back(makeParameterEditor(*parameter, action, services));
    fields.insert(fields.end(), editors.begin(), editors.end());
    QWidget* field = editors.front();
    if (editors.size() > 1) {
        field = new QWidget;
        const bool isStacked = isWide(row.first());
        auto* layout = new QBoxLayout(isStacked ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, field);
        layout->setContentsMargins(0, 0, 0, 0);
        for (QWidget* editor : editors)
            layout->addWidget(editor);
    }
    QLabel* label = nullptr;
    if (labelsItself(row.first()) && editors.size() == 1) {
        form->addRow(QString(), field);
    } else {
        label = new QLabel(toQString(row.first().label) + ':');
        label->setBuddy(editors.front());
        if (isWide(row.first())) {
            form->addRow(label);
            form->addRow(field);
        } else {
            form->addRow(label, field);
        }
    }
    std::vector<QWidget*> widgets{field};
    if (label)
        widgets.push_back(label);
    addConditions(row, std::move(widgets));
}

void ParameterPanel::addConditions(const PanelRow& row, std::vector<QWidget*> widgets) {
    const ParameterDescription& parameter = row.first();
    if (parameter.shownWhenKey.empty())
        return;
    const std::string key(parameter.shownWhenKey);
    conditions.push_back({key, parameter.shownWhenValue, std::move(widgets)});
    bindings.push_back(std::make_unique<ParameterBinding>(
        action, key, [this](const std::optional<PropertyValue>&) { applyConditions(); }));
}

void ParameterPanel::applyConditions() {
    for (const Condition& condition : conditions) {
        const bool holds = action.getParamInt(condition.key, 0) == condition.value;
        for (QWidget* widget : condition.widgets)
            widget->setVisible(holds);
    }
}

void ParameterPanel::addPatternMenu() {
    if (action.patternMenu().empty())
        return;
    auto* button = new QPushButton("&Ready-made");
    button->setObjectName("selectPattern");
    auto* menu = new QMenu(button);
    std::int32_t index = 0;
    for (const std::string_view row : action.patternMenu()) {
        connect(menu->addAction(toQString(row)), &QAction::triggered, this,
                [this, index] { action.selectPattern(index); });
        ++index;
    }
    button->setMenu(menu);
    form->addRow(QString(), button);
}

void ParameterPanel::addRemark() {
    std::string_view remark = panelRemarkOf(action.actionName());
    if (remark.empty() && fields.empty())
        remark = "This action has no settings.";
    if (remark.empty())
        return;
    auto* label = new QLabel(toQString(remark));
    label->setObjectName("panelRemark");
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    form->addRow(label);
}

void ParameterPanel::addHelpLink() {
    const std::string anchor(action.helpAnchor());
    if (anchor.empty())
        return;
    auto* link = new QLabel("<a href='help'>More about this action</a>");
    link->setObjectName("helpLink");
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(link, &QLabel::linkActivated, this,
            [this, anchor] { services.controller.showHelpAnchor(anchor); });
    form->addRow(QString(), link);
}

QWidget* ParameterPanel::firstField() const {
    const auto found = std::ranges::find_if(fields, [](const QWidget* field) {
        return field->focusPolicy() != Qt::NoFocus && field->isEnabled();
    });
    return found == fields.end() ? nullptr : *found;
}

} // namespace tavrin
