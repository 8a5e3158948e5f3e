#pragma once

#include "actions/ActionObserver.h"
#include "presentation/WindowServices.h"
#include "presentation/settings/PanelRows.h"

#include <QSet>
#include <QString>
#include <QWidget>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class QFormLayout;

namespace tavrin {

/// Gives each label of a pane an access key of its own, as far as its letters last.
class AccessKeys {
  public:
    /// The label with its key marked; keys of the menu bar and of the window's buttons are left to them.
    [[nodiscard]] QString mark(const QString& label);

  private:
    QSet<QChar> taken;
};

class BaseRenameAction;
struct PanelRow;

/// The panel of one action: a row for each of its parameters, made from its parameter table. The action must
/// live as long as the panel is used.
class ParameterPanel final : public QWidget, private ActionObserver {
    Q_OBJECT

  public:
    ParameterPanel(BaseRenameAction& shownAction, const WindowServices& services);
    ~ParameterPanel() override;

    /// The first control that takes text or a choice; null where there is none.
    [[nodiscard]] QWidget* firstField() const;
    /// Says anew what the parameters mean, for the items that take part now.
    void refreshNotes();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    struct Condition;

    void addRow(const PanelRow& row);
    void markButtons(QWidget& editor, bool namesRow);
    [[nodiscard]] QWidget* makeField(const PanelRow& row, const std::vector<QWidget*>& editors);
    void addConditions(const PanelRow& row, const std::vector<QWidget*>& rowWidgets,
                       const std::vector<QWidget*>& editors);
    [[nodiscard]] NoteLabel* makeNote(PanelNote::Maker maker);
    void addPatternMenu();
    void addExplanation();
    void addHelpLink();
    void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue) override;
    void applyConditions();

    BaseRenameAction& action;
    const WindowServices services;
    QFormLayout* form;
    AccessKeys accessKeys;
    std::vector<QWidget*> fields;
    std::vector<Condition> conditions;
    std::vector<std::pair<NoteLabel*, PanelNote::Maker>> notes;
    bool areNotesDue = false;
    ActionObservation observation;
};

} // namespace tavrin
