#pragma once

#include <QLabel>
#include <QString>
#include <functional>

namespace tavrin {

class BaseRenameAction;
struct PanelRow;

/// What a panel says in words about the present parameters of an action.
struct PanelNote {
    QString text;
    bool isProblem = false;

    /// Tells the note of an action whose caches are fresh.
    using Maker = std::function<PanelNote(const BaseRenameAction&)>;

    /// For what the row holds; none where nothing is to be said.
    [[nodiscard]] static Maker forRow(const PanelRow& row);
};

/// Shows a note, dimmed or in the colour of problems; nothing at all for an empty one.
class NoteLabel : public QLabel {
  public:
    NoteLabel();
    void showNote(const PanelNote& note);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void applyColour();

    bool isProblem = false;
};

} // namespace tavrin
