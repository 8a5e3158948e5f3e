#pragma once

#include <QWidget>
#include <memory>

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QStackedWidget;

namespace tavrin {

class Chip;
class MainController;
class ParameterBinding;
enum class PreviewTab;

/// The line under the list: what the last preview has found, or how far a long one is, and whether the order
/// is the action's or one by hand. Object name "statusRow".
class StatusRow final : public QWidget {
    Q_OBJECT

  public:
    explicit StatusRow(MainController& controller);
    ~StatusRow() override;

    /// Takes over what the progress record displays.
    void refreshProgress();
    void selectPreviewTab(PreviewTab tab);
    /// Puts a chip behind the status text; it becomes this row's.
    void addChip(Chip* chip);

  private:
    QWidget* makeProgressPage();
    void addOrderButtons();

    MainController& controller;
    QStackedWidget* pages;
    QProgressBar* progressBar;
    QLabel* progressText;
    QLabel* statusText;
    QHBoxLayout* statusPage;
    std::unique_ptr<ParameterBinding> binding;
};

} // namespace tavrin
