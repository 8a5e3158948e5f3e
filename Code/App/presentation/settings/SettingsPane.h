#pragma once

#include "presentation/WindowServices.h"

#include <QPointer>
#include <QWidget>
#include <string>

class QLabel;
class QScrollArea;
class QToolButton;

namespace tavrin {

class ActionChooser;
class AdvancedOptions;
class BaseRenameAction;
class ParameterPanel;
class PreviewPane;
class WindowCommands;

/// The settings of the current step: which action it is, and its parameters. Object name "settingsPane".
class SettingsPane final : public QWidget {
    Q_OBJECT

  public:
    /// `shownList` tells the file whose tags are shown.
    SettingsPane(const WindowServices& services, WindowCommands& commands, const PreviewPane& shownList);

    /// Builds the panel of the action, which lives as long as its step, and gives it the input focus where
    /// the action was found by searching.
    void showAction(BaseRenameAction& action);
    /// The steps or the current one have changed: heading, chooser.
    void stepsChanged();
    /// Puts the cursor into the first field of the panel.
    void focusFirstField();
    /// What takes part may have changed.
    void previewFinished();
    void enterDropletEditMode();

  protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QWidget* makeHeadRow(WindowCommands& commands);
    /// Everything about one action, made anew for each.
    QWidget* makeColumn(BaseRenameAction& action);
    void putIntoTabOrder(const QWidget& content) const;
    void showHelpOnAction();
    void arrangeHead();

    const WindowServices services;
    const PreviewPane& list;
    QLabel* stepLabel;
    QWidget* headRow = nullptr;
    QToolButton* addStepButton;
    QToolButton* helpButton; ///< the last of the head
    ActionChooser* chooser;
    QScrollArea* column;
    AdvancedOptions* advanced;
    QPointer<ParameterPanel> panel;
    std::string shownAction;
    bool wasShown = false;
};

} // namespace tavrin
