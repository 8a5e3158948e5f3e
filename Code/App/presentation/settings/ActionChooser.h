#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <cstdint>

class QBoxLayout;
class QComboBox;

namespace tavrin {

class ActionSearchField;

/// Chooses the action of the current step: by words typed, or by category and place within it.
class ActionChooser final : public QWidget {
    Q_OBJECT

  public:
    explicit ActionChooser(const WindowServices& services);

    /// Shows the action of the current step.
    void refresh();
    void findAction();
    /// Whether the action on show was found by searching, so that its first field wants the cursor. Asked
    /// once.
    [[nodiscard]] bool takeWasFoundBySearch();
    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void arrange();
    void choose(std::int32_t menuIndex);
    void fillActions(std::int32_t category);

    const WindowServices services;
    ActionSearchField* search;
    QComboBox* categoryPopUpButton;
    QComboBox* actionPopUpButton;
    QBoxLayout* all;
    QBoxLayout* boxes;
    std::int32_t shownCategory = -1;
    bool wasFoundBySearch = false;
};

} // namespace tavrin
