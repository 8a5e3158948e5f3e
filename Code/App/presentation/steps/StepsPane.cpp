#include "presentation/steps/StepsPane.h"

#include "actions/CompositeRenameAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/WindowCommands.h"
#include "presentation/steps/HandNamesEntry.h"
#include "presentation/steps/StepDelegate.h"
#include "presentation/steps/StepsModel.h"
#include "shell/MainController.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tavrin {

StepsPane::StepsPane(const WindowServices& shared, WindowCommands& windowCommands)
    : services(shared), commands(windowCommands), model(new StepsModel(shared, this)), view(new QListView),
      handNames(new HandNamesEntry(shared)) {
    setObjectName("stepsPane");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildView();
    layout->addWidget(makeHead());
    layout->addWidget(view, 1);
    layout->addWidget(handNames);
    layout->addWidget(makeButtons());
}

/// The titles of the boxes and of the rest of the rows.
QWidget* StepsPane::makeHead() {
    auto* head = new QWidget;
    auto* layout = new QHBoxLayout(head);
    layout->setContentsMargins(8, 14, 8, 8);
    layout->setSpacing(8);
    auto* active = new QLabel(tr("Active"));
    active->setForegroundRole(QPalette::PlaceholderText);
    auto* step = new QLabel(tr("Step"));
    QFont bold = step->font();
    bold.setWeight(QFont::DemiBold);
    step->setFont(bold);
    layout->addWidget(active);
    layout->addWidget(step, 1);
    return head;
}

void StepsPane::buildView() {
    view->setObjectName("stepsView");
    view->setAccessibleName(tr("Rename steps"));
    view->setModel(model);
    view->setItemDelegate(new StepDelegate(view));
    view->setFrameShape(QFrame::NoFrame);
    view->viewport()->setBackgroundRole(QPalette::Window);
    view->setMouseTracking(true);
    view->setResizeMode(QListView::Adjust); // titles take more lines where the pane is narrow
    view->setDragDropMode(QAbstractItemView::InternalMove);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    view->installEventFilter(this);
    connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                CompositeRenameAction& chain = services.controller.compositeAction();
                if (current.isValid() && current.row() != chain.getCurrentActionIndexAsInt())
                    chain.setCurrentActionIndex(current.row());
            });
    connect(view, &QListView::customContextMenuRequested, this, &StepsPane::offerCommands);
}

QWidget* StepsPane::makeButtons() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(4);
    const auto add = [&](const char* name, Glyph glyph, const QString& tip, QAction* command) {
        QToolButton* button = makeToolButton(name, glyph, tip);
        performs(*button, *command);
        layout->addWidget(button);
    };
    add("addStep", Glyph::add, tr("Add a step"), commands.addAction);
    add("removeStep", Glyph::remove, tr("Remove this step"), commands.removeAction);
    add("moveStepUp", Glyph::up, tr("Move this step up"), commands.nudgeActionUp);
    add("moveStepDown", Glyph::down, tr("Move this step down"), commands.nudgeActionDown);
    layout->addStretch(1);
    return row;
}

void StepsPane::offerCommands(const QPoint& place) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({commands.addAction, commands.removeAction, commands.clearActions,
                      commands.nudgeActionUp, commands.nudgeActionDown, commands.resetToDefaults,
                      commands.stepActive});
    menu->popup(view->viewport()->mapToGlobal(place));
}

bool StepsPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Delete)
        return QWidget::eventFilter(watched, event);
    services.controller.actionListCommands().removeAction();
    return true;
}

void StepsPane::handEditsChanged() { handNames->refresh(); }

void StepsPane::stepsChanged() {
    {
        // What is current is told by the chain here, not by the view.
        const QSignalBlocker blocker(view->selectionModel());
        model->stepsChanged();
    }
    view->setCurrentIndex(model->index(services.controller.compositeAction().getCurrentActionIndexAsInt()));
    view->viewport()->update();
    emit changed();
}

} // namespace tavrin
