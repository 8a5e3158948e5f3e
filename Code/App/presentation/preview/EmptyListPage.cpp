#include "presentation/preview/EmptyListPage.h"

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/MainWindow.h"
#include "presentation/settings/SettingsPane.h"
#include "shell/MainController.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

namespace tavrin {

namespace {

struct Beginning {
    const char* name;
    const char* label;
    const char* action;
    const char* key; ///< a parameter to set, or null
    int value;
};

constexpr std::array beginnings{
    Beginning{"beginWithNumber", "Number my photos", "Produce numbered list", nullptr, 0},
    Beginning{"beginWithDate", "Name by date taken", "Rename to date", "mode", 2},
    Beginning{"beginWithReplace", "Find and replace", "Replace text", nullptr, 0},
};

QLabel* centred(const char* text) {
    auto* label = new QLabel(text);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    return label;
}

MainWindow* windowOf(const QWidget* widget) { return dynamic_cast<MainWindow*>(widget->window()); }

} // namespace

EmptyListPage::EmptyListPage(WindowServices shared) : services(shared) {
    setObjectName("emptyListPage");
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);
    layout->addStretch(2);
    auto* picture = new QLabel;
    picture->setObjectName("DragHere");
    picture->setPixmap(QIcon(":/icons/drag-here.svg").pixmap(160, 110));
    picture->setAlignment(Qt::AlignHCenter);
    layout->addWidget(picture);
    QLabel* head = centred("Drag files or folders here");
    QFont large = head->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    head->setFont(large);
    layout->addWidget(head);
    QLabel* promise = centred("Nothing is renamed until you click Rename.");
    promise->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(promise);
    layout->addSpacing(8);

    auto* add = new QHBoxLayout;
    add->addStretch(1);
    for (const bool folders : {false, true}) {
        auto* button = new QPushButton(folders ? "Add F&older…" : "&Add Files…");
        button->setObjectName(folders ? "emptyAddFolder" : "emptyAddFiles");
        connect(button, &QPushButton::clicked, this, [this, folders] {
            if (MainWindow* window = windowOf(this))
                window->addByDialog(folders);
        });
        add->addWidget(button);
    }
    add->addStretch(1);
    layout->addLayout(add);
    layout->addSpacing(20);

    QLabel* or_ = centred("Or begin with what you want to do");
    or_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(or_);
    auto* tiles = new QHBoxLayout;
    tiles->addStretch(1);
    for (const Beginning& each : beginnings) {
        auto* tile = new QPushButton(each.label);
        tile->setObjectName(each.name);
        tile->setMinimumHeight(40);
        connect(tile, &QPushButton::clicked, this, [this, &each] {
            begin(each.action, each.key ? PropertyDictionary{{each.key, each.value}} : PropertyDictionary{});
        });
        tiles->addWidget(tile);
    }
    tiles->addStretch(1);
    layout->addLayout(tiles);
    layout->addStretch(3);
}

void EmptyListPage::begin(const char* actionName, const PropertyDictionary& parameters) {
    const auto index = services.actionList.popUpMenuIndexForName(actionName);
    if (!index)
        return;
    services.controller.actionListCommands().chooseAction(*index);
    for (const auto& [key, value] : parameters)
        services.controller.compositeAction().getCurrentAction().setValue(value, key);
    MainWindow* window = windowOf(this);
    if (!window)
        return;
    window->settingsPane().focusFirstField();
    if (services.controller.previewControl().isPreviewEmpty())
        window->addByDialog(false);
}

} // namespace tavrin
