#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>
#include <vector>

class QCheckBox;
class QToolButton;

namespace tavrin {

class ParameterBinding;

/// The settings of a run, below the panel of the action; folded away at first.
class AdvancedOptions final : public QWidget {
    Q_OBJECT

  public:
    explicit AdvancedOptions(const WindowServices& services);
    ~AdvancedOptions() override;

    /// A droplet that is being edited: its own words for the silent run.
    void enterDropletEditMode();

  private:
    void addSilentDropletHelp();
    void addSetting(const char* key, const QString& text);

    const WindowServices services;
    QToolButton* disclosure;
    QWidget* content;
    QCheckBox* silentDropletCheckbox = nullptr;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
