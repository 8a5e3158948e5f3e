#include "presentation/steps/StepsPane.h"

#include "actions/CompositeRenameAction.h"
#include "presentation/GlyphIcon.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowCommands.h"
#include "presentation/steps/StepDelegate.h"
#include "presentation/steps/StepsModel.h"
#include "shell/commands/MainController.h"
#include "support/values/ValueTransformers.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>
#include <array>

namespace tavrin {

namespace {

/// The list of steps, with its keys.
class StepsView final : public QListView {
  public:
    explicit StepsView(ActionListCommands& listCommands) : commands(listCommands) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Delete)
            commands.removeAction();
        else
            QListView::keyPressEvent(event);
    }

  private:
    ActionListCommands& commands;
};

struct Button {
    const char* name;
    Glyph glyph;
    const char* tip;
    void (ActionListCommands::*command)();
};

constexpr std::array buttons{
    Button{"addStep", Glyph::add, "Add a step", &ActionListCommands::addAction},
    Button{"removeStep", Glyph::remove, "Remove this step", &ActionListCommands::removeAction},
    Button{"moveStepUp", Glyph::up, "Move this step up", &ActionListCommands::nudgeActionUp},
    Button{"moveStepDown", Glyph::down, "Move this step down", &ActionListCommands::nudgeActionDown},
};

} // namespace

struct StepsPane::Parts {
    explicit Parts(WindowServices shared) : services(shared) {}

    static QWidget* makeHead();
    QWidget* makeButtons();

    const WindowServices services;
    StepsModel* model = nullptr;
    StepsView* view = nullptr;
    QToolButton* remove = nullptr;
    QToolButton* up = nullptr;
    QToolButton* down = nullptr;
};

QWidget* StepsPane::Parts::makeButtons() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(4);
    ActionListCommands& commands = services.controller.actionListCommands();
    for (const Button& each : buttons) {
        auto* button = new QToolButton;
        button->setObjectName(each.name);
        button->setIcon(GlyphIcon::of(each.glyph));
        button->setAutoRaise(true);
        button->setToolTip(each.tip);
        button->setAccessibleName(each.tip);
        QObject::connect(button, &QToolButton::clicked, row,
                         [&commands, &each] { (commands.*each.command)(); });
        layout->addWidget(button);
    }
    layout->addStretch(1);
    remove = row->findChild<QToolButton*>("removeStep");
    up = row->findChild<QToolButton*>("moveStepUp");
    down = row->findChild<QToolButton*>("moveStepDown");
    return row;
}

/// The titles of the boxes and of the rest of the rows.
QWidget* StepsPane::Parts::makeHead() {
    auto* head = new QWidget;
    auto* layout = new QHBoxLayout(head);
    layout->setContentsMargins(8, 14, 8, 8);
    layout->setSpacing(8);
    auto* active = new QLabel("Active");
    active->setForegroundRole(QPalette::PlaceholderText);
    auto* step = new QLabel("Step");
    QFont bold = step->font();
    bold.setWeight(QFont::DemiBold);
    step->setFont(bold);
    layout->addWidget(active);
    layout->addWidget(step, 1);
    return head;
}

StepsPane::StepsPane(WindowServices services, QWidget* parent)
    : QWidget(parent), parts(std::make_unique<Parts>(services)) {
    setObjectName("stepsPane");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Parts::makeHead());
    parts->model = new StepsModel(services, this);
    parts->view = new StepsView(services.controller.actionListCommands());
    parts->view->setObjectName("stepsView");
    parts->view->setAccessibleName("Rename steps");
    parts->view->setModel(parts->model);
    parts->view->setItemDelegate(new StepDelegate(parts->view));
    parts->view->setFrameShape(QFrame::NoFrame);
    parts->view->viewport()->setBackgroundRole(QPalette::Window);
    parts->view->setMouseTracking(true);
    parts->view->setDragDropMode(QAbstractItemView::InternalMove);
    parts->view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    parts->view->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(parts->view, 1);
    layout->addWidget(parts->makeButtons());
    connect(parts->view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                CompositeRenameAction& composite = parts->services.controller.compositeAction();
                if (current.isValid() && current.row() != composite.getCurrentActionIndexAsInt())
                    composite.setCurrentActionIndex(current.row());
            });
    connect(parts->view, &QListView::customContextMenuRequested, this, [this](const QPoint& place) {
        auto* mainWindow = dynamic_cast<MainWindow*>(window());
        if (!mainWindow)
            return;
        auto* menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (const char* name : {"addAction", "removeAction", "clearActions", "nudgeActionUp",
                                 "nudgeActionDown", "resetToDefaults", "stepActive"})
            menu->addAction(mainWindow->commands().command(name));
        menu->popup(parts->view->viewport()->mapToGlobal(place));
    });
}

StepsPane::~StepsPane() = default;

void StepsPane::stepsChanged() {
    const CompositeRenameAction& composite = parts->services.controller.compositeAction();
    const int current = composite.getCurrentActionIndexAsInt();
    {
        // What is current is told by the chain here, not by the view.
        const QSignalBlocker blocker(parts->view->selectionModel());
        parts->model->stepsChanged();
    }
    parts->view->setCurrentIndex(parts->model->index(current));
    parts->view->viewport()->update();
    const bool hasSeveral = MoreThanOneObjectInTableTransformer::transformedValue(composite.count());
    for (auto* button : {parts->remove, parts->up, parts->down})
        button->setEnabled(hasSeveral);
}

} // namespace tavrin
