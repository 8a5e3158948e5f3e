#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>
#include <vector>

class QFormLayout;

namespace tavrin {

class BaseRenameAction;
class ParameterBinding;
struct PanelRow;

/// The panel of one action: a row for each of its parameters, made from its parameter table. The action must
/// live as long as the panel is used.
class ParameterPanel final : public QWidget {
  public:
    ParameterPanel(BaseRenameAction& shownAction, const WindowServices& services);
    ~ParameterPanel() override;

    /// The first control that takes text or a choice; null where there is none.
    [[nodiscard]] QWidget* firstField() const;

  private:
    struct Condition;

    void addRow(const PanelRow& row);
    void addConditions(const PanelRow& row, std::vector<QWidget*> widgets);
    void addPatternMenu();
    void addRemark();
    void addHelpLink();
    void applyConditions();

    BaseRenameAction& action;
    const WindowServices services;
    QFormLayout* form;
    std::vector<QWidget*> fields;
    std::vector<Condition> conditions;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
