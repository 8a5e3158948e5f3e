#include "presentation/preview/HandEditing.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowCommands.h"
#include "presentation/dialogs/FilePreviewView.h"
#include "presentation/preview/Chip.h"
#include "presentation/preview/NewNameEditor.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/preview/StatusRow.h"
#include "presentation/preview/TickHeader.h"
#include "shell/MainController.h"

#include <QAction>
#include <QElapsedTimer>
#include <QMenu>
#include <QUndoStack>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr int mostUndos = 50;
constexpr qint64 oneMove = 1000; ///< moves that follow each other so soon, in ms, are undone together
constexpr int pictureSize = 256;

/// Names and ticks as they were, and as they became.
class PinsEdit final : public QUndoCommand {
  public:
    PinsEdit(HandEdits& handEdits, NamePins former, NamePins present)
        : edits(handEdits), before(std::move(former)), after(std::move(present)) {}

    void undo() override { edits.restore(before); }
    void redo() override {
        if (!std::exchange(isNew, false))
            edits.restore(after);
    }

  private:
    HandEdits& edits;
    NamePins before;
    NamePins after;
    bool isNew = true; // what is pushed has been done
};

/// The order of the rows.
class OrderEdit final : public QUndoCommand {
  public:
    struct Order {
        std::shared_ptr<const std::vector<RowId>> rows;
        bool isAutomatic;
    };
    OrderEdit(MainController& owner, Order former, Order present)
        : controller(owner), before(std::move(former)), after(std::move(present)) {
        age.start();
    }

    void undo() override { apply(before); }
    void redo() override {
        if (!std::exchange(isNew, false))
            apply(after);
    }
    [[nodiscard]] int id() const override { return 1; }
    bool mergeWith(const QUndoCommand* other) override {
        const auto* next = static_cast<const OrderEdit*>(other);
        if (age.restart() > oneMove)
            return false;
        after = next->after;
        return true;
    }

  private:
    void apply(const Order& order) {
        if (order.isAutomatic)
            controller.globalSettings().setAutomaticSorting(true);
        else
            controller.dndArrayController().restoreOrder(*order.rows);
    }

    MainController& controller;
    Order before;
    Order after;
    QElapsedTimer age;
    bool isNew = true;
};

} // namespace

HandEditing::HandEditing(const WindowServices& shared, const Parts& all)
    : services(shared), parts(all),
      editor(new NewNameEditor(
          {all.view, all.model, shared.controller.handEdits(), shared.controller.renameEngine()})),
      stack(new QUndoStack(this)), pinnedChip(new Chip("pinnedChip", Glyph::pen)),
      leftOutChip(new Chip("leftOutChip", Glyph::leftOut)) {
    stack->setUndoLimit(mostUndos);
    connect(editor, &NewNameEditor::changing, this, &HandEditing::expectChange);
    connectCommands();
    buildChips();
    showTickBoxes();
    tickBoxesObservation = services.defaults.observe("showTickBoxes", [this] {
        QMetaObject::invokeMethod(
            this, [this] { showTickBoxes(); }, Qt::QueuedConnection);
    });
}

void HandEditing::connectCommands() {
    WindowCommands& commands = parts.commands;
    connect(commands.editNewName, &QAction::triggered, this, &HandEditing::editCurrent);
    connect(commands.unpinNames, &QAction::triggered, this, &HandEditing::unpinSelected);
    connect(&commands, &WindowCommands::undoRequested, this, [this] {
        if (parts.view.hasFocus())
            undo();
    });
    connect(&commands, &WindowCommands::redoRequested, this, [this] {
        if (parts.view.hasFocus())
            redo();
    });
    connect(&parts.view, &PreviewTableView::editRequested, this, &HandEditing::editCurrent);
    connect(&parts.view, &PreviewTableView::tickRequested, this, &HandEditing::toggle);
    connect(&parts.view, &PreviewTableView::pictureRequested, this, &HandEditing::showPicture);
    connect(&parts.header, &QHeaderView::sectionClicked, this, [this](int section) {
        if (section == PreviewTableModel::tick && services.controller.validateUserInterfaceItem())
            toggleAll();
    });
}

void HandEditing::buildChips() {
    const auto add = [this](Chip* chip, auto showOnly, const char* undoName, const QString& undoLabel,
                            auto undo) {
        parts.statusRow.addChip(chip);
        auto* menu = new QMenu(chip);
        menu->addAction(tr("Show Only These"), this, showOnly);
        menu->addAction(undoLabel, this, undo)->setObjectName(undoName);
        chip->setMenu(menu);
    };
    add(
        pinnedChip, [this] { emit showOnlyPinned(); }, "unpinAll", tr("Unpin All"),
        [this] {
            expectChange();
            services.controller.handEdits().unpinAll();
        });
    add(
        leftOutChip, [this] { emit showOnlyLeftOut(); }, "tickAll", tr("Tick All"),
        [this] {
            expectChange();
            services.controller.handEdits().tickAll();
        });
}

// --- Names ---

void HandEditing::editCurrent() {
    const bool isOn = services.controller.validateUserInterfaceItem() && parts.view.isVisible();
    if (isOn && services.controller.handEdits().isAllowed() && parts.view.currentIndex().isValid())
        editor->edit(parts.view.currentIndex().row());
}

void HandEditing::unpinSelected() {
    std::vector<std::string> paths;
    HandEdits& edits = services.controller.handEdits();
    if (edits.pinned() == 0)
        return;
    for (const RowId id : parts.view.selectedIds())
        if (const auto path = services.controller.nodeController().pathOf(id))
            if (!edits.pinnedName(*path).empty())
                paths.push_back(*path);
    if (paths.empty())
        return;
    expectChange();
    edits.unpin(paths);
}

// --- Ticks ---

/// All get what the first has not.
void HandEditing::toggle(const std::vector<RowId>& rows) {
    HandEdits& edits = services.controller.handEdits();
    if (rows.empty() || !edits.isAllowed() || !services.controller.validateUserInterfaceItem())
        return;
    const auto path = services.controller.nodeController().pathOf(rows.front());
    if (!path)
        return;
    expectChange();
    const bool takesPart = !edits.takesPart(*path);
    edits.setTakesPart(rows, takesPart);
    Spoken::say(takesPart ? tr("ticked") : tr("left out"));
}

void HandEditing::leaveOut(const std::vector<RowId>& rows) {
    if (rows.empty())
        return;
    expectChange();
    services.controller.handEdits().setTakesPart(rows, false);
}

void HandEditing::toggleAll() {
    HandEdits& edits = services.controller.handEdits();
    expectChange();
    if (edits.leftOut() > 0)
        edits.tickAll();
    else
        edits.setTakesPart(services.controller.nodeController().arrangedObjects(), false);
}

void HandEditing::showTickBoxes() {
    const bool areShown =
        services.defaults.boolForKey("showTickBoxes") && services.controller.handEdits().isAllowed();
    parts.view.setColumnHidden(PreviewTableModel::tick, !areShown);
    emit parts.view.widthChanged();
}

// --- Both ---

void HandEditing::undo() {
    services.controller.handEdits().finish();
    stack->undo();
}

void HandEditing::redo() {
    services.controller.handEdits().finish();
    stack->redo();
}

void HandEditing::expectChange() {
    services.controller.handEdits().finish(); // a change under way is told first
    isChangeExpected = true;
}

void HandEditing::handEditsChanged() {
    HandEdits& edits = services.controller.handEdits();
    const std::size_t pinnedBefore = known.named();
    NamePins before = std::exchange(known, edits.snapshot());
    if (std::exchange(isChangeExpected, false)) {
        stack->push(new PinsEdit(edits, std::move(before), known));
        if (known.named() > pinnedBefore)
            //: Spoken after a name was typed: the number of all that were
            Spoken::say(tr("by hand, %L1 now").arg(known.named()));
    }
    parts.model.handEditsChanged();
    refreshChips();
}

void HandEditing::refreshChips() {
    const std::size_t pinned = known.named();
    const std::size_t leftOut = known.leftOut();
    pinnedChip->setWanted(pinned > 0);
    pinnedChip->setText(tr("%L1 by hand").arg(pinned));
    leftOutChip->setWanted(leftOut > 0);
    leftOutChip->setText(tr("%L1 left out").arg(leftOut));
    const std::size_t rows = services.controller.nodeController().count();
    parts.header.setTicks(leftOut == 0      ? Qt::Checked
                          : leftOut >= rows ? Qt::Unchecked
                                            : Qt::PartiallyChecked);
}

void HandEditing::runBegins() {
    editor->finish();
    isChangeExpected = false;
    stack->clear();
}

void HandEditing::reorder(const std::function<void()>& move) {
    MainController& controller = services.controller;
    const auto present = [&controller] {
        return OrderEdit::Order{
            std::make_shared<const std::vector<RowId>>(controller.nodeController().arrangedObjects()),
            controller.globalSettings().values().automaticSorting};
    };
    OrderEdit::Order before = present();
    move();
    OrderEdit::Order after = present();
    if (*before.rows != *after.rows)
        stack->push(new OrderEdit(controller, std::move(before), std::move(after)));
}

/// The picture of the row in hand, larger, until a key or a click.
void HandEditing::showPicture() {
    const QModelIndex index = parts.view.currentIndex();
    if (!index.isValid())
        return;
    auto* frame = new QFrame(&parts.view, Qt::Popup);
    frame->setObjectName("largePicture");
    frame->setAttribute(Qt::WA_DeleteOnClose);
    frame->setFrameShape(QFrame::StyledPanel);
    auto* picture = new FilePreviewView;
    picture->setMinimumSize(pictureSize, pictureSize);
    picture->setPath(parts.model.rowAt(index.row()).fullPath, true);
    auto* close = new QAction(frame);
    close->setShortcuts({QKeySequence("Ctrl+Space"), QKeySequence("Space"), QKeySequence("Return")});
    connect(close, &QAction::triggered, frame, &QWidget::close);
    frame->addAction(close);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(picture);
    const QRect row = parts.view.visualRect(index.siblingAtColumn(PreviewTableModel::newName));
    frame->adjustSize();
    frame->move(parts.view.viewport()->mapToGlobal(row.bottomLeft()));
    frame->show();
}

} // namespace tavrin
