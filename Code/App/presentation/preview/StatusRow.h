#pragma once

#include <QString>
#include <QWidget>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
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
    /// During a run: what has failed so far, in the place of all else; nothing when the run is over.
    void showRun(const std::optional<std::size_t>& failed, bool isWaiting = false);
    /// Puts a chip behind the status text; it becomes this row's. Where there is little room the last lose
    /// their words first, and are then to be found in the menu of a chip "moreChips".
    void addChip(Chip* chip);
    /// The buttons that say whose the order is.
    [[nodiscard]] QWidget& orderButtons() { return *orderBox; }

  signals:
    void failedItemWanted();

  protected:
    /// Of the page with the chips: its room has changed, or what it holds.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* makeProgressPage();
    [[nodiscard]] QWidget* makeOrderBox();
    void arrangeChips();

    MainController& controller;
    [[nodiscard]] QWidget* makeRunPage();

    QStackedWidget* pages;
    PreviewTab tab{};
    QString stageAtEnd; ///< of the last run
    QWidget* runPage = nullptr;
    QLabel* runText = nullptr;
    QPushButton* showFailed = nullptr;
    QWidget* orderBox = nullptr;
    std::vector<Chip*> chips;
    QProgressBar* progressBar;
    QLabel* progressText;
    QLabel* statusText;
    Chip* more;
    QHBoxLayout* statusPage;
    std::unique_ptr<ParameterBinding> binding;
};

} // namespace tavrin
