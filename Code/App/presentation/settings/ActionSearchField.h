#pragma once

#include "presentation/settings/ActionSearch.h"

#include <QLineEdit>
#include <optional>

class QListWidget;

namespace tavrin {

/// A line to type words for an action into; the hits show in a list below it.
class ActionSearchField final : public QLineEdit {
    Q_OBJECT

  public:
    explicit ActionSearchField(const ActionList& catalogue);

  signals:
    void found(std::int32_t menuIndex);

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
    QListWidget* hits;                  ///< a window of its own, owned by this
};

} // namespace tavrin
