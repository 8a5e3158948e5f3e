#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>

namespace tavrin {

class ActionChooser;
class BaseRenameAction;
class ParameterPanel;

/// The settings of the current step: which action it is, and its parameters. Object name "settingsPane".
class SettingsPane final : public QWidget {
  public:
    SettingsPane(WindowServices services, QWidget* parent);
    ~SettingsPane() override;

    /// Builds the panel of the action, which lives as long as its step, and gives it the input focus where
    /// the action was found by searching.
    void showAction(BaseRenameAction& action);
    /// The steps or the current one have changed: heading, chooser.
    void stepsChanged();
    /// Puts the cursor into the search.
    void findAction();
    /// Puts the cursor into the first field of the panel.
    void focusFirstField();
    /// Opens the help on the action that is shown.
    void showHelpOnAction();
    void enterDropletEditMode();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
