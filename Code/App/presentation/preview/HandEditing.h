#pragma once

#include "engine/naming/NamePins.h"
#include "presentation/WindowServices.h"
#include "store/rows/NodeRow.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QMenu;
class QUndoStack;

namespace tavrin {

class Chip;
class NewNameEditor;
class PreviewTableModel;
class PreviewTableView;
class StatusRow;
class TickHeader;
class WindowCommands;

/// What is settled by hand for rows of the list: names that are typed, ticks, the order. It can be undone
/// step by step while the list has the focus, until a run begins.
class HandEditing final : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        PreviewTableView& view;
        PreviewTableModel& model;
        TickHeader& header;
        StatusRow& statusRow;
        WindowCommands& commands;
    };
    HandEditing(const WindowServices& services, const Parts& parts);

    /// There are other names by hand, or others are left out.
    void handEditsChanged();
    /// Keeps what is being typed; what was done before can't be undone any more.
    void runBegins();
    /// Does what puts rows in another order.
    void reorder(const std::function<void()>& move);
    void leaveOut(const std::vector<RowId>& rows);
    void undo();
    void redo();
    /// The next change of names or ticks is one of the user's, who may undo it.
    void expectChange();

  signals:
    /// Only rows with names by hand, or only those left out, are to show.
    void showOnlyPinned();
    void showOnlyLeftOut();

  private:
    void connectCommands();
    void buildChips();
    void editCurrent();
    void unpinSelected();
    void toggle(const std::vector<RowId>& rows);
    void toggleAll();
    void refreshChips();
    void showTickBoxes();
    void showPicture();

    const WindowServices services;
    Parts parts;
    NewNameEditor* editor;
    QUndoStack* stack;
    Chip* pinnedChip;
    Chip* leftOutChip;
    NamePins known; ///< as of the last change
    bool isChangeExpected = false;
    std::shared_ptr<void> tickBoxesObservation;
};

} // namespace tavrin
