#pragma once

#include "presentation/settings/ActionSearch.h"

#include <QLineEdit>
#include <functional>
#include <optional>

class QListWidget;

namespace tavrin {

/// A line to type words for an action into; the hits show in a list below it.
class ActionSearchField final : public QLineEdit {
  public:
    explicit ActionSearchField(const ActionList& catalogue);
    ~ActionSearchField() override;

    void setFoundHandler(std::function<void(std::int32_t menuIndex)> handler) { found = std::move(handler); }

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showHits();
    void hideHits();
    void take(int row);

    const ActionList& catalogue;
    std::optional<ActionSearch> search; ///< made when first needed
    std::function<void(std::int32_t)> found;
    QListWidget* hits; ///< a window of its own, owned by this
};

} // namespace tavrin
