#pragma once

#include "actions/ParameterDescription.h"

#include <QLabel>
#include <QString>
#include <functional>
#include <vector>

namespace tavrin {

class BaseRenameAction;

/// One row of a panel: the parameters that share it, the first of which gives the label, the heading and the
/// conditions.
struct PanelRow {
    std::vector<const ParameterDescription*> parameters;

    [[nodiscard]] const ParameterDescription& first() const { return *parameters.front(); }
};

/// The rows of an action's panel, made from its parameter table: section by section, what belongs together in
/// one row, hidden parameters left out. The descriptions live as long as the action.
[[nodiscard]] std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action);

/// What a panel says in words about the present parameters of an action.
struct PanelNote {
    QString text;
    bool isProblem = false;

    /// Tells the note of an action whose caches are fresh, for a run over so many items.
    using Maker = std::function<PanelNote(const BaseRenameAction&, std::int32_t items)>;

    /// For what the row holds; none where nothing is to be said.
    [[nodiscard]] static Maker forRow(const PanelRow& row);
};

/// Shows a note, dimmed or in the colour of problems; nothing at all for an empty one.
class NoteLabel : public QLabel {
    Q_OBJECT

  public:
    NoteLabel();
    void showNote(const PanelNote& note);

  private:
    void applyColour();

    bool isProblem = false;
};

} // namespace tavrin
